#include "Copy.h"

#include "EscapedText.h"

#include <filesystem>

namespace simpool {
namespace {

// What the output holds already. Its last pool gives way when it is empty, as it does when the
// library appends a pool.
std::vector<CopiedPool> PoolsInFront(const LoadedFiles& outputs)
{
    std::vector<CopiedPool> pools;
    for (const LoadedFile& file : outputs) {
        RefuseDamage(file);
        pools = AllPools(file);
    }
    if (!pools.empty() && pools.back().info.DataLength() == 0) {
        pools.pop_back();
    }
    return pools;
}
} // namespace

CommandText Copy::Text() const
{
    return {"copy", "Copy pools from one file into another",
            "Copies pools of FILE, byte for byte, behind the pools of the output, which is made if "
            "it does not exist. References inside the pools stay true: they name other pools by "
            "UUID.\n\n"
            "All is checked before the first byte is written: the user signatures are the same, no "
            "pool is in the output already, the pools are whole, and there is room. The output is "
            "built under a temporary name and takes its place only when it is complete and on the "
            "disk; no program may be writing it meanwhile. An output whose last pool is empty "
            "loses that pool, as it does when the library appends one.",
            "simpool copy results.sim 4 7 -o picked.sim\n"
            "simpool copy results.sim -o all.sim\n"};
}

void Copy::AddOptions(CLI::App& options)
{
    options.add_option("file", mName, "The file to copy from")->required()->type_name("FILE");
    options
        .add_option("pools", mPools, "Pools by number or by the beginning of their UUID; else all")
        ->type_name("POOL");
    options.add_option("-o,--output", mOutput, "The file to copy into")
        ->required()
        ->type_name("FILE");
}

std::vector<CopiedPool> Copy::Chosen(const LoadedFile& source) const
{
    if (mPools.empty()) {
        RefuseDamage(source);
        return AllPools(source);
    }
    std::vector<CopiedPool> pools;
    for (const std::string& text : mPools) {
        pools.push_back(PoolOf(source, ChoosePool(source, text)));
    }
    return pools;
}

ExitCode Copy::Run(const Surroundings& surroundings)
{
    const LoadedFiles sources({mName}, LoadedFiles::Walk::EachAlone);
    RefuseInput(sources, mOutput);
    const bool isThere = std::filesystem::exists(mOutput);
    const LoadedFiles outputs(isThere ? std::vector{mOutput} : std::vector<std::string>(),
                              LoadedFiles::Walk::EachAlone);
    const std::vector<CopiedPool> chosen = Chosen(sources[0]);
    std::vector<CopiedPool> pools = PoolsInFront(outputs);
    pools.insert(pools.end(), chosen.begin(), chosen.end());
    CheckPools(pools, mOutput);

    NewFile out(mOutput, isThere ? NewFile::Existing::Replace : NewFile::Existing::Refuse);
    WritePools(pools, out, surroundings.err);
    out.Commit();

    if (surroundings.json) {
        Json document = NewDocument("copy");
        DescribeCopies(document, pools, mOutput);
        document["copied"] = chosen.size();
        PrintJson(surroundings.out, document);
    } else {
        surroundings.out.Print("{}, {}, copied into {}\n", Counted(chosen.size(), "pool"),
                               FullSize(TotalLength(chosen)), Quoted(mOutput));
    }
    return ExitCode::Fine;
}
} // namespace simpool
