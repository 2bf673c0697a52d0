#pragma once

#include "Failure.h"

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

/// All that one operation gave back: two stores that agree give equal outcomes.
struct Outcome
{
    std::vector<std::uint64_t> numbers; // counts, sizes, answers, in the order in which they came
    std::string bytes;                  // texts, and buffers with what was not written in them
    std::string uuid;                   // of the pool that was made
    std::string name;                   // of the file that was made
    std::optional<Failure> failure;
    std::vector<Report> reports;
    bool skipped = false; // the operation had nothing to work on, or lay outside the contract

    bool operator==(const Outcome&) const = default;

    void Clear()
    {
        numbers.clear();
        bytes.clear();
        uuid.clear();
        name.clear();
        failure.reset();
        reports.clear();
        skipped = false;
    }

    /// The room for `size` bytes that an operation fills; what it leaves alone stays recognisable.
    char* Room(std::size_t size)
    {
        bytes.append(size, '\xEE');
        return bytes.data() + bytes.size() - size;
    }

    friend std::ostream& operator<<(std::ostream& out, const Outcome& outcome);
};
