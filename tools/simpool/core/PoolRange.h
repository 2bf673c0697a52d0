#pragma once

#include "LoadedFile.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace simpool {

/// POOL[:OFFSET[+LENGTH]], as given on a command line: a stretch of a pool's data.
struct PoolRange
{
    std::string pool = {}; // as ChoosePool takes it
    bool isWhole = true;   // no offset was given
    std::uint64_t offset = 0;
    std::uint64_t length = UINT64_MAX; // not given: up to the end of the data

    /// How many of `available` bytes of data it takes from its offset on; 0 when it lies behind.
    [[nodiscard]] std::uint64_t LengthWithin(std::uint64_t available) const noexcept;
};

/// Numbers are decimal or, with 0x, hexadecimal.
/// \throws CommandFailure when `text` has another form.
[[nodiscard]] PoolRange ParsePoolRange(std::string_view text);

/// One number, decimal or with 0x hexadecimal; `what` names it in the message.
/// \throws CommandFailure when `text` is none or too large.
[[nodiscard]] std::uint64_t ParseNumber(std::string_view text, const std::string& what);
} // namespace simpool
