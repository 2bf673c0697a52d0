// What the library says of an opened file, and what that means beside the ledger.
#pragma once

#include "Expectation.h"
#include "Outcome.h"
#include "VUKSimRpm_File.h"

#include <string>
#include <vector>

/// One pool as the library shows it.
struct PoolView
{
    std::string uuid;
    unsigned long long position; // of its header: where the pools before it end
    unsigned long long headerSize;
    unsigned long long dataLength;
    std::string data; // what reading all of it delivers, up to the file's size

    [[nodiscard]] unsigned long long DataBegin() const { return position + headerSize; }
    [[nodiscard]] unsigned long long End() const { return DataBegin() + dataLength; }
};

/// All pools of `file`, which is `size` bytes long.
[[nodiscard]] std::vector<PoolView> ViewPools(const VUKSimRpm_File& file, unsigned long long size);

/// Holds the pools found in a file with the bytes `image` against what was to be expected, and says
/// in `outcome` which kind of file it is and what is broken.
void JudgePools(const std::vector<PoolView>& found, const std::string& image,
                const FileExpectation& expected, Outcome& outcome);

/// The bytes of a file against those that must be in it, whoever wrote to it since.
void JudgeExactBytes(const std::string& image, const FileExpectation& expected, Outcome& outcome);

/// The bytes of an image against those that it may hold.
void JudgeOpenBytes(const std::string& image, const FileExpectation& expected, Outcome& outcome);
