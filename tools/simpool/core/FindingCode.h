#pragma once

#include "PoolWalk.h"

#include <span>

namespace simpool {

/// What can be wrong with a file. Errors keep it from being opened or contradict it; warnings are
/// what opening lets pass.
enum class FindingCode
{
    ShortHeader,
    NoSignature,
    OtherVersion,
    OtherUserSignature,
    CutDirectory,
    NoOwnEntry,
    DuplicatePool,
    LengthBelowHeader,
    LengthNotDecimal,
    LengthPastEnd,
    UuidNotHex,
    UuidNotVersion4,
    ReservedBytes,
    PoolInsideData,
    TrailingZeros,
    UnresolvedReference,
    CacheMemory,
    LeftoverDirectory
};

/// A code as users see it. Scripts rely on `id` and `name`: neither is ever given to another thing.
struct FindingText
{
    FindingCode code;
    const char* id; // E and a number for errors, W for warnings
    const char* name;
    const char* meaning; // a clause
    const char* advice;  // a sentence

    [[nodiscard]] bool IsError() const noexcept { return *id == 'E'; }
};

/// All of them, errors first.
[[nodiscard]] std::span<const FindingText> AllFindingTexts() noexcept;
[[nodiscard]] const FindingText& TextOf(FindingCode code) noexcept;

/// The code of a walk that did not come to the file's end by itself.
[[nodiscard]] FindingCode CodeOf(Stop stop) noexcept;
} // namespace simpool
