// What a crash at some moment must leave of a file, worked out from the ledger alone.
#pragma once

#include "CrashImage.h"
#include "Ledger.h"

#include <cstddef>
#include <string>
#include <vector>

/// Bytes that must stand at `position`, each of them.
struct ExactBytes
{
    unsigned long long position;
    std::string bytes;
};

/// A byte that may have one of several values.
struct OpenByte
{
    unsigned long long position;
    std::string allowed;
    bool mayMiss; // the file may also end before it
};

struct FileExpectation
{
    std::vector<ExactBytes> exact;
    std::vector<OpenByte> open;
    std::vector<const Ledger::Pool*> known; // each that may be met, in the order they were made
    std::vector<const Ledger::Pool*> sure;  // those that must be met, unless the file is refused
    bool mayBeGone = true;                  // the file, name and all
    bool inPoolCall = false;          // pools were being made; only then may a file be refused
    unsigned long long quietSize = 0; // of the file when the first of these calls began
};

/// For a process killed at `moment`, or with `inCall` in the middle of the event that follows:
/// whatever was written is there; the bytes being written are old or new.
[[nodiscard]] FileExpectation ExpectAfterKill(const Ledger& ledger, const DiskLog& log, int file,
                                              std::size_t moment, bool inCall);

/// For a power loss at `moment`: what a flush had promised is there; a byte that was written since
/// is old or new, and one that had never been promised also zero or missing.
[[nodiscard]] FileExpectation ExpectAfterPowerLoss(const Ledger& ledger, const DiskLog& log,
                                                   int file, std::size_t moment);
