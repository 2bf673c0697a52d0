#include "Merge.h"

#include "EscapedText.h"
#include "PoolCopying.h"

namespace simpool {

CommandText Merge::Text() const
{
    return {"merge", "Make one file of several",
            "Writes all pools of all files, in the order given, into one new file. References "
            "between them, from file to file too, stay true, since they name pools by UUID.\n\n"
            "All is checked before the first byte is written: the files are whole, they have one "
            "user signature, no pool is there twice, and there is room. The output is built under "
            "a temporary name and gets its own only when it is complete and on the disk.",
            "simpool merge rank0.sim rank1.sim rank2.sim -o run.sim\n"};
}

void Merge::AddOptions(CLI::App& options)
{
    options.add_option("files", mNames, "The files to merge")->required()->type_name("FILE");
    options.add_option("-o,--output", mOutput, "The file to make")->required()->type_name("FILE");
    options.add_flag("--force", mIsForced, "Replace the output if it exists");
}

ExitCode Merge::Run(const Surroundings& surroundings)
{
    const LoadedFiles files(mNames, LoadedFiles::Walk::EachAlone);
    RefuseInput(files, mOutput);
    std::vector<CopiedPool> pools;
    for (const LoadedFile& file : files) {
        RefuseDamage(file);
        const std::vector<CopiedPool> own = AllPools(file);
        pools.insert(pools.end(), own.begin(), own.end());
    }
    CheckPools(pools, mOutput);

    NewFile out(mOutput, mIsForced ? NewFile::Existing::Replace : NewFile::Existing::Refuse);
    WritePools(pools, out, surroundings.err);
    out.Commit();

    if (surroundings.json) {
        Json document = NewDocument("merge");
        DescribeCopies(document, pools, mOutput);
        PrintJson(surroundings.out, document);
        return ExitCode::Fine;
    }
    const ReferenceCount references = CountReferences(pools);
    surroundings.out.Print("{} of {}, {}, merged into {}\n", Counted(pools.size(), "pool"),
                           Counted(files.Count(), "file"), FullSize(TotalLength(pools)),
                           Quoted(mOutput));
    surroundings.out.Print("references: {} resolved, {} to pools that are in none of the files\n",
                           Grouped(references.resolved), Grouped(references.unresolved));
    return ExitCode::Fine;
}
} // namespace simpool
