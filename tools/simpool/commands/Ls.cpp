#include "Ls.h"

#include "CommandFailure.h"
#include "EscapedText.h"
#include "FileSummary.h"
#include "TextTable.h"

#include <chrono>
#include <thread>

namespace simpool {
namespace {

using Align = TextTable::Align;

// Where the pool lies that an entry names: "pool 3", "pool 3 of b.sim", "not in these files".
std::string PlaceText(const LoadedFiles& files, const LoadedFile& file, const Uuid& uuid)
{
    const Together::Place* place = files.Find(uuid);
    if (place == nullptr) {
        return "not in these files";
    }
    const LoadedFile& other = files[place->file];
    return fmt::format("pool {}{}", place->pool,
                       &other == &file ? "" : " of " + Escaped(other.name));
}

void PrintDirectories(Output& out, const LoadedFiles& files, const LoadedFile& file)
{
    for (std::size_t i = 0; i < file.Pools().size(); ++i) {
        const PoolInfo& pool = file.Pools()[i];
        out.Print("  pool {}: {} of data, reserved words {} and {}\n", i,
                  FullSize(pool.DataLength()), pool.header.reserved1, pool.header.reserved2);
        const std::vector<Uuid> directory = ReadDirectory(file, pool);
        for (std::size_t entry = 1; entry < directory.size(); ++entry) {
            out.Print("    entry {} refers to {}, {}\n", entry, UuidText(directory[entry]),
                      PlaceText(files, file, directory[entry]));
        }
    }
}

void PrintFile(Output& out, const LoadedFiles& files, const LoadedFile& file, bool isLong)
{
    out.Print("{}\n", out.Paint(Colour::Bold, FileLine(file)));
    TextTable table({{"#", Align::Right},
                     {"UUID"},
                     {"position", Align::Right},
                     {"header", Align::Right},
                     {"refs", Align::Right},
                     {"data", Align::Right},
                     {"", Align::Right},
                     {"state"}});
    for (std::size_t i = 0; i < file.Pools().size(); ++i) {
        const PoolInfo& pool = file.Pools()[i];
        const std::uint64_t missing = MissingBytes(file, pool);
        const std::string state = pool.IsCurrent() ? "current" : "frozen";
        table.AddRow(
            {std::to_string(i), UuidText(pool.uuid), Grouped(pool.position),
             Grouped(pool.header.FullSize()), Grouped(pool.header.directoryCount - 1),
             Grouped(pool.DataLength()), HumanSize(pool.DataLength()),
             missing > 0 ? fmt::format("{}, {} missing", state, Counted(missing, "byte")) : state},
            missing > 0 ? std::optional(Colour::Red) : std::nullopt);
    }
    if (!file.Pools().empty()) {
        table.Print(out);
    }
    if (isLong) {
        PrintDirectories(out, files, file);
    }
    if (file.walk.stop != Stop::None) {
        out.Print("  {}\n", out.Paint(Colour::Red, StopLine(file)));
    }
}

void PrintFiles(Output& out, const LoadedFiles& files, bool isLong)
{
    bool isFirst = true;
    for (const LoadedFile& file : files) {
        out.Write(isFirst ? "" : "\n");
        isFirst = false;
        PrintFile(out, files, file, isLong);
    }
}

Json DirectoryDocument(const LoadedFiles& files, const LoadedFile& file, const PoolInfo& pool)
{
    Json entries = Json::array();
    for (const Uuid& uuid : ReadDirectory(file, pool)) {
        Json entry;
        entry["uuid"] = UuidText(uuid);
        const Together::Place* place = files.Find(uuid);
        entry["file"] = place == nullptr ? Json() : Json(Escaped(files[place->file].name));
        entry["pool"] = place == nullptr ? Json() : Json(place->pool);
        entries.push_back(entry);
    }
    return entries;
}

Json Document(const LoadedFiles& files, bool isLong)
{
    Json document = NewDocument("ls");
    document["files"] = Json::array();
    for (const LoadedFile& file : files) {
        Json entry = FileHead(file);
        entry["pools"] = Json::array();
        for (std::size_t i = 0; i < file.Pools().size(); ++i) {
            Json pool = PoolSummary(file, i);
            if (isLong) {
                const PoolInfo& info = file.Pools()[i];
                pool["reserved1"] = info.header.reserved1;
                pool["reserved2"] = info.header.reserved2;
                pool["directory"] = DirectoryDocument(files, file, info);
            }
            entry["pools"].push_back(std::move(pool));
        }
        entry["stop"] = StopSummary(file);
        document["files"].push_back(std::move(entry));
    }
    return document;
}

ExitCode CodeFor(const LoadedFiles& files)
{
    for (const LoadedFile& file : files) {
        if (!EndsWell(file)) {
            return ExitCode::Finding;
        }
    }
    return ExitCode::Fine;
}

// What a list depends on, and what the last one showed of it.
std::vector<std::uint64_t> Shape(const LoadedFiles& files)
{
    std::vector<std::uint64_t> shape;
    for (const LoadedFile& file : files) {
        shape.insert(shape.end(), {file.bytes.Size(), file.Pools().size(), file.walk.position,
                                   static_cast<std::uint64_t>(file.walk.stop)});
        for (const PoolInfo& pool : file.Pools()) {
            shape.insert(shape.end(), {pool.position, pool.length});
        }
    }
    return shape;
}
} // namespace

CommandText Ls::Text() const
{
    return {
        "ls", "List the pools of files",
        "Lists for each file its format version, user signature and size, and for each pool its "
        "number, UUID, position in the file, size of header and directory, number of references, "
        "data bytes, and whether it is frozen or current, which means that it may grow.\n\n"
        "With -l also the directory of each pool: which pools it refers to and where they lie "
        "among the files given.\n\n"
        "A file is listed up to where it is damaged; the exit status is then 1.",
        "simpool ls run.sim\nsimpool ls -l mesh.sim results.sim\nsimpool ls --follow run.sim\n"};
}

void Ls::AddOptions(CLI::App& options)
{
    options.add_option("file", mNames, "Files to list")->required()->type_name("FILE");
    options.add_flag("-l,--long", mIsLong, "Show the directories too");
    auto* follow = options.add_flag("-f,--follow", mFollows,
                                    "List again whenever a file has changed, until interrupted");
    options.add_option("--interval", mInterval, "Seconds between two looks of --follow")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.01, 86400.0))
        ->needs(follow);
    options.add_option("--count", mCount, "End --follow after so many lists")
        ->type_name("N")
        ->needs(follow);
}

