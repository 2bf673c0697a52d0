#include "PoolCopying.h"

#include "CommandFailure.h"
#include "EscapedText.h"

#include <sys/statvfs.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <unordered_map>
#include <unordered_set>

namespace simpool {
namespace {

std::string NameOf(const CopiedPool& pool)
{
    return fmt::format("pool {} ({}) of {}", pool.number, UuidText(pool.info.uuid),
                       Quoted(pool.file->name));
}

void CheckOne(const CopiedPool& pool, const CopiedPool& first)
{
    const PoolInfo& info = pool.info;
    const std::uint64_t there = pool.file->bytes.Size() - info.position;
    if (info.length < info.header.FullSize()) {
        throw CommandFailure(fmt::format("{} claims {}, less than its own header and directory",
                                         NameOf(pool), FullSize(info.length)));
    }
    if (info.length > there) {
        throw CommandFailure(fmt::format("{} claims {}, but its file ends after {} of them",
                                         NameOf(pool), FullSize(info.length), Grouped(there)));
    }
    if (info.header.userSignature != first.info.header.userSignature) {
        const auto text = [](const UserSignature& signature) {
            return Quoted({signature.data(), signature.size()});
        };
        throw CommandFailure(fmt::format("{} has the user signature {}, {} has {}", NameOf(pool),
                                         text(info.header.userSignature), NameOf(first),
                                         text(first.info.header.userSignature)));
    }
}

// Room that the pools take at most; holes would take less.
void CheckRoom(std::uint64_t length, const std::string& output)
{
    const std::filesystem::path folder = std::filesystem::path(output).parent_path();
    const std::string name = folder.empty() ? "." : folder.string();
    struct statvfs status = {};
    if (::statvfs(name.c_str(), &status) != 0) {
        throw SystemFailure("cannot look at the folder", name, errno);
    }
    const std::uint64_t room = std::uint64_t{status.f_bavail} * status.f_frsize;
    if (length > room) {
        throw CommandFailure(fmt::format("{} are needed for {}, but only {} are free",
                                         FullSize(length), Quoted(output), FullSize(room)));
    }
}

std::string HeaderOf(const PoolInfo& pool, bool isLast)
{
    StoredHeader header = pool.header;
    header.SetLength(isLast ? 0 : pool.length);
    std::string bytes(kHeaderSize, '\0');
    EncodeHeader(header, bytes.data());
    return bytes;
}
} // namespace

CopiedPool PoolOf(const LoadedFile& file, std::size_t number)
{
    return {&file, number, file.Pools()[number]};
}

std::vector<CopiedPool> AllPools(const LoadedFile& file)
{
    std::vector<CopiedPool> pools;
    for (std::size_t i = 0; i < file.Pools().size(); ++i) {
        pools.push_back(PoolOf(file, i));
    }
    return pools;
}

std::uint64_t TotalLength(const std::vector<CopiedPool>& pools)
{
    std::uint64_t total = 0;
    for (const CopiedPool& pool : pools) {
        total += pool.info.length;
    }
    return total;
}

ReferenceCount CountReferences(const std::vector<CopiedPool>& pools)
{
    std::unordered_set<Uuid, UuidHash> there;
    for (const CopiedPool& pool : pools) {
        there.insert(pool.info.uuid);
    }
    ReferenceCount count;
    for (const CopiedPool& pool : pools) {
        ForEachEntry(pool.file->bytes, pool.info, [&](std::uint32_t index, const Uuid& uuid) {
            if (index > 0) {
                ++(there.contains(uuid) ? count.resolved : count.unresolved);
            }
        });
    }
    return count;
}

void CheckPools(const std::vector<CopiedPool>& pools, const std::string& output)
{
    if (pools.empty()) {
        throw CommandFailure("there is no pool to write");
    }
    std::unordered_map<Uuid, const CopiedPool*, UuidHash> seen;
    for (const CopiedPool& pool : pools) {
        CheckOne(pool, pools.front());
        const auto [entry, isNew] = seen.try_emplace(pool.info.uuid, &pool);
        if (!isNew) {
            throw CommandFailure(
                fmt::format("{} and {} are the same", NameOf(*entry->second), NameOf(pool)));
        }
    }
    CheckRoom(TotalLength(pools), output);
}

void WritePools(const std::vector<CopiedPool>& pools, NewFile& out, Output& err)
{
    ProgressLine progress(err, "copying", TotalLength(pools));
    for (const CopiedPool& pool : pools) {
        out.Append(HeaderOf(pool.info, &pool == &pools.back()));
        CopyInSteps(pool.file->bytes, pool.info.position + kHeaderSize,
                    pool.info.length - kHeaderSize, out, progress);
    }
}

void CopyInSteps(const FileBytes& source, std::uint64_t position, std::uint64_t length,
                 NewFile& out, ProgressLine& progress)
{
    constexpr std::uint64_t kStep = std::uint64_t{64} << 20; // bytes
    for (std::uint64_t done = 0; done < length;) {
        const std::uint64_t count = std::min(kStep, length - done);
        out.CopyFrom(source, position + done, count);
        done += count;
        progress.At(out.Size());
    }
}

void RefuseInput(const LoadedFiles& inputs, const std::string& output)
{
    if (inputs.Holds(output)) {
        throw CommandFailure(Quoted(output) + " is read by this command and cannot be written");
    }
}

void RefuseDamage(const LoadedFile& file)
{
    if (file.walk.stop != Stop::None) {
        throw CommandFailure(fmt::format("{} is damaged at byte {}: {}; salvage it first",
                                         Quoted(file.name), Grouped(file.walk.position),
                                         Describe(file.walk.stop)));
    }
}

void DescribeCopies(Json& document, const std::vector<CopiedPool>& pools, const std::string& output)
{
    const ReferenceCount references = CountReferences(pools);
    document["output"] = Escaped(output);
    document["size"] = TotalLength(pools);
    document["references"] = {{"resolved", references.resolved},
                              {"unresolved", references.unresolved}};
    Json list = Json::array();
    std::uint64_t position = 0;
    for (const CopiedPool& pool : pools) {
        list.push_back({{"uuid", UuidText(pool.info.uuid)},
                        {"from", Escaped(pool.file->name)},
                        {"number", pool.number},
                        {"position", position},
                        {"length", pool.info.length}});
        position += pool.info.length;
    }
    document["pools"] = std::move(list);
}
} // namespace simpool
