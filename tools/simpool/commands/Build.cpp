#include "Build.h"

#include "CommandFailure.h"
#include "EscapedText.h"
#include "HexText.h"
#include "Json.h"
#include "NewFile.h"

#include <algorithm>
#include <filesystem>
#include <limits>

namespace simpool {
namespace {

// Writes what a dump says to a new file. Every failure names the place in the dump.
class FileBuilder
{
public:
    FileBuilder(const Json& dump, NewFile& out)
        : mDump(dump), mOut(out), mSize(dump.at("size").get<std::uint64_t>())
    {
        if (mSize > std::uint64_t{std::numeric_limits<std::int64_t>::max()}) {
            throw CommandFailure("size: no file is that large");
        }
    }

    std::size_t Run()
    {
        const Json& pools = mDump.at("pools");
        for (std::size_t i = 0; i < pools.size(); ++i) {
            BuildPool(pools.at(i), fmt::format("pools[{}]", i));
        }
        BuildRuns(mDump.at("rest"), "rest");
        mOut.Resize(mSize);
        return pools.size();
    }

private:
    void BuildPool(const Json& pool, const std::string& place);
    void BuildRuns(const Json& runs, const std::string& list);
    void Write(std::uint64_t position, const std::string& bytes, const std::string& place);

    template <std::size_t Size>
    static void Fill(std::array<char, Size>& field, const std::optional<std::string>& bytes,
                     const std::string& place)
    {
        if (!bytes || bytes->size() != Size) {
            throw CommandFailure(fmt::format("{}: {} bytes are wanted", place, Size));
        }
        std::ranges::copy(*bytes, field.begin());
    }

    const Json& mDump;
    NewFile& mOut;
    std::uint64_t mSize;
};

void FileBuilder::BuildPool(const Json& pool, const std::string& place)
{
    const auto text = [&](const char* key) { return pool.at(key).get<std::string>(); };
    const Json& directory = pool.at("directory");
    StoredHeader header;
    header.version = pool.at("version").get<signed char>();
    Fill(header.reserved, BytesOfHex(text("reserved")), place + ".reserved");
    Fill(header.userSignature, Unescaped(text("userSignature")), place + ".userSignature");
    Fill(header.lengthDigits, Unescaped(text("length")), place + ".length");
    header.reserved1 = pool.at("reserved1").get<std::uint32_t>();
    header.reserved2 = pool.at("reserved2").get<std::uint32_t>();
    header.directoryCount = static_cast<std::uint32_t>(directory.size());
    std::string bytes(kHeaderSize, '\0');
    EncodeHeader(header, bytes.data());
    for (std::size_t i = 0; i < directory.size(); ++i) {
        Uuid uuid = {};
        Fill(uuid, Unescaped(directory.at(i).get<std::string>()),
             fmt::format("{}.directory[{}]", place, i));
        bytes.append(uuid.data(), uuid.size());
    }
    Write(pool.at("position").get<std::uint64_t>(), bytes, place);
    BuildRuns(pool.at("data"), place + ".data");
}

void FileBuilder::BuildRuns(const Json& runs, const std::string& list)
{
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const Json& run = runs.at(i);
        const std::string place = fmt::format("{}[{}]", list, i);
        if (run.contains("zeros")) {
            continue; // what is not written is zero
        }
        if (!run.contains("hex")) {
            throw CommandFailure(place + ": the data are not in it; dump with --data");
        }
        const std::optional<std::string> bytes = BytesOfHex(run.at("hex").get<std::string>());
        if (!bytes) {
            throw CommandFailure(place + ".hex: pairs of hexadecimal digits are wanted");
        }
        Write(run.at("position").get<std::uint64_t>(), *bytes, place);
    }
}

void FileBuilder::Write(std::uint64_t position, const std::string& bytes, const std::string& place)
{
    if (position > mSize || bytes.size() > mSize - position) {
        throw CommandFailure(place + ": it leads behind the end of the file");
    }
    mOut.WriteAt(position, bytes);
}
} // namespace

CommandText Build::Text() const
{
    return {
        "build", "Make a file from a dump",
        "Makes the file that 'simpool dump --data' wrote as JSON, byte for byte. Nothing in it is "
        "checked but that its fields have their sizes: what was damaged is so again.",
        "simpool build run.json -o again.sim\n"};
}

void Build::AddOptions(CLI::App& options)
{
    options.add_option("dump", mName, "The dump")->required()->type_name("JSON");
    options.add_option("-o,--output", mOutput, "The new file")->required()->type_name("FILE");
    options.add_flag("--force", mForces, "Replace a file that is there");
}

ExitCode Build::Run(const Surroundings& surroundings)
{
    std::error_code ignored; // a file that is not there is another one
    if (std::filesystem::equivalent(mName, mOutput, ignored)) {
        throw CommandFailure(Quoted(mOutput) + " is the dump itself");
    }
    const Json dump = ReadDocument(mName, "dump");
    NewFile out(mOutput, mForces ? NewFile::Existing::Replace : NewFile::Existing::Refuse);
    std::size_t pools = 0;
    try {
        pools = FileBuilder(dump, out).Run();
    } catch (const Json::exception& failure) {
        throw CommandFailure(Quoted(mName) + " is no whole dump: " + Escaped(failure.what()));
    } catch (const CommandFailure& failure) {
        throw CommandFailure(Quoted(mName) + ": " + failure.what());
    }
    const std::uint64_t size = out.Size();
    out.Commit();
    if (surroundings.json) {
        Json document = NewDocument("build");
        document["output"] = Escaped(mOutput);
        document["size"] = size;
        document["pools"] = pools;
        PrintJson(surroundings.out, document);
    } else {
        surroundings.out.Print("{}: {}, {}\n", Escaped(mOutput), Counted(pools, "pool"),
                               FullSize(size));
    }
    return ExitCode::Fine;
}
} // namespace simpool
