#include "FrdReader.h"

#include "FrdElementType.h"
#include "FrdField.h"
#include "Units.h"

#include <algorithm>

namespace fe {

namespace {

constexpr std::size_t kKeyWidth = 3;      // " -1", " -2", " -3", " -4", " -5"
constexpr std::size_t kPropertyWidth = 5; // type, group and material of an element

bool StartsWith(std::string_view line, std::string_view key)
{
    return line.substr(0, key.size()) == key;
}

std::string Quoted(std::string_view text)
{
    return "\"" + std::string(text) + "\"";
}

} // namespace

FrdReader::FrdReader(const std::string& path) : mLines(path) {}

FrdMesh FrdReader::ReadMesh()
{
    FrdMesh mesh;
    mNext = FindBlock();
    if (mNext == Record::Nodes) {
        ReadNodes(mesh.nodes);
        mNext = FindBlock();
        if (mNext == Record::Elements) {
            ReadElements(mesh.elements);
            mNext = FindBlock();
        }
    } else if (mNext != Record::End) {
        mLines.Fail("a block of nodes (\"2C\") has to come first");
    }
    mesh.lineEnd = mLines.LineEnd();
    return mesh;
}

bool FrdReader::ReadResult(FrdResult& result)
{
    if (mNext == Record::End) {
        return false;
    }
    if (mNext != Record::Result) {
        mLines.Fail("a second mesh: only one is known in a result file");
    }
    result = FrdResult{};
    Open(result.before, result.header, result.layout, "results");
    result.value = ParseReal(Column(result.header, 12, kRealWidth)).value_or(0.0);
    result.analysis = HeaderInteger(56, 2, "the analysis type");
    result.step = HeaderInteger(58, 5, "the step number");
    ReadNameRecord(result);
    ReadValues(result);
    mNext = FindBlock();
    return true;
}

// Gathers text records until a block begins or the data end. The last lines of the file are read
// here too, so that nothing of a cut file is handed out as its end.
FrdReader::Record FrdReader::FindBlock()
{
    mText.clear();
    while (mLines.Next()) {
        const std::string_view line = mLines.Line();
        if (StartsWith(line, "    1C") || StartsWith(line, "    1U") ||
            StartsWith(line, "    1P")) {
            mText.emplace_back(line);
        } else if (StartsWith(line, "    2C")) {
            return Record::Nodes;
        } else if (StartsWith(line, "    3C")) {
            return Record::Elements;
        } else if (StartsWith(line, "  100C")) {
            return Record::Result;
        } else if (line == " 9999") {
            CheckEnd();
            return Record::End;
        } else {
            mLines.Fail("no record of a result file begins like " + Quoted(line.substr(0, 6)) +
                        " here");
        }
    }
    mLines.Fail("the file ends here without its last record (\" 9999\"): it is cut");
}

void FrdReader::CheckEnd()
{
    if (mLines.Next()) {
        mLines.Fail("more data behind the last record (\" 9999\")");
    }
}

// Begins the block whose first record is the line at hand.
void FrdReader::Open(FrdLines& before, std::string& header, FrdLayout& layout, const char* name)
{
    before.swap(mText);
    mText.clear();
    header = mLines.Line();
    mBlock = name;
    mBlockLine = mLines.Number();
    mField = 0;
    const std::string_view format = Trimmed(Column(header, 73, 2));
    if (format == "1") {
        layout = FrdLayout::Long;
    } else if (format.empty() || format == "0") {
        layout = FrdLayout::Short;
    } else if (format == "2" || format == "3") {
        mLines.Fail("the block of " + mBlock + " is binary (format " + std::string(format) +
                    "); let the solver write ASCII: *NODE FILE and *EL FILE in place of *NODE "
                    "OUTPUT and *ELEMENT OUTPUT");
    } else {
        mLines.Fail("the block of " + mBlock + " has an unknown format: " + Quoted(format));
    }
}

// Goes on inside a block; false at the record that closes it.
bool FrdReader::NextInBlock()
{
    if (!mLines.Next()) {
        mLines.Fail("the file ends here, inside the block of " + mBlock + " that begins in line " +
                    std::to_string(mBlockLine) + ": it is cut");
    }
    return mLines.Line() != " -3";
}

// Goes to the next node or element of a block and takes its number; false when there is none.
bool FrdReader::NextItem(std::size_t width, std::int64_t& number)
{
    if (!NextInBlock()) {
        return false;
    }
    if (!StartsWith(mLines.Line(), " -1")) {
        mLines.Fail("the block of " + mBlock + " goes on with \" -1\" or ends with \" -3\", not " +
                    Quoted(mLines.Line().substr(0, 6)));
    }
    mItemNumber = 0;
    number = IntegerField(kKeyWidth, width, mItemKind);
    mItemNumber = number;
    return true;
}

void FrdReader::ReadNodes(FrdNodes& nodes)
{
    Open(nodes.before, nodes.header, nodes.layout, "nodes");
    mItemKind = "node";
    mSpellings = &nodes.spellings;
    const std::size_t width = IntegerWidth(nodes.layout);
    const std::size_t values = kKeyWidth + width;
    for (std::int64_t number = 0; NextItem(width, number);) {
        ExpectLength(values + 3 * kRealWidth);
        nodes.numbers.push_back(number);
        nodes.coordinates.push_back(RealField(values, "x"));
        nodes.coordinates.push_back(RealField(values + kRealWidth, "y"));
        nodes.coordinates.push_back(RealField(values + 2 * kRealWidth, "z"));
    }
}

void FrdReader::ReadElements(FrdElements& elements)
{
    Open(elements.before, elements.header, elements.layout, "elements");
    mItemKind = "element";
    mSpellings = &elements.spellings;
    const std::size_t width = IntegerWidth(elements.layout);
    for (std::int64_t number = 0; NextItem(width, number);) {
        std::size_t column = kKeyWidth + width;
        ExpectLength(column + 3 * kPropertyWidth);
        const std::int64_t type = IntegerField(column, kPropertyWidth, "the type");
        const FrdElementType* shape = FindElementType(type);
        if (shape == nullptr) {
            mLines.Fail(Item() + " has the unknown type " + std::to_string(type));
        }
        column += kPropertyWidth;
        const std::int64_t group = IntegerField(column, kPropertyWidth, "the group");
        column += kPropertyWidth;
        elements.numbers.push_back(number);
        elements.types.push_back(static_cast<std::int32_t>(type));
        elements.groups.push_back(static_cast<std::int32_t>(group)); // five characters at most
        elements.materials.push_back(MaterialField(column, kPropertyWidth));
        ReadElementNodes(elements, shape->nodes);
    }
}

void FrdReader::ReadElementNodes(FrdElements& elements, std::size_t count)
{
    const std::size_t width = IntegerWidth(elements.layout);
    while (count > 0) {
        if (!NextInBlock() || !StartsWith(mLines.Line(), " -2")) {
            mLines.Fail(Item() + " misses " + std::to_string(count) + " of its nodes");
        }
        const std::size_t inLine = std::min(count, NodesInLine(elements.layout));
        ExpectLength(kKeyWidth + inLine * width);
        for (std::size_t i = 0; i < inLine; ++i) {
            elements.nodeNumbers.push_back(IntegerField(kKeyWidth + i * width, width, "a node"));
        }
        count -= inLine;
    }
}

void FrdReader::ReadNameRecord(FrdResult& result)
{
    if (!NextInBlock() || !StartsWith(mLines.Line(), " -4")) {
        mLines.Fail("the block of results misses its name (\" -4\")");
    }
    result.nameRecord = mLines.Line();
    result.name = Trimmed(Column(mLines.Line(), 5, 8));
    const std::int64_t count = Integer(13, 5, "the number of components");
    const std::int64_t kind = Integer(18, 5, "the kind of data");
    if (kind != 1) {
        mLines.Fail(result.name + " is no nodal data (kind " + std::to_string(kind) + ", not 1)");
    }
    ReadComponents(result, count);
}

void FrdReader::ReadComponents(FrdResult& result, std::int64_t count)
{
    for (std::int64_t i = 0; i < count; ++i) {
        if (!NextInBlock() || !StartsWith(mLines.Line(), " -5")) {
            mLines.Fail(result.name + " misses " + std::to_string(count - i) + " of its " +
                        std::to_string(count) + " components (\" -5\")");
        }
        FrdComponent component;
        component.record = mLines.Line();
        component.name = Trimmed(Column(mLines.Line(), 5, 8));
        component.unit = UnitOf(result.name, component.name);
        const bool flagged = !Trimmed(Column(mLines.Line(), 33, 5)).empty();
        component.stored = !flagged || Integer(33, 5, "the origin of the component") != 1;
        result.components.push_back(std::move(component));
    }
}

void FrdReader::ReadValues(FrdResult& result)
{
    mItemKind = "node";
    mSpellings = &result.spellings;
    const std::size_t count = StoredComponents(result.components);
    for (std::int64_t number = 0; NextItem(IntegerWidth(result.layout), number);) {
        result.nodeNumbers.push_back(number);
        ReadValuesOfNode(result, count);
    }
}

// The first six values stand in the line at hand, six more in each that follows.
void FrdReader::ReadValuesOfNode(FrdResult& result, std::size_t count)
{
    const std::size_t values = kKeyWidth + IntegerWidth(result.layout);
    std::size_t inLine = std::min(count, kValuesInLine);
    for (std::size_t done = 0;;) {
        ExpectLength(values + inLine * kRealWidth);
        for (std::size_t i = 0; i < inLine; ++i) {
            result.values.push_back(RealField(values + i * kRealWidth, "a value"));
        }
        done += inLine;
        if (done == count) {
            return;
        }
        inLine = std::min(count - done, kValuesInLine);
        if (!NextInBlock() || !StartsWith(mLines.Line(), " -2") ||
            !Trimmed(Column(mLines.Line(), kKeyWidth, values - kKeyWidth)).empty()) {
            mLines.Fail(Item() + " misses " + std::to_string(count - done) + " of its " +
                        std::to_string(count) + " values");
        }
    }
}

std::int64_t FrdReader::Integer(std::size_t from, std::size_t width, const char* what) const
{
    const std::string_view column = Column(mLines.Line(), from, width);
    const auto value = ParseInteger(column);
    if (!value) {
        mLines.Fail(std::string(what) + " in column " + std::to_string(from + 1) + ", " +
                    Quoted(column) + ", is no integer");
    }
    return *value;
}

// Of a record that opens a block, where blanks count as 0.
std::int32_t FrdReader::HeaderInteger(std::size_t from, std::size_t width, const char* what) const
{
    if (Trimmed(Column(mLines.Line(), from, width)).empty()) {
        return 0;
    }
    return static_cast<std::int32_t>(Integer(from, width, what)); // at most five characters
}

// The functions of fields count them, and keep their text where the number does not tell it.

std::int64_t FrdReader::IntegerField(std::size_t from, std::size_t width, const char* what)
{
    const std::int64_t value = Integer(from, width, what);
    mCanonical.clear();
    AppendInteger(mCanonical, value, width);
    KeepSpelling(Column(mLines.Line(), from, width));
    return value;
}

// Some flow solutions have a name in this column, cut to its width.
std::int32_t FrdReader::MaterialField(std::size_t from, std::size_t width)
{
    const std::string_view column = Column(mLines.Line(), from, width);
    const auto value = static_cast<std::int32_t>(ParseInteger(column).value_or(0));
    mCanonical.clear();
    AppendInteger(mCanonical, value, width);
    KeepSpelling(column);
    return value;
}

double FrdReader::RealField(std::size_t from, const char* what)
{
    const std::string_view column = Column(mLines.Line(), from, kRealWidth);
    const auto value = ParseReal(column);
    if (!value) {
        mLines.Fail(std::string(what) + " of " + Item() + " in column " + std::to_string(from + 1) +
                    ", " + Quoted(column) + ", is no number");
    }
    mCanonical.clear();
    AppendReal(mCanonical, *value);
    KeepSpelling(column);
    return *value;
}

void FrdReader::KeepSpelling(std::string_view column)
{
    if (column != mCanonical) {
        mSpellings->push_back({mField, std::string(column)});
    }
    ++mField;
}

void FrdReader::ExpectLength(std::size_t length) const
{
    if (mLines.Line().size() != length) {
        mLines.Fail(Item() + ": the line has " + std::to_string(mLines.Line().size()) +
                    " characters where " + std::to_string(length) + " are due");
    }
}

std::string FrdReader::Item() const
{
    return std::string(mItemKind) + " " + std::to_string(mItemNumber);
}

} // namespace fe
