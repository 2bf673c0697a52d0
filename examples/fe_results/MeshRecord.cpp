#include "MeshRecord.h"

#include "RecordReader.h"
#include "RecordWriter.h"

namespace fe {

namespace {

constexpr char kNodeListTag[] = "NODELIST";
constexpr char kMeshTag[] = "FRD MESH";

void PutNodes(RecordWriter& record, const FrdNodes& nodes)
{
    record.Lines(nodes.before);
    record.Text(nodes.header);
    record.Number(static_cast<std::uint32_t>(nodes.layout));
    record.Number(static_cast<std::uint64_t>(nodes.numbers.size()));
    record.Array(nodes.coordinates);
    record.Spellings(nodes.spellings);
}

void GetNodes(RecordReader& record, FrdNodes& nodes)
{
    nodes.before = record.Lines();
    nodes.header = record.Text();
    nodes.layout = static_cast<FrdLayout>(record.Number<std::uint32_t>());
    const auto count = record.Number<std::uint64_t>();
    if (count != nodes.numbers.size()) {
        throw RecordError("a stored mesh and its node list differ in length");
    }
    nodes.coordinates = record.Array<double>(3 * count);
    nodes.spellings = record.Spellings();
}

void PutElements(RecordWriter& record, const FrdElements& elements)
{
    record.Lines(elements.before);
    record.Text(elements.header);
    record.Number(static_cast<std::uint32_t>(elements.layout));
    record.Number(static_cast<std::uint64_t>(elements.numbers.size()));
    record.Array(elements.numbers);
    record.Array(elements.types);
    record.Array(elements.groups);
    record.Array(elements.materials);
    record.Number(static_cast<std::uint64_t>(elements.nodeNumbers.size()));
    record.Array(elements.nodeNumbers);
    record.Spellings(elements.spellings);
}

void GetElements(RecordReader& record, FrdElements& elements)
{
    elements.before = record.Lines();
    elements.header = record.Text();
    elements.layout = static_cast<FrdLayout>(record.Number<std::uint32_t>());
    const auto count = record.Number<std::uint64_t>();
    elements.numbers = record.Array<std::int64_t>(count);
    elements.types = record.Array<std::int32_t>(count);
    elements.groups = record.Array<std::int32_t>(count);
    elements.materials = record.Array<std::int32_t>(count);
    elements.nodeNumbers = record.Array<std::int64_t>(record.Number<std::uint64_t>());
    elements.spellings = record.Spellings();
}

} // namespace

VUKSimRpm_Locator WriteNodeList(const VUKSimRpm_Pool& pool,
                                const std::vector<std::int64_t>& numbers)
{
    RecordWriter record(pool, kNodeListTag);
    record.Number(static_cast<std::uint64_t>(numbers.size()));
    record.Array(numbers);
    return record.Finish();
}

std::vector<std::int64_t> ReadNodeList(const VUKSimRpm_Locator& place)
{
    RecordReader record(place, kNodeListTag);
    const auto count = record.Number<std::uint64_t>();
    return record.Array<std::int64_t>(count);
}

VUKSimRpm_Locator WriteMesh(const VUKSimRpm_Pool& pool, const FrdMesh& mesh,
                            const VUKSimRpm_Locator& nodeList)
{
    RecordWriter record(pool, kMeshTag);
    record.Locator(nodeList);
    record.Text(mesh.source);
    record.Text(mesh.lineEnd);
    PutNodes(record, mesh.nodes);
    PutElements(record, mesh.elements);
    return record.Finish();
}

FrdMesh ReadMesh(const VUKSimRpm_Locator& place)
{
    RecordReader record(place, kMeshTag);
    FrdMesh mesh;
    mesh.nodes.numbers = ReadNodeList(record.Locator());
    mesh.source = record.Text();
    mesh.lineEnd = record.Text();
    GetNodes(record, mesh.nodes);
    GetElements(record, mesh.elements);
    return mesh;
}

} // namespace fe
