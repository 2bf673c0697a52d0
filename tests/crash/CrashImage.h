// The disk as a crash may leave it, and the ways to get there from a log.
#pragma once

#include "DiskLog.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

enum class CrashModel
{
    Killed,       // the process ended between two calls: all it did is on the disk
    KilledInCall, // the same in the middle of a write, of which the first bytes are there
    PowerLost     // of what was done since the last sync each sector may be there, in any version
};

inline constexpr CrashModel kCrashModels[] = {CrashModel::Killed, CrashModel::KilledInCall,
                                              CrashModel::PowerLost};

[[nodiscard]] const char* NameOf(CrashModel model);

struct CrashImage
{
    DiskState files;
    CrashModel model;
    std::size_t moment;  // events that had happened; with KilledInCall the next was under way
    std::string choices; // which of the images of that moment, for people
};

using CrashVisitor = std::function<void(const CrashImage&)>;

/// The images of a process killed before, between and behind the calls of `log`.
void VisitKilled(const DiskLog& log, const CrashVisitor& visit);

/// Those of a process killed in the middle of a write, of which the first bytes happened: every
/// length of a write up to 2048 bytes; of longer ones the first 128 and every 4096th.
void VisitKilledInCall(const DiskLog& log, const CrashVisitor& visit);

/// Those of a power loss behind each event: per file a size that it had since its last sync, or at
/// a page border inside a write that extended it, and for each 512-byte sector one of the versions
/// that it had since then. A file whose name is not durable may be missing. Up to `most` images per
/// moment: all where there are no more, else as many drawn with `seed`, all-old and all-new first.
void VisitPowerLost(const DiskLog& log, std::size_t most, std::uint64_t seed,
                    const CrashVisitor& visit);
