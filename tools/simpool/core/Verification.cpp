#include "Verification.h"

#include "EscapedText.h"
#include "OpeningCost.h"
#include "PoolSearch.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <string_view>

namespace simpool {
namespace {

constexpr std::uint64_t kMuchCacheMemory = 256ULL << 20; // bytes
constexpr std::uint64_t kManyZeros = 512;                // bytes: a sector

using FileFindings = std::vector<Finding>;

// Looks at one file; the cost of opening goes on over all of them.
class FileCheck
{
public:
    FileCheck(const LoadedFiles& files, std::size_t number, OpeningCost& cost)
        : mFiles(files), mFile(files[number]), mNumber(number), mCost(cost)
    {}

    FileFindings Run(VerifyDepth depth, const std::function<void(std::uint64_t)>& progress)
    {
        for (std::size_t i = 0; i < mFile.Pools().size(); ++i) {
            CheckLength(i);
            if (depth == VerifyDepth::ErrorsAndWarnings) {
                CheckReserved(i);
                CheckDirectory(i);
                CheckDataBegin(i);
                CheckDataEnd(i);
            }
        }
        CheckStop();
        if (depth == VerifyDepth::ErrorsAndWarnings) {
            CheckForPoolsInside(progress);
        }
        std::ranges::stable_sort(mFindings, {}, &Finding::position);
        return std::move(mFindings);
    }

private:
    void Add(FindingCode code, std::size_t pool, std::uint64_t position, std::string what)
    {
        mFindings.push_back({code, mNumber, pool, position, std::move(what)});
    }

    void CheckLength(std::size_t number);
    void CheckReserved(std::size_t number);
    void CheckDirectory(std::size_t number);
    void CheckUuid(std::size_t number, std::uint32_t entry, const Uuid& uuid);
    void CheckDataBegin(std::size_t number);
    void CheckDataEnd(std::size_t number);
    void CheckStop();
    void CheckForPoolsInside(const std::function<void(std::uint64_t)>& progress);

    [[nodiscard]] const PoolInfo& PoolAt(std::size_t number) const { return mFile.Pools()[number]; }

