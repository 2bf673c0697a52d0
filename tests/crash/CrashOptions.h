#pragma once

#include <cstdint>

/// How much the program does; the same for all its tests.
struct CrashOptions
{
    bool longRun = false;
    std::uint64_t seed = 20240229; // of all that is drawn

    /// Those of this run, set before the first test.
    static CrashOptions& Current()
    {
        static CrashOptions options;
        return options;
    }
};
