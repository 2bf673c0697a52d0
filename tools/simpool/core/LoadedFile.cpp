#include "LoadedFile.h"

#include "CommandFailure.h"
#include "EscapedText.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <new>

namespace simpool {
namespace {

constexpr std::size_t kShortestUuidBeginning = 4;

void Open(LoadedFile& file)
{
    const int failure = file.bytes.Open(file.name.c_str());
    if (failure == FileBytes::kNotRegular) {
        throw CommandFailure("cannot read " + Quoted(file.name) + ": not a regular file");
    }
    if (failure != 0) {
        throw SystemFailure("cannot open", file.name, failure);
    }
}

bool BeginsWith(const Uuid& uuid, std::string_view text)
{
    return std::string_view(uuid.data(), uuid.size()).starts_with(text);
}
} // namespace

LoadedFiles::LoadedFiles(const std::vector<std::string>& names, Walk walk)
{
    for (const std::string& name : names) {
        LoadedFile& file = mFiles.emplace_back();
        file.name = name;
        Open(file);
        Together alone;
        file.walk = WalkPools(file.bytes, walk == Walk::EachAlone ? alone : mIndex);
        CheckReads();
        if (file.walk.stop == Stop::NoMemory) {
            throw std::bad_alloc();
        }
        for (const auto& [uuid, place] : alone.pools) {
            mIndex.pools.try_emplace(uuid, Together::Place{mFiles.size() - 1, place.pool});
        }
    }
}

const Together::Place* LoadedFiles::Find(const Uuid& uuid) const
{
    const auto found = mIndex.pools.find(uuid);
    return found == mIndex.pools.end() ? nullptr : &found->second;
}

bool LoadedFiles::Holds(const std::string& name) const
{
    return std::ranges::any_of(
        mFiles, [&](const LoadedFile& file) { return file.bytes.IsSameFile(name.c_str()); });
}

void LoadedFiles::CheckReads() const
{
    for (const LoadedFile& file : mFiles) {
        if (file.bytes.Error() != 0) {
            throw SystemFailure("cannot read", file.name, file.bytes.Error());
        }
    }
}

std::size_t ChoosePool(const LoadedFile& file, std::string_view text)
{
    const std::vector<PoolInfo>& pools = file.Pools();
    std::size_t number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error == std::errc() && stop == end && text.size() < kEntrySize) {
        if (number >= pools.size()) {
            throw CommandFailure(fmt::format("{} has no pool {}; it has {}", Quoted(file.name),
                                             number, Counted(pools.size(), "pool")));
        }
        return number;
    }
    const auto isMeant = [&](const PoolInfo& pool) { return BeginsWith(pool.uuid, text); };
    const auto first = std::ranges::find_if(pools, isMeant);
    if (text.size() < kShortestUuidBeginning || first == pools.end()) {
        throw CommandFailure(fmt::format(
            "{} has no pool {}; name one by its number or by {} characters or more of its UUID",
            Quoted(file.name), Quoted(text), kShortestUuidBeginning));
    }
    if (std::find_if(first + 1, pools.end(), isMeant) != pools.end()) {
        throw CommandFailure(fmt::format("{} begins the UUIDs of several pools in {}", Quoted(text),
                                         Quoted(file.name)));
    }
    return static_cast<std::size_t>(first - pools.begin());
}

std::string ReadBytes(const LoadedFile& file, std::uint64_t position, std::size_t length)
{
    std::string bytes(length, '\0');
    const std::size_t count = file.bytes.Read(position, bytes.data(), length);
    if (file.bytes.Error() != 0) {
        throw SystemFailure("cannot read", file.name, file.bytes.Error());
    }
    if (count < length) {
        throw CommandFailure(fmt::format("cannot read {}: it ends {} short of position {}",
                                         Quoted(file.name), Counted(length - count, "byte"),
                                         Grouped(position + length)));
    }
    return bytes;
}

std::vector<Uuid> ReadDirectory(const LoadedFile& file, const PoolInfo& pool)
{
    std::vector<Uuid> directory;
    directory.reserve(pool.header.directoryCount);
    const bool isWhole = ForEachEntry(
        file.bytes, pool, [&](std::uint32_t, const Uuid& uuid) { directory.push_back(uuid); });
    if (!isWhole) {
        throw CommandFailure(fmt::format("cannot read {}: the directory at {} is cut",
                                         Quoted(file.name), Grouped(pool.position + kHeaderSize)));
    }
    return directory;
}

const char* Describe(Stop stop) noexcept
{
    switch (stop) {
    case Stop::None:
        return "the file's end was reached";
    case Stop::ShortHeader:
        return "fewer than 48 bytes of header are there";
    case Stop::NoSignature:
        return "there is no pool signature";
    case Stop::OtherVersion:
        return "the format version is not 6";
    case Stop::OtherUserSignature:
        return "the user signature is another one";
    case Stop::CutDirectory:
        return "the directory is longer than the file";
    case Stop::DuplicatePool:
        return "a pool with this UUID was there before";
    case Stop::NoOwnEntry:
        return "the directory is empty and names no pool";
    case Stop::ReadFailure:
        return "the file cannot be read";
    case Stop::NoMemory:
        return "memory ran out";
    }
    return "";
}
} // namespace simpool
