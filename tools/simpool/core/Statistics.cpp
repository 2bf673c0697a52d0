#include "Statistics.h"

#include "OpeningCost.h"

#include <algorithm>
#include <unordered_set>

namespace simpool {
namespace {

FileStatistics OfFile(const LoadedFile& file)
{
    FileStatistics result;
    result.size = file.bytes.Size();
    result.rest = result.size - std::min(result.size, file.walk.position);
    result.pools = file.Pools().size();
    for (const PoolInfo& pool : file.Pools()) {
        result.headers += kHeaderSize;
        result.directories += std::uint64_t{kEntrySize} * pool.header.directoryCount;
        result.data += pool.DataInFile(result.size);
        result.references += pool.header.directoryCount - 1;
    }
    return result;
}

void Add(FileStatistics& sum, const FileStatistics& file)
{
    sum.size += file.size;
    sum.headers += file.headers;
    sum.directories += file.directories;
    sum.data += file.data;
    sum.rest += file.rest;
    sum.pools += file.pools;
    sum.references += file.references;
}

std::vector<Together::Place> Largest(const LoadedFiles& files, std::size_t count)
{
    std::vector<Together::Place> places;
    for (std::size_t i = 0; i < files.Count(); ++i) {
        for (std::size_t pool = 0; pool < files[i].Pools().size(); ++pool) {
            places.push_back({i, pool});
        }
    }
    const auto dataOf = [&](const Together::Place& place) {
        const LoadedFile& file = files[place.file];
        return file.Pools()[place.pool].DataInFile(file.bytes.Size());
    };
    std::ranges::stable_sort(places, std::greater(), dataOf);
    places.resize(std::min(places.size(), count));
    return places;
}
} // namespace

Statistics ComputeStatistics(const LoadedFiles& files, std::size_t largestCount)
{
    Statistics result;
    OpeningCost cost;
    std::unordered_set<Uuid, UuidHash> referred;
    for (const LoadedFile& file : files) {
        Add(result.sum, result.files.emplace_back(OfFile(file)));
        for (const PoolInfo& pool : file.Pools()) {
            cost.BeginDirectory(pool.header.directoryCount);
            ForEachEntry(file.bytes, pool, [&](std::uint32_t index, const Uuid& uuid) {
                cost.AddEntry(uuid);
                const bool isNew = index > 0 && referred.insert(uuid).second;
                result.unresolved += isNew && files.Find(uuid) == nullptr ? 1U : 0U;
            });
        }
    }
    files.CheckReads();
    result.distinctReferences = referred.size();
    result.uuids = cost.DistinctUuids();
    result.cacheBytes = cost.CacheBytes();
    result.isRefused = cost.IsRefused();
    result.largest = Largest(files, largestCount);
    return result;
}
} // namespace simpool