ExitCode Ls::Run(const Surroundings& surroundings)
{
    if (mFollows && surroundings.json) {
        throw CommandFailure("--follow makes no single document: leave out --json or --follow");
    }
    if (mFollows) {
        return Follow(surroundings.out);
    }
    const LoadedFiles files(mNames, LoadedFiles::Walk::EachAlone);
    if (surroundings.json) {
        PrintJson(surroundings.out, Document(files, mIsLong));
    } else {
        PrintFiles(surroundings.out, files, mIsLong);
    }
    return CodeFor(files);
}

ExitCode Ls::Follow(Output& out) const
{
    constexpr char kClearScreen[] = "\x1b[H\x1b[2J";
    std::vector<std::uint64_t> shown;
    for (unsigned long lists = 0;;) {
        // Opened anew each time: a file may have been replaced by another of its name.
        const LoadedFiles files(mNames, LoadedFiles::Walk::EachAlone);
        std::vector<std::uint64_t> shape = Shape(files);
        if (shape != shown) {
            out.Write(out.IsTerminal() ? kClearScreen : lists > 0 ? "\n" : "");
            PrintFiles(out, files, mIsLong);
            out.Flush();
            shown = std::move(shape);
            if (++lists == mCount) {
                return CodeFor(files);
            }
        }
        std::this_thread::sleep_for(std::chrono::duration<double>(mInterval));
    }
}
} // namespace simpool