    const LoadedFiles& mFiles;
    const LoadedFile& mFile;
    std::size_t mNumber;
    OpeningCost& mCost;
    FileFindings mFindings = {};
    std::map<std::uint64_t, std::uint64_t> mZerosFrom = {}; // by end; pools may overlap
};

void FileCheck::CheckLength(std::size_t number)
{
    const PoolInfo& pool = PoolAt(number);
    const std::uint64_t size = mFile.bytes.Size();
    if (!pool.header.LengthIsDecimal()) {
        Add(FindingCode::LengthNotDecimal, number, pool.position,
            fmt::format("the length reads '{}', which is taken for {}",
                        Escaped({pool.header.lengthDigits.data(), pool.header.lengthDigits.size()}),
                        Grouped(pool.length)));
    }
    if (pool.length < pool.header.FullSize()) {
        Add(FindingCode::LengthBelowHeader, number, pool.position,
            fmt::format("the length is {}, header and directory alone have {}",
                        Counted(pool.length, "byte"), Grouped(pool.header.FullSize())));
    }
    if (pool.length > size - pool.position) {
        Add(FindingCode::LengthPastEnd, number, pool.position,
            fmt::format("the length is {}, {} more than the file has", Counted(pool.length, "byte"),
                        Grouped(pool.length - (size - pool.position))));
    }
}

void FileCheck::CheckReserved(std::size_t number)
{
    const StoredHeader& header = PoolAt(number).header;
    const bool areZero = std::ranges::all_of(header.reserved, [](char c) { return c == 0; });
    if (!areZero || header.reserved1 != 2 || header.reserved2 != 0) {
        Add(FindingCode::ReservedBytes, number, PoolAt(number).position,
            fmt::format("bytes 9 to 15 are {}, the reserved words {} and {} instead of 2 and 0",
                        areZero ? "zero" : "not zero", header.reserved1, header.reserved2));
    }
}

void FileCheck::CheckUuid(std::size_t number, std::uint32_t entry, const Uuid& uuid)
{
    const std::uint64_t position =
        PoolAt(number).position + kHeaderSize + std::uint64_t{kEntrySize} * entry;
    if (!IsLowercaseHex(uuid)) {
        Add(FindingCode::UuidNotHex, number, position,
            fmt::format("entry {} is '{}'", entry, UuidText(uuid)));
    } else if (!IsVersion4(uuid)) {
        Add(FindingCode::UuidNotVersion4, number, position,
            fmt::format("entry {} is {}", entry, UuidText(uuid)));
    }
}

void FileCheck::CheckDirectory(std::size_t number)
{
    const PoolInfo& pool = PoolAt(number);
    std::uint64_t unresolved = 0;
    std::uint32_t first = 0;
    Uuid firstUuid = {};
    mCost.BeginDirectory(pool.header.directoryCount);
    ForEachEntry(mFile.bytes, pool, [&](std::uint32_t entry, const Uuid& uuid) {
        if (mCost.AddEntry(uuid)) {
            CheckUuid(number, entry, uuid);
        }
        if (mFiles.Find(uuid) == nullptr && unresolved++ == 0) {
            first = entry;
            firstUuid = uuid;
        }
    });
    if (unresolved > 0) {
        Add(FindingCode::UnresolvedReference, number,
            pool.position + kHeaderSize + std::uint64_t{kEntrySize} * first,
            fmt::format("{} of {} not in these files, the first is entry {}, {}",
                        Grouped(unresolved), Counted(pool.header.directoryCount - 1, "reference"),
                        first, UuidText(firstUuid)));
    }
}

void FileCheck::CheckDataBegin(std::size_t number)
{
    const PoolInfo& pool = PoolAt(number);
    const std::uint64_t end = pool.DataPosition() + pool.DataInFile(mFile.bytes.Size());
    std::uint64_t position = pool.DataPosition();
    Uuid record = {};
    while (end - position >= kEntrySize &&
           mFile.bytes.Read(position, record.data(), kEntrySize) == kEntrySize &&
           IsVersion4(record)) {
        position += kEntrySize;
    }
    if (position > pool.DataPosition()) {
        Add(FindingCode::LeftoverDirectory, number, pool.DataPosition(),
            fmt::format("the first {} of data look like {} of a directory",
                        Counted(position - pool.DataPosition(), "byte"),
                        (position - pool.DataPosition()) / kEntrySize == 1 ? "an entry"
                                                                           : "entries"));
    }
}

void FileCheck::CheckDataEnd(std::size_t number)
{
    const PoolInfo& pool = PoolAt(number);
    const std::uint64_t begin = pool.DataPosition();
    const std::uint64_t end = begin + pool.DataInFile(mFile.bytes.Size());
    const auto [known, isNew] = mZerosFrom.try_emplace(end, 0);
    if (isNew) {
        known->second = TrailingZerosFrom(mFile.bytes, begin, end);
    }
    const std::uint64_t zerosFrom = std::max(known->second, begin);
    if (end - zerosFrom >= kManyZeros) {
        Add(FindingCode::TrailingZeros, number, zerosFrom,
            fmt::format("the last {} of {} of data are zero", Grouped(end - zerosFrom),
                        Counted(end - begin, "byte")));
    }
}

void FileCheck::CheckStop()
{
    const PoolWalk& walk = mFile.walk;
    if (walk.stop == Stop::None) {
        return;
    }
    const FindingCode code = CodeOf(walk.stop);
    const std::uint64_t size = mFile.bytes.Size();
    std::string what = TextOf(code).meaning;
    if (walk.stop == Stop::OtherVersion) {
        what = fmt::format("the format version is {}", walk.stoppedAt->header.version);
    } else if (walk.stop == Stop::OtherUserSignature) {
        const UserSignature& signature = walk.stoppedAt->header.userSignature;
        what = fmt::format("the user signature is '{}', not that of the first pool",
                           Escaped({signature.data(), signature.size()}));
    } else if (walk.stop == Stop::CutDirectory) {
        what = fmt::format("the directory count is {}, more than the file has room for",
                           Grouped(walk.stoppedAt->header.directoryCount));
    } else if (walk.stop == Stop::DuplicatePool) {
        const Together::Place& place = *mFiles.Find(walk.stoppedAt->uuid);
        what = fmt::format("the UUID {} is that of pool {} of {}", UuidText(walk.stoppedAt->uuid),
                           place.pool, Quoted(mFiles[place.file].name));
    }
    Add(code, mFile.Pools().size(), walk.position,
        fmt::format("{}; {} from there on", what, FullSize(size - std::min(size, walk.position))));
}

void FileCheck::CheckForPoolsInside(const std::function<void(std::uint64_t)>& progress)
{
    // In the order of positions, which is that of the walk but in a damaged file.
    std::map<std::uint64_t, std::size_t> byPosition;
    for (std::size_t i = 0; i < mFile.Pools().size(); ++i) {
        byPosition.emplace(PoolAt(i).position, i);
    }
    PoolSearch search(mFile.bytes, progress);
    const PoolInfo* inner = search.FirstFrom(0);
    for (; inner != nullptr; inner = search.FirstFrom(inner->position + 1)) {
        const auto behind = byPosition.upper_bound(inner->position);
        if (behind == byPosition.begin() || std::prev(behind)->first == inner->position) {
            continue;
        }
        const std::size_t number = std::prev(behind)->second;
        const PoolInfo& pool = PoolAt(number);
        const std::uint64_t dataEnd = pool.DataPosition() + pool.DataInFile(mFile.bytes.Size());
        if (inner->position >= pool.DataPosition() && inner->position < dataEnd) {
            Add(FindingCode::PoolInsideData, number, inner->position,
                fmt::format("a header of pool {} lies at data offset {}", UuidText(inner->uuid),
                            Grouped(inner->position - pool.DataPosition())));
        }
    }
}

void CheckCost(const OpeningCost& cost, std::vector<Finding>& findings)
{
    if (cost.IsRefused()) {
        findings.push_back({FindingCode::CacheMemory,
                            0,
                            {},
                            0,
                            fmt::format("with {} opening is refused for want of memory",
                                        Counted(cost.DistinctUuids(), "UUID"))});
    } else if (cost.CacheBytes() > kMuchCacheMemory) {
        findings.push_back(
            {FindingCode::CacheMemory,
             0,
             {},
             0,
             fmt::format("opening reserves {} for a cache over {}", FullSize(cost.CacheBytes()),
                         Counted(cost.DistinctUuids(), "UUID"))});
    }
}
} // namespace

std::vector<Finding> Verify(const LoadedFiles& files, VerifyDepth depth,
                            const std::function<void(std::uint64_t)>& progress)
{
    std::vector<Finding> findings;
    OpeningCost cost;
    std::uint64_t done = 0;
    for (std::size_t i = 0; i < files.Count(); ++i) {
        FileFindings ofFile = FileCheck(files, i, cost).Run(depth, [&](std::uint64_t position) {
            if (progress) {
                progress(done + position);
            }
        });
        std::ranges::move(ofFile, std::back_inserter(findings));
        done += files[i].bytes.Size();
    }
    files.CheckReads();
    CheckCost(cost, findings);
    return findings;
}

std::uint64_t TrailingZerosFrom(const FileBytes& file, std::uint64_t begin, std::uint64_t end)
{
    constexpr std::uint64_t kChunk = 1ULL << 16;
    std::vector<char> chunk(kChunk);
    while (end > begin) {
        const std::uint64_t from = end - std::min(kChunk, end - begin);
        if (file.SkipHole(from) < end) {
            const auto length = static_cast<std::size_t>(end - from);
            const std::size_t count = file.Read(from, chunk.data(), length);
            const std::string_view bytes(chunk.data(), count);
            const std::size_t last = bytes.find_last_not_of('\0');
            if (count < length) {
                return end; // cut meanwhile, or not to be read
            }
            if (last != std::string_view::npos) {
                return from + last + 1;
            }
        }
        end = from;
    }
    return begin;
}
} // namespace simpool
