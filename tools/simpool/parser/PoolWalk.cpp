#include "PoolWalk.h"

#include <algorithm>
#include <limits>
#include <new>

namespace simpool {
namespace {

// More entries than this have no header size of 32 bits.
constexpr std::uint64_t kMaxEntries =
    (std::numeric_limits<std::uint32_t>::max() - kHeaderSize) / kEntrySize;

// Reads and checks the pool at `position` up to its directory, of which no more than `room` bytes
// may be claimed. A first pool sets the document's user signature.
Stop ReadPool(const FileBytes& file, std::uint64_t position, std::uint64_t room,
              std::optional<UserSignature>& userSignature, PoolWalk& walk)
{
    char bytes[kHeaderSize + kEntrySize];
    const std::size_t count = file.Read(position, bytes, sizeof(bytes));
    if (file.Error() != 0) {
        return Stop::ReadFailure;
    }
    if (count < kHeaderSize) {
        return Stop::ShortHeader;
    }
    PoolInfo& pool = walk.stoppedAt.emplace();
    pool.position = position;
    pool.header = DecodeHeader(bytes);
    if (pool.header.signature != kSignature) {
        return Stop::NoSignature;
    }
    if (pool.header.version != kCurrentVersion) {
        return Stop::OtherVersion;
    }
    if (userSignature.value_or(pool.header.userSignature) != pool.header.userSignature) {
        return Stop::OtherUserSignature;
    }
    userSignature = pool.header.userSignature;
    pool.length = pool.header.LengthValue();
    if (pool.length == 0) {
        pool.length = file.Size() - position;
    }
    const std::uint64_t directory = std::uint64_t{kEntrySize} * pool.header.directoryCount;
    if (pool.header.directoryCount > kMaxEntries ||
        directory > file.Size() - position - kHeaderSize || directory > room) {
        return Stop::CutDirectory;
    }
    if (pool.header.directoryCount == 0) {
        return Stop::NoOwnEntry;
    }
    if (count < sizeof(bytes)) {
        return Stop::CutDirectory; // the file was cut while we read
    }
    std::copy_n(bytes + kHeaderSize, kEntrySize, pool.uuid.begin());
    return Stop::None;
}

void WalkInto(PoolWalk& walk, const FileBytes& file, Together& together, std::size_t number)
{
    std::uint64_t room = file.Size();
    // Ends whatever the lengths say: one that leads back meets a pool that was seen.
    while (walk.position < file.Size()) {
        walk.stop = ReadPool(file, walk.position, room, together.userSignature, walk);
        if (walk.stop != Stop::None) {
            return;
        }
        const PoolInfo& pool = *walk.stoppedAt;
        if (!together.pools.try_emplace(pool.uuid, Together::Place{number, walk.pools.size()})
                 .second) {
            walk.stop = Stop::DuplicatePool;
            return;
        }
        room -= std::uint64_t{kEntrySize} * pool.header.directoryCount;
        walk.position += pool.length;
        walk.pools.push_back(pool);
        walk.stoppedAt.reset();
    }
}
} // namespace

std::uint64_t PoolInfo::DataInFile(std::uint64_t fileSize) const noexcept
{
    const std::uint64_t begin = DataPosition();
    return begin >= fileSize ? 0 : std::min(DataLength(), fileSize - begin);
}

PoolWalk WalkPools(const FileBytes& file, Together& together) noexcept
{
    PoolWalk walk;
    const std::size_t number = together.files++;
    try {
        WalkInto(walk, file, together, number);
    } catch (const std::bad_alloc&) {
        walk.stop = Stop::NoMemory;
    }
    return walk;
}

bool ForEachEntry(const FileBytes& file, const PoolInfo& pool,
                  const std::function<void(std::uint32_t, const Uuid&)>& visit)
{
    constexpr std::uint32_t kEntriesAtOnce = 512;
    std::vector<Uuid> entries(std::min(pool.header.directoryCount, kEntriesAtOnce));
    std::uint64_t position = pool.position + kHeaderSize;
    for (std::uint32_t done = 0; done < pool.header.directoryCount;) {
        const std::uint32_t count = std::min(kEntriesAtOnce, pool.header.directoryCount - done);
        const std::size_t size = std::size_t{kEntrySize} * count;
        if (file.Read(position, entries.front().data(), size) < size) {
            return false;
        }
        for (std::uint32_t i = 0; i < count; ++i) {
            visit(done + i, entries[i]);
        }
        done += count;
        position += size;
    }
    return true;
}

bool IsPlausiblePool(const FileBytes& file, std::uint64_t position, PoolInfo& found) noexcept
{
    char bytes[kHeaderSize + kEntrySize];
    if (file.Read(position, bytes, sizeof(bytes)) < sizeof(bytes)) {
        return false;
    }
    found.position = position;
    found.header = DecodeHeader(bytes);
    found.length = found.header.LengthValue();
    std::copy_n(bytes + kHeaderSize, kEntrySize, found.uuid.begin());
    return found.header.signature == kSignature && found.header.version == kCurrentVersion &&
           found.header.directoryCount > 0 && found.header.FullSize() <= file.Size() - position;
}
} // namespace simpool
