#include "SalvageCommand.h"

#include "CommandFailure.h"
#include "EscapedText.h"
#include "Json.h"
#include "ProgressLine.h"
#include "TailCut.h"

namespace simpool {
namespace {

Json Document(const LoadedFile& file, const Salvage& salvage, const std::string& output)
{
    Json document = NewDocument("salvage");
    document["input"] = Escaped(file.name);
    document["size"] = salvage.fileSize;
    document["output"] = output.empty() ? Json() : Json(Escaped(output));
    document["whole"] = salvage.WasWhole();
    document["pools"] = Json::array();
    for (const SalvagedPool& pool : salvage.pools) {
        Json entry;
        entry["uuid"] = UuidText(pool.uuid);
        entry["position"] = pool.position;
        entry["length"] = pool.length;
        entry["tailLength"] = pool.tailLength;
        entry["lost"] = pool.lost;
        entry["made"] = pool.IsMade();
        entry["repairs"] = Json::array();
        for (const Repair repair : pool.repairs) {
            entry["repairs"].push_back(NameOf(repair));
        }
        document["pools"].push_back(std::move(entry));
    }
    document["gaps"] = Json::array();
    for (const SalvagedGap& gap : salvage.gaps) {
        document["gaps"].push_back({{"position", gap.position}, {"length", gap.length}});
    }
    document["bytesInPools"] = salvage.BytesInPools();
    document["bytesInGaps"] = salvage.BytesInGaps();
    document["bytesLost"] = salvage.BytesLost();
    return document;
}

void PrintPool(Output& out, const SalvagedPool& pool, std::size_t number)
{
    std::string repairs;
    for (const Repair repair : pool.repairs) {
        repairs += std::string(repairs.empty() ? "; mended: " : ", ") + NameOf(repair);
    }
    const std::string tail = pool.tailLength > 0
                                 ? fmt::format(", the last {} from a gap", Grouped(pool.tailLength))
                                 : "";
    const std::string lost = pool.lost > 0 ? fmt::format("; {} behind the file's end are lost",
                                                         Counted(pool.lost, "claimed byte"))
                                           : "";
    out.Print("  pool {} {} from position {}: {}{}{}{}\n", number, UuidText(pool.uuid),
              Grouped(pool.position), Counted(pool.length, "byte"), tail,
              out.Paint(Colour::Yellow, repairs), out.Paint(Colour::Red, lost));
}

void Print(Output& out, const LoadedFile& file, const Salvage& salvage, bool cutsGaps)
{
    out.Print("{}: {}, {} found{}\n", Escaped(file.name), FullSize(salvage.fileSize),
              Counted(salvage.pools.size(), "pool"), salvage.WasWhole() ? ", all whole" : "");
    for (std::size_t i = 0; i < salvage.pools.size(); ++i) {
        PrintPool(out, salvage.pools[i], i);
    }
    const bool areKept = !cutsGaps && !salvage.pools.empty();
    for (const SalvagedGap& gap : salvage.gaps) {
        out.Print("  gap from position {}: {} {}\n", Grouped(gap.position),
                  Counted(gap.length, "byte"), areKept ? "saved as data" : "left out");
    }
    out.Print("kept: {} of pools and {} of gaps; cut: {}; lost: {}\n",
              Counted(salvage.BytesInPools(), "byte"), Grouped(areKept ? salvage.BytesInGaps() : 0),
              Grouped(areKept ? 0 : salvage.BytesInGaps()), Grouped(salvage.BytesLost()));
}
} // namespace

CommandText SalvageCommand::Text() const
{
    return {
        "salvage", "Save the pools of a damaged file into a new one",
        "A pool ends where its length says, when another one begins there or the file ends. Where "
        "that fails, the next header is searched for, the length computed anew, and what lies "
        "between saved as the last data of the pool in front of it, or as a pool of its own when "
        "there is none. A header with one wrong field is mended. Of two pools with one UUID the "
        "second gets another one.\n\n"
        "The damaged file is only read. The new one gets its name when it is complete and on the "
        "disk; a whole file comes out as it is, byte for byte.\n\n"
        "--truncate-only changes the file itself: it cuts off what follows the last pool that "
        "opens, and first saves that under the file's name with '.tail' behind it.\n\n"
        "The exit status is 1 when anything was mended, cut or lost.",
        "simpool salvage bad.sim --dry-run\nsimpool salvage bad.sim -o good.sim --report "
        "good.json\n"
        "simpool salvage bad.sim --truncate-only\n"};
}

void SalvageCommand::AddOptions(CLI::App& options)
{
    options.add_option("file", mName, "The damaged file")->required()->type_name("FILE");
    options.add_option("-o,--output", mOutput, "The new file")->type_name("FILE");
    options.add_flag(
        "--split", mOptions.split,
        "Take out pools that lie inside a last pool which reaches to the file's end, as "
        "a crash can leave them");
    options.add_flag("--cut-gaps", mOptions.cutGaps,
                     "Leave out bytes that belong to no pool instead of saving them");
    options.add_flag("-n,--dry-run", mIsDryRun, "Tell what would be done and write no file");
    options.add_option("--report", mReport, "Write what was done to this file, as JSON")
        ->type_name("FILE");
    options.add_flag("--truncate-only", mTruncates,
                     "Only cut the file itself where it stops to open, saving the tail");
    options.add_flag("--force", mForces,
                     "Replace files that are there; with --truncate-only cut "
                     "even in front of pools that could be saved");
}

NewFile::Existing SalvageCommand::Existing() const noexcept
{
    return mForces ? NewFile::Existing::Replace : NewFile::Existing::Refuse;
}

void SalvageCommand::CheckNewName(const LoadedFile& file, const std::string& name) const
{
    if (!name.empty() && file.bytes.IsSameFile(name.c_str())) {
        throw CommandFailure(Quoted(name) + " is the damaged file itself");
    }
}

ExitCode SalvageCommand::Run(const Surroundings& surroundings)
{
    if (mTruncates && (!mOutput.empty() || mOptions.split || mOptions.cutGaps)) {
        throw CommandFailure("--truncate-only goes with --dry-run, --report and --force alone");
    }
    if (!mTruncates && mOutput.empty() && !mIsDryRun) {
        throw CommandFailure("name the new file with -o, or ask for --dry-run");
    }
    const LoadedFiles files({mName}, LoadedFiles::Walk::EachAlone);
    const LoadedFile& file = files[0];
    CheckNewName(file, mOutput);
    CheckNewName(file, mReport);
    const ExitCode code = mTruncates ? Truncate(surroundings, file) : Copy(surroundings, file);
    files.CheckReads();
    return code;
}

ExitCode SalvageCommand::Copy(const Surroundings& surroundings, const LoadedFile& file) const
{
    Salvage salvage;
    {
        ProgressLine line(surroundings.err, "searching", file.bytes.Size());
        salvage = PlanSalvage(file.bytes, mOptions, [&](std::uint64_t done) { line.At(done); });
    }
    const bool writes = !mIsDryRun && !salvage.pools.empty();
    const Json document = Document(file, salvage, writes ? mOutput : "");
    std::optional<NewFile> report;
    if (!mReport.empty()) {
        report.emplace(mReport, Existing()).Append(document.dump(2) + "\n");
    }
    if (writes) {
        NewFile out(mOutput, Existing());
        ProgressLine line(surroundings.err, "writing", file.bytes.Size());
        WriteSalvage(file.bytes, salvage, out, [&](std::uint64_t done) { line.At(done); });
        out.Commit();
    }
    if (report) {
        report->Commit();
    }
    if (surroundings.json) {
        PrintJson(surroundings.out, document);
    } else {
        Print(surroundings.out, file, salvage, mOptions.cutGaps);
        surroundings.out.Print("{}\n", writes ? "written: " + Escaped(mOutput)
                                              : std::string("nothing was written"));
    }
    return salvage.WasWhole() && !salvage.pools.empty() ? ExitCode::Fine : ExitCode::Finding;
}

ExitCode SalvageCommand::Truncate(const Surroundings& surroundings, const LoadedFile& file) const
{
    const TailCut cut = PlanTailCut(file);
    if (cut.poolsKept == 0 && cut.TailLength() > 0) {
        throw CommandFailure("no pool would be left of " + Quoted(file.name) +
                             "; try 'simpool salvage -o'");
    }
    if (cut.poolsBehind > 0 && !mForces) {
        throw CommandFailure(
            fmt::format("{} of {} would be cut off; 'simpool salvage -o' keeps them, --force cuts",
                        Counted(cut.poolsBehind, "pool"), Quoted(file.name)));
    }
    const bool cuts = cut.TailLength() > 0;
    const std::string tailName = file.name + ".tail";
    if (cuts && !mIsDryRun) {
        CutTail(file, cut, tailName, Existing());
    }
    Json document = NewDocument("salvage");
    document["input"] = Escaped(file.name);
    document["size"] = cut.size;
    document["truncatedTo"] = cut.position;
    document["poolsKept"] = cut.poolsKept;
    document["tail"] = cuts && !mIsDryRun ? Json(Escaped(tailName)) : Json();
    if (!mReport.empty()) {
        NewFile report(mReport, Existing());
        report.Append(document.dump(2) + "\n");
        report.Commit();
    }
    if (surroundings.json) {
        PrintJson(surroundings.out, document);
    } else if (!cuts) {
        surroundings.out.Print("{}: nothing to cut\n", Escaped(file.name));
    } else {
        surroundings.out.Print("{}: {} at {}, kept {} in {}\n{}\n", Escaped(file.name),
                               mIsDryRun ? "would be cut" : "cut", Grouped(cut.position),
                               FullSize(cut.position), Counted(cut.poolsKept, "pool"),
                               mIsDryRun ? "nothing was written"
                                         : fmt::format("{} saved as {}", FullSize(cut.TailLength()),
                                                       Escaped(tailName)));
    }
    return cuts ? ExitCode::Finding : ExitCode::Fine;
}
} // namespace simpool
