#include "FileMap.h"

#include <algorithm>

namespace simpool {
namespace {

// Lays stretches end to end.
class Mapper
{
public:
    explicit Mapper(const LoadedFile& file) : mFile(file) {}

    std::vector<Stretch> Map()
    {
        // In a damaged file a length may lead backwards.
        std::vector<std::size_t> order(mFile.Pools().size());
        for (std::size_t i = 0; i < order.size(); ++i) {
            order[i] = i;
        }
        std::ranges::sort(order, {}, [&](std::size_t i) { return mFile.Pools()[i].position; });
        for (std::size_t i = 0; i < order.size(); ++i) {
            const PoolInfo& pool = mFile.Pools()[order[i]];
            FillTo(StretchKind::Lost, pool.position);
            mPool = order[i];
            const bool isLast = i + 1 == order.size();
            MapPool(pool, isLast ? mFile.bytes.Size() : mFile.Pools()[order[i + 1]].position);
        }
        FillTo(StretchKind::Lost, mFile.bytes.Size());
        return std::move(mStretches);
    }

private:
    void MapPool(const PoolInfo& pool, std::uint64_t end)
    {
        const std::uint64_t size = mFile.bytes.Size();
        FillTo(StretchKind::Header, std::min(pool.position + kHeaderSize, end));
        FillTo(StretchKind::Directory, std::min(pool.DataPosition(), end));
        const std::uint64_t dataEnd = std::min(pool.DataPosition() + pool.DataInFile(size), end);
        while (mEnd < dataEnd) {
            FillTo(StretchKind::Hole, std::min(mFile.bytes.SkipHole(mEnd), dataEnd));
            FillTo(StretchKind::Data, std::min(mFile.bytes.SkipData(mEnd), dataEnd));
        }
    }

    void FillTo(StretchKind kind, std::uint64_t end)
    {
        if (end > mEnd) {
            mStretches.push_back({kind, mEnd, end, mPool});
            mEnd = end;
        }
    }

    const LoadedFile& mFile;
    std::vector<Stretch> mStretches = {};
    std::uint64_t mEnd = 0;
    std::size_t mPool = 0;
};
} // namespace

std::vector<Stretch> MapFile(const LoadedFile& file)
{
    return Mapper(file).Map();
}

std::array<std::uint64_t, kStretchKinds> SumByKind(const std::vector<Stretch>& stretches)
{
    std::array<std::uint64_t, kStretchKinds> sums = {};
    for (const Stretch& stretch : stretches) {
        sums[static_cast<std::size_t>(stretch.kind)] += stretch.Length();
    }
    return sums;
}

const char* NameOf(StretchKind kind) noexcept
{
    constexpr std::array<const char*, kStretchKinds> kNames = {"header", "directory", "data",
                                                               "hole", "lost"};
    return kNames[static_cast<std::size_t>(kind)];
}
} // namespace simpool
