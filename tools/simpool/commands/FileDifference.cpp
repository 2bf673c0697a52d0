#include "FileDifference.h"

#include "EscapedText.h"

#include <algorithm>
#include <iterator>
#include <optional>

namespace simpool {
namespace {

constexpr std::size_t kMostEntries = 4; // of a directory that are told one by one

struct Side
{
    const LoadedFiles& files;
    const LoadedFile& file;
    const PoolInfo& pool;
};

void Note(std::vector<FieldDifference>& fields, const std::string& field, const std::string& a,
          const std::string& b)
{
    if (a != b) {
        fields.push_back({field, a, b});
    }
}

std::string HexText(const std::array<char, 7>& bytes)
{
    std::string text;
    for (const char byte : bytes) {
        text += fmt::format("{:02x}", static_cast<unsigned char>(byte));
    }
    return text;
}

void CompareHeaders(const Side& a, const Side& b, std::vector<FieldDifference>& fields)
{
    const StoredHeader& x = a.pool.header;
    const StoredHeader& y = b.pool.header;
    const auto signature = [](const StoredHeader& header) {
        return Quoted({header.userSignature.data(), header.userSignature.size()});
    };
    Note(fields, "user signature", signature(x), signature(y));
    Note(fields, "reserved bytes", HexText(x.reserved), HexText(y.reserved));
    Note(fields, "reserved1", std::to_string(x.reserved1), std::to_string(y.reserved1));
    Note(fields, "reserved2", std::to_string(x.reserved2), std::to_string(y.reserved2));
    Note(fields, "data length", FullSize(a.pool.DataLength()), FullSize(b.pool.DataLength()));
    if (a.pool.DataLength() == b.pool.DataLength()) {
        Note(fields, "data in the file", FullSize(a.pool.DataInFile(a.file.bytes.Size())),
             FullSize(b.pool.DataInFile(b.file.bytes.Size())));
    }
    Note(fields, "directory entries", Grouped(x.directoryCount), Grouped(y.directoryCount));
}

// What an entry names: by number it is the place of the pool that counts, since UUIDs are new in
// every run.
std::string EntryText(const Side& side, const Uuid& uuid, bool byIndex)
{
    const Together::Place* place = byIndex ? side.files.Find(uuid) : nullptr;
    return place == nullptr ? UuidText(uuid) : fmt::format("pool {}", place->pool);
}

void CompareDirectories(const Side& a, const Side& b, bool byIndex, PoolDifference& difference)
{
    const std::vector<Uuid> x = ReadDirectory(a.file, a.pool);
    const std::vector<Uuid> y = ReadDirectory(b.file, b.pool);
    if (!byIndex && x == y) {
        return;
    }
    std::size_t told = 0;
    for (std::size_t i = 0; i < std::min(x.size(), y.size()); ++i) {
        const std::string one = EntryText(a, x[i], byIndex);
        const std::string other = EntryText(b, y[i], byIndex);
        if (one == other) {
            continue;
        }
        if (told < kMostEntries) {
            difference.fields.push_back({fmt::format("directory entry {}", i), one, other});
            ++told;
        } else {
            ++difference.fieldsLeftOut;
        }
    }
}

std::vector<DataRange> IgnoredOf(const DifferenceRules& rules, const Uuid& a, const Uuid& b)
{
    std::vector<DataRange> ranges;
    for (const Uuid& uuid : {a, b}) {
        if (const auto found = rules.ignored.find(uuid); found != rules.ignored.end()) {
            ranges.insert(ranges.end(), found->second.begin(), found->second.end());
        }
    }
    return ranges;
}

PoolDifference ComparePools(const Side& a, const Side& b, const DifferenceRules& rules,
                            PoolDifference difference, ProgressLine& progress)
{
    CompareHeaders(a, b, difference.fields);
    CompareDirectories(a, b, rules.byIndex, difference);
    const DataStretch one{&a.file, a.pool.DataPosition(), a.pool.DataInFile(a.file.bytes.Size())};
    const DataStretch other{&b.file, b.pool.DataPosition(), b.pool.DataInFile(b.file.bytes.Size())};
    difference.data =
        CompareData(one, other, IgnoredOf(rules, a.pool.uuid, b.pool.uuid), rules.data, progress);
    return difference;
}

std::optional<std::size_t> PartnerOf(const LoadedFile& file, std::size_t number,
                                     const LoadedFiles& others, bool byIndex)
{
    if (byIndex) {
        return number < others[0].Pools().size() ? std::optional(number) : std::nullopt;
    }
    const Together::Place* place = others.Find(file.Pools()[number].uuid);
    return place == nullptr ? std::nullopt : std::optional(place->pool);
}

// What lies behind the last pool of a damaged file is compared as plain bytes.
void CompareTails(const LoadedFile& a, const LoadedFile& b, std::vector<FieldDifference>& fields,
                  ProgressLine& progress)
{
    const auto text = [](const LoadedFile& file) -> std::string {
        if (file.walk.stop == Stop::None) {
            return "nothing";
        }
        return fmt::format("{} after a stop at byte {}: {}",
                           FullSize(file.bytes.Size() - file.walk.position),
                           Grouped(file.walk.position), Describe(file.walk.stop));
    };
    const auto stretch = [](const LoadedFile& file) -> DataStretch {
        const bool isWhole = file.walk.stop == Stop::None;
        return {&file, file.walk.position, isWhole ? 0 : file.bytes.Size() - file.walk.position};
    };
    Note(fields, "behind the last pool", text(a), text(b));
    if (fields.empty()) {
        const DataDifference tail = CompareData(stretch(a), stretch(b), {}, {}, progress);
        if (tail.different > 0) {
            fields.push_back({fmt::format("behind the last pool, from byte {} of it on",
                                          tail.places.front().offset),
                              "bytes", "other bytes"});
        }
    }
}
} // namespace

FileDifference CompareFiles(const LoadedFiles& a, const LoadedFiles& b,
                            const DifferenceRules& rules, Output& err)
{
    FileDifference difference;
    ProgressLine progress(err, "comparing", a[0].bytes.Size());
    for (std::size_t i = 0; i < a[0].Pools().size(); ++i) {
        const std::optional<std::size_t> partner = PartnerOf(a[0], i, b, rules.byIndex);
        if (!partner) {
            difference.onlyInA.push_back(i);
            continue;
        }
        PoolDifference pool =
            ComparePools({a, a[0], a[0].Pools()[i]}, {b, b[0], b[0].Pools()[*partner]}, rules,
                         {.a = i, .b = *partner}, progress);
        if (!pool.IsEmpty()) {
            difference.pools.push_back(std::move(pool));
        }
    }
    for (std::size_t i = 0; i < b[0].Pools().size(); ++i) {
        if (!PartnerOf(b[0], i, a, rules.byIndex)) {
            difference.onlyInB.push_back(i);
        }
    }
    CompareTails(a[0], b[0], difference.fields, progress);
    return difference;
}
} // namespace simpool
