#pragma once

#include "FileBytes.h"
#include "StoredHeader.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace simpool {

/// One pool of a file as its header tells it.
struct PoolInfo
{
    std::uint64_t position = 0; // of its header in the file
    std::uint64_t length = 0;   // header, directory and data; may be any number in a damaged file
    StoredHeader header = {};
    Uuid uuid = {}; // the first entry of its directory

    [[nodiscard]] std::uint64_t DataPosition() const noexcept
    {
        return position + header.FullSize();
    }
    /// Whether it may grow: its stored length says "up to the end of the file".
    [[nodiscard]] bool IsCurrent() const noexcept { return header.LengthValue() == 0; }
    /// Of the data as the header claims it; 0 when it claims less than the header itself.
    [[nodiscard]] std::uint64_t DataLength() const noexcept
    {
        return length < header.FullSize() ? 0 : length - header.FullSize();
    }
    /// Of the data that a file of `fileSize` bytes really has.
    [[nodiscard]] std::uint64_t DataInFile(std::uint64_t fileSize) const noexcept;
};

/// Why a walk ended before the file's end; the first eight as the library checks them, in its
/// order.
enum class Stop
{
    None,
    ShortHeader,
    NoSignature,
    OtherVersion,
    OtherUserSignature,
    CutDirectory,
    DuplicatePool,
    NoOwnEntry,
    ReadFailure,
    NoMemory
};

struct UuidHash
{
    std::size_t operator()(const Uuid& uuid) const noexcept
    {
        return std::hash<std::string_view>()({uuid.data(), uuid.size()});
    }
};

/// What the files that are looked at together have in common, as files of one document do.
struct Together
{
    struct Place
    {
        std::size_t file; // by number, in the order in which they were walked
        std::size_t pool;
    };
    std::optional<UserSignature> userSignature = {};      // empty until the first pool says it
    std::unordered_map<Uuid, Place, UuidHash> pools = {}; // by their own UUID
    std::size_t files = 0;
};

/// The pools of one file, up to its end or to what stopped the walk.
struct PoolWalk
{
    std::vector<PoolInfo> pools;
    Stop stop = Stop::None;
    std::uint64_t position = 0; // where the next pool should have begun, or the file's end
    std::optional<PoolInfo> stoppedAt = {}; // the pool that was refused, if its header was read
};

/// Walks through `file` as the library does when it opens it, checks in the same order, and adds to
/// `together` what it finds. Reads the headers and each pool's own entry, no other directory bytes.
[[nodiscard]] PoolWalk WalkPools(const FileBytes& file, Together& together) noexcept;

/// Calls `visit(index, uuid)` for each directory entry of `pool`. False when the file ends or fails
/// before the last.
bool ForEachEntry(const FileBytes& file, const PoolInfo& pool,
                  const std::function<void(std::uint32_t, const Uuid&)>& visit);

/// Whether a pool could begin at `position`: signature, version, a directory that fits into the
/// file and names the pool itself. `found` is its header, with the length that it claims.
[[nodiscard]] bool IsPlausiblePool(const FileBytes& file, std::uint64_t position,
                                   PoolInfo& found) noexcept;
} // namespace simpool
