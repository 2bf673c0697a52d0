#include "FrdWriter.h"

#include "FrdElementType.h"
#include "FrdError.h"
#include "FrdField.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace fe {

namespace {

constexpr std::size_t kBytesInMemory = 1 << 18;

} // namespace

FrdWriter::FrdWriter(const std::string& path) : mPath(path), mStream(path, std::ios::binary)
{
    if (!mStream) {
        throw FrdError(path, 0, "cannot be opened for writing");
    }
}

void FrdWriter::Write(const FrdMesh& mesh)
{
    mLineEnd = mesh.lineEnd;
    if (!mesh.nodes.header.empty()) {
        Write(mesh.nodes);
    }
    if (!mesh.elements.header.empty()) {
        Write(mesh.elements);
    }
}

void FrdWriter::Write(const FrdResult& result)
{
    Text(result.before);
    Text(result.header);
    Text(result.nameRecord);
    for (const FrdComponent& component : result.components) {
        Text(component.record);
    }
    WriteValues(result);
    Text(" -3");
}

void FrdWriter::Finish(const FrdLines& trailing)
{
    Text(trailing);
    Text(" 9999");
    FlushLines();
}

void FrdWriter::Write(const FrdNodes& nodes)
{
    Text(nodes.before);
    Text(nodes.header);
    OpenFields(nodes.spellings);
    for (std::size_t i = 0; i < nodes.numbers.size(); ++i) {
        mLines += " -1";
        Integer(nodes.numbers[i], IntegerWidth(nodes.layout));
        for (std::size_t axis = 0; axis < 3; ++axis) {
            Real(nodes.coordinates.at(3 * i + axis));
        }
        EndLine();
    }
    Text(" -3");
}

void FrdWriter::Write(const FrdElements& elements)
{
    Text(elements.before);
    Text(elements.header);
    OpenFields(elements.spellings);
    std::size_t done = 0;
    for (std::size_t i = 0; i < elements.numbers.size(); ++i) {
        mLines += " -1";
        Integer(elements.numbers[i], IntegerWidth(elements.layout));
        Integer(elements.types.at(i), 5);
        Integer(elements.groups.at(i), 5);
        Integer(elements.materials.at(i), 5);
        EndLine();
        const FrdElementType* shape = FindElementType(elements.types[i]);
        if (shape == nullptr || shape->nodes > elements.nodeNumbers.size() - done) {
            throw FrdError(mPath, 0,
                           "element " + std::to_string(elements.numbers[i]) +
                               " cannot be written: its nodes are not known");
        }
        WriteNodesOfElement(elements.nodeNumbers.data() + done, shape->nodes, elements.layout);
        done += shape->nodes;
    }
    Text(" -3");
}

void FrdWriter::WriteNodesOfElement(const std::int64_t* nodes, std::size_t count, FrdLayout layout)
{
    for (std::size_t done = 0; done < count;) {
        const std::size_t inLine = std::min(count - done, NodesInLine(layout));
        mLines += " -2";
        for (std::size_t i = 0; i < inLine; ++i) {
            Integer(nodes[done + i], IntegerWidth(layout));
        }
        EndLine();
        done += inLine;
    }
}

void FrdWriter::WriteValues(const FrdResult& result)
{
    const std::size_t count = StoredComponents(result.components);
    const std::size_t width = IntegerWidth(result.layout);
    OpenFields(result.spellings);
    for (std::size_t i = 0; i < result.nodeNumbers.size(); ++i) {
        mLines += " -1";
        Integer(result.nodeNumbers[i], width);
        for (std::size_t k = 0; k < count; ++k) {
            if (k > 0 && k % kValuesInLine == 0) {
                EndLine();
                mLines += " -2";
                mLines.append(width, ' ');
            }
            Real(result.values.at(i * count + k));
        }
        EndLine();
    }
}

void FrdWriter::Text(const std::string& line)
{
    mLines += line;
    EndLine();
}

void FrdWriter::Text(const FrdLines& lines)
{
    for (const std::string& line : lines) {
        Text(line);
    }
}

void FrdWriter::EndLine()
{
    mLines += mLineEnd;
    if (mLines.size() >= kBytesInMemory) {
        FlushLines();
    }
}

void FrdWriter::FlushLines()
{
    errno = 0;
    mStream.write(mLines.data(), static_cast<std::streamsize>(mLines.size()));
    mStream.flush();
    if (!mStream) {
        throw FrdError(mPath, 0, "cannot be written: " + std::generic_category().message(errno));
    }
    mBytes += mLines.size();
    mLines.clear();
}

void FrdWriter::OpenFields(const FrdSpellings& spellings)
{
    mSpellings = &spellings;
    mNextSpelling = 0;
    mField = 0;
}

void FrdWriter::Integer(std::int64_t value, std::size_t width)
{
    if (!Spelled()) {
        AppendInteger(mLines, value, width);
    }
}

void FrdWriter::Real(double value)
{
    if (!Spelled()) {
        AppendReal(mLines, value);
    }
}

// Counts a field; true when it has a text of its own, which is then in the line.
bool FrdWriter::Spelled()
{
    const std::uint64_t field = mField++;
    if (mNextSpelling == mSpellings->size() || (*mSpellings)[mNextSpelling].field != field) {
        return false;
    }
    mLines += (*mSpellings)[mNextSpelling++].text;
    return true;
}

} // namespace fe
