#include "Extract.h"

#include "CommandFailure.h"
#include "EscapedText.h"
#include "Json.h"
#include "PoolCopying.h"

#include <algorithm>

namespace simpool {

CommandText Extract::Text() const
{
    return {
        "extract", "Write a pool's data to a file or to standard output",
        "Writes the data bytes of one pool, or a range of them, as they are stored: without header "
        "and directory, and without a line's end.\n\n"
        "POOL is a pool's number or the beginning of its UUID. OFFSET and LENGTH count data bytes, "
        "decimal or with 0x hexadecimal. In a damaged file each pool in front of the damage can "
        "be extracted; of a pool that was cut, what is left is written and the exit code is 1.",
        "simpool extract run.sim 3 -o temperatures.bin\n"
        "simpool extract run.sim 4af1:0x100+64 | od -t f8\n"};
}

void Extract::AddOptions(CLI::App& options)
{
    options.add_option("file", mName, "The file to read")->required()->type_name("FILE");
    options.add_option("pool", mRange, "The pool, and which of its data")
        ->required()
        ->type_name("POOL[:OFFSET[+LENGTH]]");
    options.add_option("-o,--output", mOutput, "The file to make; else standard output")
        ->type_name("FILE");
    options.add_flag("--force", mIsForced, "Replace the output if it exists");
}

Extract::Piece Extract::Find(const LoadedFile& file, std::size_t number, const PoolRange& range)
{
    const PoolInfo& pool = file.Pools()[number];
    if (range.offset > pool.DataLength()) {
        throw CommandFailure(fmt::format("offset {} lies behind the {} of data of pool {}",
                                         Grouped(range.offset), FullSize(pool.DataLength()),
                                         number));
    }
    const bool isLengthGiven = range.length != UINT64_MAX;
    if (isLengthGiven && range.length > pool.DataLength() - range.offset) {
        throw CommandFailure(fmt::format("pool {} has only {} of data from offset {} on", number,
                                         FullSize(pool.DataLength() - range.offset),
                                         Grouped(range.offset)));
    }
    const std::uint64_t wanted = range.LengthWithin(pool.DataLength());
    const std::uint64_t there = range.LengthWithin(pool.DataInFile(file.bytes.Size()));
    return {pool.DataPosition() + range.offset, there, wanted - there};
}

void Extract::WriteFile(const LoadedFile& file, const Piece& piece, Output& err) const
{
    NewFile out(mOutput, mIsForced ? NewFile::Existing::Replace : NewFile::Existing::Refuse);
    ProgressLine progress(err, "copying", piece.length);
    CopyInSteps(file.bytes, piece.position, piece.length, out, progress);
    out.Commit();
}

void Extract::WriteOut(const LoadedFile& file, const Piece& piece, Output& out)
{
    constexpr std::uint64_t kPiece = std::uint64_t{1} << 20;
    for (std::uint64_t done = 0; done < piece.length;) {
        const std::uint64_t count = std::min(kPiece, piece.length - done);
        out.Write(ReadBytes(file, piece.position + done, count));
        done += count;
    }
}

ExitCode Extract::Run(const Surroundings& surroundings)
{
    if (surroundings.json && mOutput.empty()) {
        throw CommandFailure("--json needs -o: without it the data goes to standard output");
    }
    const LoadedFiles files({mName}, LoadedFiles::Walk::EachAlone);
    const LoadedFile& file = files[0];
    const PoolRange range = ParsePoolRange(mRange);
    const std::size_t number = ChoosePool(file, range.pool);
    const Piece piece = Find(file, number, range);
    if (mOutput.empty()) {
        WriteOut(file, piece, surroundings.out);
    } else {
        RefuseInput(files, mOutput);
        WriteFile(file, piece, surroundings.err);
    }
    if (surroundings.json) {
        Json document = NewDocument("extract");
        document["file"] = Escaped(mName);
        document["pool"] = number;
        document["uuid"] = UuidText(file.Pools()[number].uuid);
        document["offset"] = range.offset;
        document["length"] = piece.length;
        document["missing"] = piece.missing;
        document["output"] = Escaped(mOutput);
        PrintJson(surroundings.out, document);
    }
    if (piece.missing > 0) {
        surroundings.err.Print("simpool: the file ends {} before the range does\n",
                               FullSize(piece.missing));
        return ExitCode::Finding;
    }
    return ExitCode::Fine;
}
} // namespace simpool
