#include "Diff.h"

#include "CommandFailure.h"
#include "EscapedText.h"
#include "Json.h"
#include "PoolRange.h"

#include <algorithm>

namespace simpool {
namespace {

// The two files and what differs, on its way out.
struct Report
{
    const LoadedFile& a;
    const LoadedFile& b;
    const FileDifference& difference;
    Element element;

    void Print(Output& out) const;
    [[nodiscard]] Json Document() const;

private:
    void PrintPool(const PoolDifference& pool, Output& out) const;
    void PrintData(const PoolDifference& pool, Output& out) const;
    [[nodiscard]] std::string Row(const LoadedFile& file, const PoolInfo& pool,
                                  std::uint64_t offset) const;
    [[nodiscard]] Json DataDocument(const PoolDifference& pool) const;
};

std::string Minus(const Output& out, const std::string& text)
{
    return out.Paint(Colour::Red, "- " + text);
}

std::string Plus(const Output& out, const std::string& text)
{
    return out.Paint(Colour::Green, "+ " + text);
}

std::string HexRow(std::string_view bytes)
{
    std::string hex;
    std::string letters;
    for (const char byte : bytes) {
        hex += fmt::format("{:02x} ", static_cast<unsigned char>(byte));
        letters += byte >= ' ' && byte <= '~' ? byte : '.';
    }
    return fmt::format("{:<48} {}", hex, letters);
}

// The 16 bytes of data around `offset`, or as many as there are.
std::string Report::Row(const LoadedFile& file, const PoolInfo& pool, std::uint64_t offset) const
{
    const std::uint64_t begin = offset / kRow * kRow;
    const std::uint64_t count = std::min(kRow, pool.DataInFile(file.bytes.Size()) - begin);
    return HexRow(ReadBytes(file, pool.DataPosition() + begin, count));
}

void Report::PrintData(const PoolDifference& pool, Output& out) const
{
    const DataDifference& data = pool.data;
    if (data.different == 0) {
        return;
    }
    const bool isByte = element == Element::Byte;
    out.Print("  data: {} of {} {} different", Grouped(data.different),
              Counted(data.compared, isByte ? "byte" : "number"),
              data.different == 1 ? "is" : "are");
    if (!isByte) {
        out.Print("; largest distance {:.6g}, relative {:.6g}", data.largestAbsolute,
                  data.largestRelative);
    }
    out.Write("\n");
    for (const DataPlace& place : data.places) {
        const std::string at =
            fmt::format("  {:#010x}  ", isByte ? place.offset / kRow * kRow : place.offset);
        const std::string one = isByte ? Row(a, a.Pools()[pool.a], place.offset) : place.a;
        const std::string other = isByte ? Row(b, b.Pools()[pool.b], place.offset) : place.b;
        out.Print("  {}\n  {}\n", Minus(out, at + one), Plus(out, at + other));
    }
}

void Report::PrintPool(const PoolDifference& pool, Output& out) const
{
    out.Print("pool {} ({})", pool.a, UuidText(a.Pools()[pool.a].uuid));
    if (pool.a != pool.b || a.Pools()[pool.a].uuid != b.Pools()[pool.b].uuid) {
        out.Print(", pool {} ({})", pool.b, UuidText(b.Pools()[pool.b].uuid));
    }
    out.Write("\n");
    for (const FieldDifference& field : pool.fields) {
        out.Print("  {}\n    {}\n    {}\n", field.field, Minus(out, field.a), Plus(out, field.b));
    }
    if (pool.fieldsLeftOut > 0) {
        out.Print("  and {} more of the directory's entries\n", Grouped(pool.fieldsLeftOut));
    }
    PrintData(pool, out);
}

void Report::Print(Output& out) const
{
    out.Print("{}\n{}\n", out.Paint(Colour::Red, "--- " + Escaped(a.name)),
              out.Paint(Colour::Green, "+++ " + Escaped(b.name)));
    const auto text = [](const LoadedFile& file, std::size_t number) {
        const PoolInfo& pool = file.Pools()[number];
        return fmt::format("pool {} ({}), {} of data", number, UuidText(pool.uuid),
                           FullSize(pool.DataLength()));
    };
    for (const std::size_t number : difference.onlyInA) {
        out.Print("{}\n", Minus(out, text(a, number)));
    }
    for (const std::size_t number : difference.onlyInB) {
        out.Print("{}\n", Plus(out, text(b, number)));
    }
    for (const PoolDifference& pool : difference.pools) {
        PrintPool(pool, out);
    }
    for (const FieldDifference& field : difference.fields) {
        out.Print("{}\n  {}\n  {}\n", field.field, Minus(out, field.a), Plus(out, field.b));
    }
}

// A pool of A, or of B when A has none of that name.
Uuid UuidOf(const std::string& text, const LoadedFile& a, const LoadedFile& b)
{
    try {
        return a.Pools()[ChoosePool(a, text)].uuid;
    } catch (const CommandFailure&) {
        return b.Pools()[ChoosePool(b, text)].uuid;
    }
}

Json FieldsDocument(const std::vector<FieldDifference>& fields)
{
    Json list = Json::array();
    for (const FieldDifference& field : fields) {
        list.push_back({{"field", field.field}, {"a", field.a}, {"b", field.b}});
    }
    return list;
}

Json Report::DataDocument(const PoolDifference& pool) const
{
    Json places = Json::array();
    for (const DataPlace& place : pool.data.places) {
        Json entry = {{"offset", place.offset}};
        if (element != Element::Byte) {
            entry["a"] = place.a;
            entry["b"] = place.b;
        }
        places.push_back(std::move(entry));
    }
    return {{"compared", pool.data.compared},
            {"different", pool.data.different},
            {"largestAbsolute", pool.data.largestAbsolute},
            {"largestRelative", pool.data.largestRelative},
            {"places", std::move(places)}};
}

Json Report::Document() const
{
    const auto list = [](const LoadedFile& file, const std::vector<std::size_t>& numbers) {
        Json pools = Json::array();
        for (const std::size_t number : numbers) {
            const PoolInfo& pool = file.Pools()[number];
            pools.push_back({{"number", number},
                             {"uuid", UuidText(pool.uuid)},
                             {"dataLength", pool.DataLength()}});
        }
        return pools;
    };
    Json pools = Json::array();
    for (const PoolDifference& pool : difference.pools) {
        pools.push_back({{"a", pool.a},
                         {"b", pool.b},
                         {"uuid", UuidText(a.Pools()[pool.a].uuid)},
                         {"fields", FieldsDocument(pool.fields)},
                         {"fieldsLeftOut", pool.fieldsLeftOut},
                         {"data", DataDocument(pool)}});
    }
    Json document = NewDocument("diff");
    document["a"] = Escaped(a.name);
    document["b"] = Escaped(b.name);
    document["equal"] = difference.IsEmpty();
    document["onlyInA"] = list(a, difference.onlyInA);
    document["onlyInB"] = list(b, difference.onlyInB);
    document["pools"] = std::move(pools);
    document["fields"] = FieldsDocument(difference.fields);
    return document;
}
} // namespace

CommandText Diff::Text() const
{
    return {
        "diff", "Tell what differs between two files",
        "Compares two files pool by pool and prints differences only: nothing, with exit code "
        "0, when there are none, else exit code 1. Lines with - belong to A, those with + to "
        "B. Pools that one file lacks are always named. Neither the order of pools nor which "
        "of them is the current one counts.\n\n"
        "Pools are paired by UUID. With --by index they are paired by number, for two runs "
        "that made new UUIDs; a reference is then taken for the number of the pool it names.\n\n"
        "Data is compared byte by byte, or with --as number by number: a and b are equal when "
        "|a - b| <= ATOL + RTOL * |b|. Ignored ranges count in bytes of data.",
        "simpool diff old.sim new.sim\n"
        "simpool diff a.sim b.sim --by index --as f64 --rtol 1e-9 --ignore 0:16+8\n"};
}

void Diff::AddOptions(CLI::App& options)
{
    options.add_option("a", mA, "The one file")->required()->type_name("A");
    options.add_option("b", mB, "The other file")->required()->type_name("B");
    options.add_option("--by", mBy, "How pools are paired: uuid or index")
        ->check(CLI::IsMember({"uuid", "index"}))
        ->type_name("KEY");
    options.add_option("--as", mAs, "What data is: byte, u32, i32, u64, f32 or f64")
        ->check(CLI::IsMember({"byte", "u32", "i32", "u64", "f32", "f64"}))
        ->type_name("TYPE");
    options.add_option("--rtol", mRelative, "Relative tolerance of numbers")
        ->check(CLI::NonNegativeNumber)
        ->type_name("RTOL");
    options.add_option("--atol", mAbsolute, "Absolute tolerance of numbers")
        ->check(CLI::NonNegativeNumber)
        ->type_name("ATOL");
    options.add_option("--ignore", mIgnored, "Data that does not count; repeatable")
        ->type_name("POOL[:OFFSET[+LENGTH]]")
        ->allow_extra_args(false);
    options.add_option("--places", mMostPlaces, "How many places are shown in each pool (3)")
        ->type_name("N");
}

DifferenceRules Diff::Rules(const LoadedFile& a, const LoadedFile& b) const
{
    DifferenceRules rules;
    rules.byIndex = mBy == "index";
    rules.data = {.element = *ParseElement(mAs),
                  .relative = mRelative,
                  .absolute = mAbsolute,
                  .mostPlaces = mMostPlaces};
    if (rules.data.element == Element::Byte && (mRelative > 0 || mAbsolute > 0)) {
        throw CommandFailure("a tolerance needs --as, since bytes have none");
    }
    for (const std::string& text : mIgnored) {
        const PoolRange range = ParsePoolRange(text);
        const std::uint64_t end = range.offset + std::min(range.length, UINT64_MAX - range.offset);
        rules.ignored[UuidOf(range.pool, a, b)].push_back({range.offset, end});
    }
    return rules;
}

ExitCode Diff::Run(const Surroundings& surroundings)
{
    const LoadedFiles a({mA}, LoadedFiles::Walk::EachAlone);
    const LoadedFiles b({mB}, LoadedFiles::Walk::EachAlone);
    const DifferenceRules rules = Rules(a[0], b[0]);
    const FileDifference difference = CompareFiles(a, b, rules, surroundings.err);
    const Report report{a[0], b[0], difference, rules.data.element};
    if (surroundings.json) {
        PrintJson(surroundings.out, report.Document());
    } else if (!difference.IsEmpty()) {
        report.Print(surroundings.out);
    }
    return difference.IsEmpty() ? ExitCode::Fine : ExitCode::Finding;
}
} // namespace simpool
