#include "Dump.h"

#include "Coverage.h"
#include "EscapedText.h"
#include "FileSummary.h"
#include "HexText.h"
#include "ProgressLine.h"

#include <algorithm>

namespace simpool {
namespace {

constexpr std::uint64_t kRun = 16384; // bytes of one run of hexadecimal digits, at most

template <std::size_t Size>
std::string_view View(const std::array<char, Size>& bytes)
{
    return {bytes.data(), Size};
}

// Writes the document pool by pool, so that none of the data stays in memory. Bytes that pools of a
// damaged file share are written with the first one.
class DumpWriter
{
public:
    DumpWriter(const Surroundings& surroundings, const LoadedFile& file, bool withData)
        : mOut(surroundings.out), mFile(file), mWithData(withData),
          mLine(surroundings.err, "dumping", file.bytes.Size())
    {}

    void Run();

private:
    using Stretches = std::vector<Coverage::Stretch>;

    [[nodiscard]] Json PoolDocument(const PoolInfo& pool) const;
    void WriteStretches(const Stretches& stretches);
    void WriteBytes(const Coverage::Stretch& stretch);
    void WriteRun(std::uint64_t position, const char* key, const Json& value);
    void FlushZeros(std::uint64_t position);

    Output& mOut;
    const LoadedFile& mFile;
    bool mWithData;
    ProgressLine mLine;
    Coverage mSeen = {};
    bool mIsFirstRun = true;  // of the list that is being written
    std::uint64_t mZeros = 0; // bytes that were read and not yet written
};

// All headers and directories first: no pool's data then repeat them.
void DumpWriter::Run()
{
    const std::uint64_t size = mFile.bytes.Size();
    for (const PoolInfo& pool : mFile.Pools()) {
        mSeen.Add(pool.position, pool.DataPosition());
    }
    Json head = NewDocument("dump");
    head.update(FileHead(mFile));
    head["stop"] = StopSummary(mFile);
    head["complete"] = mWithData || mSeen.Missing(0, size).empty();
    std::string text = head.dump(2);
    text.erase(text.rfind("\n}"));
    mOut.Write(text + ",\n  \"pools\": [");
    const char* separator = "\n    ";
    for (const PoolInfo& pool : mFile.Pools()) {
        std::string entry = PoolDocument(pool).dump();
        entry.pop_back();
        mOut.Write(separator + entry + ", \"data\": [");
        separator = ",\n    ";
        const std::uint64_t end = pool.DataPosition() + pool.DataInFile(size);
        const Stretches stretches = mSeen.Missing(pool.DataPosition(), end);
        mSeen.Add(pool.DataPosition(), end);
        WriteStretches(stretches);
        mOut.Write("]}");
    }
    mOut.Write(mFile.Pools().empty() ? "],\n" : "\n  ],\n");
    mOut.Write("  \"rest\": [");
    WriteStretches(mSeen.Missing(0, size));
    mOut.Write("]\n}\n");
}

Json DumpWriter::PoolDocument(const PoolInfo& pool) const
{
    const StoredHeader& header = pool.header;
    Json document;
    document["position"] = pool.position;
    document["version"] = header.version;
    document["reserved"] = HexText(View(header.reserved));
    document["userSignature"] = Escaped(View(header.userSignature));
    document["length"] = Escaped(View(header.lengthDigits));
    document["reserved1"] = header.reserved1;
    document["reserved2"] = header.reserved2;
    document["directory"] = Json::array();
    for (const Uuid& uuid : ReadDirectory(mFile, pool)) {
        document["directory"].push_back(UuidText(uuid));
    }
    document["dataLength"] = pool.DataInFile(mFile.bytes.Size());
    return document;
}

void DumpWriter::WriteStretches(const Stretches& stretches)
{
    mIsFirstRun = true;
    for (const Coverage::Stretch& stretch : stretches) {
        if (mWithData) {
            WriteBytes(stretch);
        } else {
            WriteRun(stretch.begin, "length", stretch.end - stretch.begin);
        }
    }
    mOut.Write(mIsFirstRun ? "" : "\n    ");
}

void DumpWriter::WriteBytes(const Coverage::Stretch& stretch)
{
    for (std::uint64_t position = stretch.begin; position < stretch.end;) {
        const std::uint64_t hole = std::min(mFile.bytes.SkipHole(position), stretch.end) - position;
        mZeros += hole;
        position += hole;
        const auto length = static_cast<std::size_t>(std::min(kRun, stretch.end - position));
        const std::string bytes = ReadBytes(mFile, position, length);
        if (bytes.find_first_not_of('\0') == std::string::npos) {
            mZeros += length;
        } else {
            FlushZeros(position);
            WriteRun(position, "hex", HexText(bytes));
        }
        position += length;
        mLine.At(position);
    }
    FlushZeros(stretch.end);
}

void DumpWriter::FlushZeros(std::uint64_t position)
{
    if (mZeros > 0) {
        WriteRun(position - mZeros, "zeros", mZeros);
        mZeros = 0;
    }
}

void DumpWriter::WriteRun(std::uint64_t position, const char* key, const Json& value)
{
    Json run;
    run["position"] = position;
    run[key] = value;
    mOut.Write((mIsFirstRun ? "\n      " : ",\n      ") + run.dump());
    mIsFirstRun = false;
}
} // namespace

CommandText Dump::Text() const
{
    return {
        "dump", "Write a file's structure as JSON",
        "Writes every field of every header and directory as one JSON document, and with --data "
        "also all data: runs of bytes as hexadecimal digits and long runs of zeros as their "
        "length, each with its position in the file. 'simpool build' makes the same file again, "
        "byte for byte, of a damaged file too.\n\n"
        "The exit status is 1 when the file is damaged.",
        "simpool dump run.sim\nsimpool dump --data run.sim > run.json\n"};
}

void Dump::AddOptions(CLI::App& options)
{
    options.add_option("file", mName, "The file")->required()->type_name("FILE");
    options.add_flag("--data", mWithData, "Write the data too, not only where they lie");
}

ExitCode Dump::Run(const Surroundings& surroundings)
{
    const LoadedFiles files({mName}, LoadedFiles::Walk::EachAlone);
    DumpWriter(surroundings, files[0], mWithData).Run();
    files.CheckReads();
    return EndsWell(files[0]) ? ExitCode::Fine : ExitCode::Finding;
}
} // namespace simpool
