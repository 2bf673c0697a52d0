#pragma once

#include "Operation.h"
#include "Outcome.h"

#include <array>
#include <cstdint>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

/// Counts of what was played and of what was raised.
class Tally
{
public:
    void Count(const Operation& operation, const Outcome& outcome);

    [[nodiscard]] std::uint64_t Operations() const noexcept { return mOperations; }

    /// Kinds that never did anything, and failures of the hand-written list that were never seen.
    [[nodiscard]] std::vector<std::string> Missing() const;

    /// Failures that were seen and are not on the list.
    [[nodiscard]] std::vector<std::string> Unexpected() const;

    /// The most pools that a file had.
    [[nodiscard]] std::uint64_t LargestFile() const noexcept { return mLargestFile; }

    void Print(std::ostream& out) const;

private:
    struct Uses
    {
        std::uint64_t done = 0;
        std::uint64_t skipped = 0;
        std::uint64_t failed = 0;
    };

    std::uint64_t mOperations = 0;
    std::uint64_t mLargestFile = 0;
    std::array<Uses, kKinds> mKinds{};
    std::map<std::string, std::uint64_t> mFailures; // by site and class
};
