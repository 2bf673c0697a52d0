#include "Stat.h"

#include "EscapedText.h"
#include "FileSummary.h"
#include "Statistics.h"
#include "TextTable.h"

#include <algorithm>

namespace simpool {
namespace {

using Align = TextTable::Align;

Json Document(const FileStatistics& file)
{
    return {{"size", file.size},
            {"pools", file.pools},
            {"headerBytes", file.headers},
            {"directoryBytes", file.directories},
            {"dataBytes", file.data},
            {"restBytes", file.rest},
            {"references", file.references}};
}

Json Document(const LoadedFiles& files, const Statistics& statistics)
{
    Json document = NewDocument("stat");
    document["files"] = Json::array();
    for (std::size_t i = 0; i < files.Count(); ++i) {
        Json entry = FileHead(files[i]);
        entry.update(Document(statistics.files[i]));
        document["files"].push_back(std::move(entry));
    }
    document["sum"] = Document(statistics.sum);
    document["distinctReferences"] = statistics.distinctReferences;
    document["unresolvedReferences"] = statistics.unresolved;
    document["opening"] = {
        {"uuids", statistics.uuids},
        {"cacheBytes", statistics.isRefused ? Json() : Json(statistics.cacheBytes)},
        {"refused", statistics.isRefused}};
    document["largest"] = Json::array();
    for (const Together::Place& place : statistics.largest) {
        Json pool = PoolSummary(files[place.file], place.pool);
        pool["file"] = Escaped(files[place.file].name);
        document["largest"].push_back(std::move(pool));
    }
    return document;
}

std::string Share(std::uint64_t part, std::uint64_t whole)
{
    return whole == 0 ? std::string("-")
                      : fmt::format("{:.1f} %",
                                    100 * static_cast<double>(part) / static_cast<double>(whole));
}

void PrintKinds(Output& out, const FileStatistics& file)
{
    TextTable table(
        {{"kind"}, {"bytes", Align::Right}, {"", Align::Right}, {"share", Align::Right}});
    const auto add = [&](const char* kind, std::uint64_t bytes) {
        table.AddRow({kind, Grouped(bytes), HumanSize(bytes), Share(bytes, file.size)});
    };
    add("pool headers", file.headers);
    add("directories", file.directories);
    add("data", file.data);
    if (file.rest > 0) {
        add("not in any pool", file.rest);
    }
    add("all", file.size);
    table.Print(out);
}

void PrintLargest(Output& out, const LoadedFiles& files, const Statistics& statistics)
{
    TextTable table(
        {{"UUID"}, {"data", Align::Right}, {"", Align::Right}, {"share", Align::Right}, {"place"}});
    for (const Together::Place& place : statistics.largest) {
        const LoadedFile& file = files[place.file];
        const PoolInfo& pool = file.Pools()[place.pool];
        const std::uint64_t data = pool.DataInFile(file.bytes.Size());
        table.AddRow({UuidText(pool.uuid), Grouped(data), HumanSize(data),
                      Share(data, statistics.sum.size),
                      fmt::format("pool {} of {}", place.pool, Escaped(file.name))});
    }
    out.Print("{}\n", out.Paint(Colour::Bold, "Largest pools"));
    table.Print(out);
}

void Print(Output& out, const LoadedFiles& files, const Statistics& statistics)
{
    for (std::size_t i = 0; i < files.Count(); ++i) {
        out.Print("{}\n", out.Paint(Colour::Bold, FileLine(files[i])));
        PrintKinds(out, statistics.files[i]);
        if (files[i].walk.stop != Stop::None) {
            out.Print("  {}\n", out.Paint(Colour::Red, StopLine(files[i])));
        }
    }
    if (files.Count() > 1) {
        out.Print("{}\n", out.Paint(Colour::Bold, "Together"));
        PrintKinds(out, statistics.sum);
    }
    if (!statistics.largest.empty()) {
        PrintLargest(out, files, statistics);
    }
    out.Print("References: {}, to {}, of which {} in none of these files\n",
              Grouped(statistics.sum.references), Counted(statistics.distinctReferences, "pool"),
              Grouped(statistics.unresolved));
    if (statistics.isRefused) {
        out.Print("Opening: refused for want of memory, {} are too many\n",
                  Counted(statistics.uuids, "UUID"));
    } else {
        out.Print("Opening: {}, {} of address space for the cache\n",
                  Counted(statistics.uuids, "UUID"), FullSize(statistics.cacheBytes));
    }
}
} // namespace

CommandText Stat::Text() const
{
    return {"stat", "Tell where the bytes of files go",
            "Adds up headers, directories and data, lists the largest pools, counts the references "
            "and says what opening all files in one document costs: its cache has four bytes for "
            "each pair of UUIDs, which take memory only where references are stored or read.\n\n"
            "The exit status is 1 when a file is damaged.",
            "simpool stat run.sim\nsimpool stat --largest 3 mesh.sim results.sim\n"};
}

void Stat::AddOptions(CLI::App& options)
{
    options.add_option("file", mNames, "Files to add up")->required()->type_name("FILE");
    options.add_option("--largest", mLargest, "How many of the largest pools to list (10)")
        ->type_name("N");
}

ExitCode Stat::Run(const Surroundings& surroundings)
{
    const LoadedFiles files(mNames, LoadedFiles::Walk::EachAlone);
    const Statistics statistics = ComputeStatistics(files, mLargest);
    if (surroundings.json) {
        PrintJson(surroundings.out, Document(files, statistics));
    } else {
        Print(surroundings.out, files, statistics);
    }
    return std::ranges::all_of(files, EndsWell) ? ExitCode::Fine : ExitCode::Finding;
}
} // namespace simpool
