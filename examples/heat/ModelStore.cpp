#include "ModelStore.h"

#include "StreamItems.h"

#include "VUKSimRpm_BStreamAppendToPool.h"
#include "VUKSimRpm_BStreamReadLocator.h"

#include <cstring>
#include <stdexcept>
#include <string>

namespace heat {

namespace {

constexpr char kNodes[] = "HEATNODE";
constexpr char kElements[] = "HEATELEM";
constexpr char kModel[] = "HEATMODL";
constexpr unsigned kTagBytes = 8;

void PutTag(VUKSimRpm_BStreamWrite& stream, const char* tag)
{
    stream.Write(tag, kTagBytes);
}

void CheckTag(VUKSimRpm_BStreamRead& stream, const char* tag)
{
    if (std::memcmp(stream.PrepRead(kTagBytes), tag, kTagBytes) != 0) {
        throw std::runtime_error(std::string("stored model: no record \"") + tag +
                                 "\" where one is referred to");
    }
}

void CheckNode(std::uint32_t node, std::size_t nodes, const std::string& where)
{
    if (node >= nodes) {
        throw std::runtime_error("stored model: " + where + " names node " + std::to_string(node) +
                                 " of " + std::to_string(nodes));
    }
}

void PutNodes(VUKSimRpm_BStreamWrite& stream, const std::vector<Point>& nodes)
{
    std::vector<double> coordinates;
    for (const Point& node : nodes) {
        coordinates.insert(coordinates.end(), {node.x, node.y});
    }
    PutTag(stream, kNodes);
    Put(stream, static_cast<std::uint32_t>(nodes.size()));
    PutArray(stream, coordinates);
}

std::vector<Point> GetNodes(VUKSimRpm_BStreamRead& stream)
{
    CheckTag(stream, kNodes);
    const std::size_t count = Get<std::uint32_t>(stream);
    const std::vector<double> coordinates = GetArray<double>(stream, 2 * count);
    std::vector<Point> nodes(count);
    for (std::size_t i = 0; i < count; ++i) {
        nodes[i] = {coordinates[2 * i], coordinates[2 * i + 1]};
    }
    return nodes;
}

void PutElements(VUKSimRpm_BStreamWrite& stream, const std::vector<Quad>& elements)
{
    std::vector<std::uint32_t> corners;
    for (const Quad& element : elements) {
        corners.insert(corners.end(), element.corner.begin(), element.corner.end());
    }
    PutTag(stream, kElements);
    Put(stream, static_cast<std::uint32_t>(elements.size()));
    PutArray(stream, corners);
}

std::vector<Quad> GetElements(VUKSimRpm_BStreamRead& stream, std::size_t nodes)
{
    CheckTag(stream, kElements);
    const std::size_t count = Get<std::uint32_t>(stream);
    const std::vector<std::uint32_t> corners = GetArray<std::uint32_t>(stream, 4 * count);
    std::vector<Quad> elements(count);
    for (std::size_t i = 0; i < corners.size(); ++i) {
        CheckNode(corners[i], nodes, "element " + std::to_string(i / 4));
        elements[i / 4].corner[i % 4] = corners[i];
    }
    return elements;
}

void PutBoundary(VUKSimRpm_BStreamWrite& stream, const Boundary& boundary,
                 const Condition& condition)
{
    std::vector<std::uint32_t> ends;
    for (const Edge& edge : boundary.edges) {
        ends.insert(ends.end(), edge.end.begin(), edge.end.end());
    }
    PutText(stream, boundary.name);
    Put(stream, static_cast<std::uint32_t>(condition.kind));
    Put(stream, condition.temperature);
    Put(stream, condition.filmCoefficient);
    Put(stream, static_cast<std::uint32_t>(boundary.edges.size()));
    PutArray(stream, ends);
}

Condition GetCondition(VUKSimRpm_BStreamRead& stream, const std::string& boundary)
{
    const auto kind = Get<std::uint32_t>(stream);
    if (kind > static_cast<std::uint32_t>(ConditionKind::Convection)) {
        throw std::runtime_error("stored model: boundary \"" + boundary +
                                 "\" has a condition of unknown kind " + std::to_string(kind));
    }
    Condition condition;
    condition.kind = static_cast<ConditionKind>(kind);
    condition.temperature = Get<double>(stream);
    condition.filmCoefficient = Get<double>(stream);
    return condition;
}

void GetBoundary(VUKSimRpm_BStreamRead& stream, Model& model)
{
    Boundary boundary;
    boundary.name = GetText(stream);
    model.conditions.push_back(GetCondition(stream, boundary.name));
    const std::size_t count = Get<std::uint32_t>(stream);
    const std::vector<std::uint32_t> ends = GetArray<std::uint32_t>(stream, 2 * count);
    boundary.edges.resize(count);
    for (std::size_t i = 0; i < ends.size(); ++i) {
        CheckNode(ends[i], model.mesh.nodes.size(), "boundary \"" + boundary.name + "\"");
        boundary.edges[i / 2].end[i % 2] = ends[i];
    }
    model.mesh.boundaries.push_back(std::move(boundary));
}

void PutModel(VUKSimRpm_BStreamWrite& stream, const Model& model, const VUKSimRpm_Locator& nodes,
              const VUKSimRpm_Locator& elements)
{
    PutTag(stream, kModel);
    PutText(stream, model.title);
    PutText(stream, model.fieldName);
    PutText(stream, model.fieldUnit);
    nodes.ExternalizeImpl(stream);
    elements.ExternalizeImpl(stream);
    Put(stream, static_cast<std::uint32_t>(model.mesh.boundaries.size()));
    for (std::size_t i = 0; i < model.mesh.boundaries.size(); ++i) {
        PutBoundary(stream, model.mesh.boundaries[i], model.conditions[i]);
    }
    PutText(stream, model.material.name);
    Put(stream, model.material.conductivity);
    Put(stream, model.material.density);
    Put(stream, model.material.specificHeat);
    Put(stream, model.initialTemperature);
    Put(stream, model.timeStep);
    Put(stream, model.steps);
}

} // namespace

VUKSimRpm_Locator StoreModel(VUKSimRpm_File file, const Model& model)
{
    const VUKSimRpm_Locator nodes = file.Start();
    {
        VUKSimRpm_BStreamAppendToPool stream(file.Pool(), kChunkBytes);
        PutNodes(stream, model.mesh.nodes);
    }
    // A pool can refer to those only that the document knew when it was made: the model record's
    // comes last.
    file.NewPool(true, nullptr);
    const VUKSimRpm_Locator elements = file.Start();
    {
        VUKSimRpm_BStreamAppendToPool stream(file.Pool(), kChunkBytes);
        PutElements(stream, model.mesh.elements);
    }
    file.NewPool(false, nullptr);
    VUKSimRpm_Locator record = file.Start();
    {
        VUKSimRpm_BStreamAppendToPool stream(file.Pool(), kChunkBytes);
        PutModel(stream, model, nodes, elements);
    }
    return record;
}

VUKSimRpm_Locator ModelRecord(const VUKSimRpm_File& file)
{
    if (file.PoolCount() == 0) {
        throw std::runtime_error(std::string(file.FileName().UTF8()) + " holds no model");
    }
    return file.Start();
}

Model LoadModel(const VUKSimRpm_Locator& record)
{
    VUKSimRpm_BStreamReadLocator stream(record, 0, kChunkBytes);
    Model model;
    CheckTag(stream, kModel);
    model.title = GetText(stream);
    model.fieldName = GetText(stream);
    model.fieldUnit = GetText(stream);

    VUKSimRpm_Locator nodes;
    VUKSimRpm_Locator elements;
    nodes.InternalizeImpl(stream);
    elements.InternalizeImpl(stream);
    VUKSimRpm_BStreamReadLocator nodeStream(nodes, 0, kChunkBytes);
    model.mesh.nodes = GetNodes(nodeStream);
    VUKSimRpm_BStreamReadLocator elementStream(elements, 0, kChunkBytes);
    model.mesh.elements = GetElements(elementStream, model.mesh.nodes.size());

    const auto boundaries = Get<std::uint32_t>(stream);
    for (std::uint32_t i = 0; i < boundaries; ++i) {
        GetBoundary(stream, model);
    }
    model.material.name = GetText(stream);
    model.material.conductivity = Get<double>(stream);
    model.material.density = Get<double>(stream);
    model.material.specificHeat = Get<double>(stream);
    model.initialTemperature = Get<double>(stream);
    model.timeStep = Get<double>(stream);
    model.steps = Get<std::uint32_t>(stream);
    return model;
}

} // namespace heat
