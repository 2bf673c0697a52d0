#pragma once

#include "LoadedFile.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace simpool {

/// What a stretch of a file is. A hole is data that takes no room on the disk and reads as zeros;
/// what is lost belongs to no pool that could be read.
enum class StretchKind
{
    Header,
    Directory,
    Data,
    Hole,
    Lost
};
inline constexpr std::size_t kStretchKinds = 5;

/// Bytes [begin, end) of the file, at least one.
struct Stretch
{
    StretchKind kind;
    std::uint64_t begin;
    std::uint64_t end;
    std::size_t pool; // number; of what is lost, the pool in front of it or 0

    [[nodiscard]] std::uint64_t Length() const noexcept { return end - begin; }
};

/// All bytes of `file` from the first to the last, each in one stretch, in order. Where pools claim
/// the same bytes, the later one has them.
[[nodiscard]] std::vector<Stretch> MapFile(const LoadedFile& file);

/// Bytes of each kind.
[[nodiscard]] std::array<std::uint64_t, kStretchKinds>
SumByKind(const std::vector<Stretch>& stretches);

/// "header", "directory", "data", "hole", "lost".
[[nodiscard]] const char* NameOf(StretchKind kind) noexcept;
} // namespace simpool
