#include "Hexdump.h"

#include "CommandFailure.h"
#include "EscapedText.h"
#include "HexLines.h"
#include "HexText.h"
#include "PoolRange.h"

namespace simpool {
namespace {

constexpr std::uint64_t kShownAtFirst = 4096; // data bytes, when no length is given

// Prints lines as they come, or collects them in a document.
class LineWriter
{
public:
    explicit LineWriter(const Surroundings& surroundings) : mSurroundings(surroundings) {}

    void Head(const std::string& text)
    {
        if (!mSurroundings.json) {
            mSurroundings.out.Print("{}\n", mSurroundings.out.Paint(Colour::Bold, text));
        }
    }

    void Line(const char* part, const HexLine& line)
    {
        if (mSurroundings.json) {
            mLines.push_back({{"part", part},
                              {"offset", line.offset},
                              {"hex", HexText(line.bytes)},
                              {"type", line.type.empty() ? "bytes" : line.type},
                              {"value", line.value}});
            return;
        }
        // A long text goes on in lines of its own bytes.
        const std::string_view bytes = line.bytes;
        for (std::size_t at = 0; at < bytes.size(); at += 16) {
            const std::string hex = HexText(bytes.substr(at, 16), " ");
            const std::string note =
                at > 0 ? "" : line.type + (line.type.empty() ? "" : " ") + line.meaning;
            mSurroundings.out.Print("{:>10}  {:<47}{}\n", line.offset + at, hex,
                                    note.empty() ? "" : "  " + note);
        }
    }

    [[nodiscard]] Json TakeLines() { return std::move(mLines); }

private:
    const Surroundings& mSurroundings;
    Json mLines = Json::array();
};
} // namespace

CommandText Hexdump::Text() const
{
    return {
        "hexdump", "Show the bytes of a pool and what they mean",
        "POOL is a pool's number or the beginning of its UUID. Alone it shows header, directory "
        "and the first 4,096 bytes of data; with :OFFSET data from there on, with +LENGTH so "
        "many bytes. Numbers may be hexadecimal, with 0x.\n\n"
        "--as header and --as dir show these alone. Every other --as takes the data for records: "
        "a type, or several parted by commas, each maybe with a count, over and over. The types "
        "are i8 u8 i16 u16 i32 u32 i64 u64 f32 f64 locator string char skip, where charx8 is a "
        "text of 8 bytes and skipx4 leaves out 4. Locators are looked up in all files given.\n\n"
        "The exit status is 1 when fewer bytes are there than were asked for, or the last record "
        "is cut.",
        "simpool hexdump run.sim 0\nsimpool hexdump results.sim 1:0+12 --as locator mesh.sim\n"
        "simpool hexdump mesh.sim 0:0x10 --as u32,f64x3\n"};
}

void Hexdump::AddOptions(CLI::App& options)
{
    options.add_option("file", mName, "The file")->required()->type_name("FILE");
    options.add_option("pool", mRange, "The pool and the stretch of its data")
        ->required()
        ->type_name("POOL[:OFFSET[+LENGTH]]");
    options.add_option("other", mOthers, "More files to look references up in")->type_name("FILE");
    options.add_option("--as", mLayout, "header, dir, or the types of records")
        ->type_name("LAYOUT");
}

ExitCode Hexdump::Run(const Surroundings& surroundings)
{
    std::vector<std::string> names = mOthers;
    names.insert(names.begin(), mName);
    const LoadedFiles files(names, LoadedFiles::Walk::EachAlone);
    const LoadedFile& file = files[0];
    PoolRange range = ParsePoolRange(mRange);
    const std::size_t number = ChoosePool(file, range.pool);
    const PoolInfo& pool = file.Pools()[number];
    const bool showsHeader = mLayout.empty() ? range.isWhole : mLayout == "header";
    const bool showsDirectory = mLayout.empty() ? range.isWhole : mLayout == "dir";
    const bool showsRecords = !mLayout.empty() && !showsHeader && !showsDirectory;
    if (!range.isWhole && !showsRecords && !mLayout.empty()) {
        throw CommandFailure("--as " + mLayout + " goes with a pool alone, without an offset");
    }
    const std::vector<LayoutField> layout =
        showsRecords ? ParseLayout(mLayout) : std::vector<LayoutField>();
    const std::uint64_t available = pool.DataInFile(file.bytes.Size());
    const bool isLimited = range.length == UINT64_MAX;
    const std::uint64_t wanted = range.LengthWithin(available);
    const std::uint64_t length = isLimited ? std::min(wanted, kShownAtFirst) : wanted;

    const HexLines lines(files, number);
    LineWriter writer(surroundings);
    const auto to = [&](const char* part) {
        return [&writer, part](const HexLine& line) { writer.Line(part, line); };
    };
    writer.Head(fmt::format("pool {} {} of {}, at position {}", number, UuidText(pool.uuid),
                            Escaped(file.name), Grouped(pool.position)));
    if (showsHeader) {
        lines.ForHeader(to("header"));
    }
    if (showsDirectory) {
        lines.ForDirectory(to("directory"));
    }
    std::uint64_t left = 0;
    const bool showsData = showsRecords || mLayout.empty();
    if (showsData) {
        writer.Head(fmt::format("data, {} from position {}", Counted(available, "byte"),
                                Grouped(pool.DataPosition())));
    }
    if (showsRecords) {
        left = lines.ForRecords(layout, range.offset, length, to("data"));
    } else if (showsData) {
        lines.ForBytes(range.offset, length, to("data"));
    }
    const std::uint64_t unshown = showsData ? wanted - length : 0;
    const bool isShort = showsData && (range.offset > available || (left > 0 && unshown == 0) ||
                                       (!isLimited && wanted < range.length));
    if (surroundings.json) {
        Json document = NewDocument("hexdump");
        document["file"] = Escaped(file.name);
        document["pool"] = number;
        document["uuid"] = UuidText(pool.uuid);
        document["position"] = pool.position;
        document["dataPosition"] = pool.DataPosition();
        document["dataLength"] = available;
        document["lines"] = writer.TakeLines();
        document["leftOver"] = left;
        document["notShown"] = unshown;
        PrintJson(surroundings.out, document);
    } else if (unshown + left > 0) {
        surroundings.out.Print("{} not shown{}\n", Counted(unshown + left, "more byte"),
                               unshown > 0 ? "; +LENGTH shows them" : "");
    }
    return isShort ? ExitCode::Finding : ExitCode::Fine;
}
} // namespace simpool
