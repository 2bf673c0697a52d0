#pragma once

#include <cstdint>
#include <string>

/// How much the program does; the same for all its tests.
struct CrashOptions
{
    bool longRun = false;
    unsigned kills = 0;            // of real writers; 0: 100, or 2000 in a long run
    std::uint64_t seed = 20240229; // of all that is drawn
    unsigned every = 1;        // judges only each so-manieth image of cut writes and power losses
    bool table = false;        // print the table that docs/reliability.md has
    std::string document = {}; // where that table must stand; empty: nowhere

    /// Those of this run, set before the first test.
    static CrashOptions& Current()
    {
        static CrashOptions options;
        return options;
    }
};
