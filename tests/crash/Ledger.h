#pragma once

#include "DiskLog.h"

#include <cstddef>
#include <limits>
#include <map>
#include <string>
#include <vector>

/// What an application did to its files and when, in moments of the disk's log, written down beside
/// the library and independent of what the library wrote.
///
/// A deed lasts from the moment `begin` at which it was called to the moment `end` at which it
/// returned. Files are numbered as in the log; positions and sizes are in bytes of the file.
struct Ledger
{
    static constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();

    struct Deed
    {
        enum class Kind
        {
            Written,   // `bytes` at `position`
            Forgotten, // nothing from `position` on is needed any more
            Flushed    // all that had been written before is promised
        };

        Kind kind;
        int file;
        std::size_t begin;
        std::size_t end;
        unsigned long long position = 0;
        std::string bytes = {};
    };

    struct Pool
    {
        int file;
        std::string uuid;
        unsigned long long position; // of its header
        unsigned long long headerSize;
        std::size_t begin; // of the call that made it
        std::size_t end;
        unsigned long long dataEnd;   // as the application last left it
        std::size_t dropped = kNever; // when the call began that put another in its place
    };

    /// A call that made, replaced or imported a pool.
    struct PoolCall
    {
        int file;
        std::size_t begin;
        std::size_t end;
    };

    std::vector<Deed> deeds; // in the order in which they began
    std::vector<Pool> pools; // in the order in which they were made
    std::vector<PoolCall> poolCalls;
    std::map<int, std::size_t> removed; // files, and when the call began that takes each away
};
