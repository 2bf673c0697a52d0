#include "Transfer.h"

#include "FrdElementType.h"
#include "FrdReader.h"
#include "FrdWriter.h"
#include "ResultStoreWriter.h"

#include "VUKString.h"

#include <algorithm>
#include <filesystem>
#include <limits>

namespace fe {

namespace {

// "CONTACT [length, force/length^2]"
std::string QuantityOf(const FrdResult& result)
{
    std::vector<std::string> units;
    for (const FrdComponent& component : result.components) {
        if (!component.unit.empty() &&
            std::find(units.begin(), units.end(), component.unit) == units.end()) {
            units.push_back(component.unit);
        }
    }
    std::string text = result.name;
    for (std::size_t i = 0; i < units.size(); ++i) {
        text += (i == 0 ? " [" : ", ") + units[i];
    }
    return text + (units.empty() ? "" : "]");
}

void Count(const FrdMesh& mesh, Imported& report)
{
    report.nodes = mesh.nodes.numbers.size();
    report.elements = mesh.elements.numbers.size();
    report.reals += mesh.nodes.coordinates.size();
    report.spelled += mesh.nodes.spellings.size() + mesh.elements.spellings.size();
    for (const std::int32_t type : mesh.elements.types) {
        ++report.shapes[FindElementType(type)->name];
    }
}

void Count(const FrdResult& result, Imported& report)
{
    ++report.results;
    report.reals += result.values.size();
    report.spelled += result.spellings.size();
    const std::string quantity = QuantityOf(result);
    auto& known = report.quantities;
    if (std::find(known.begin(), known.end(), quantity) == known.end()) {
        known.push_back(quantity);
    }
}

} // namespace

Imported ImportResultFile(const std::string& input, VUKSimRpm_Document& document,
                          const std::string& meshFile, const std::string& resultsFile)
{
    FrdReader reader(input);
    FrdMesh mesh = reader.ReadMesh();
    mesh.source = std::filesystem::path(input).filename().string();

    const VUKSimRpm_File meshOut =
        document.AddFile(VUKString(meshFile.c_str()), VUKSimRpm_Document::Write);
    const VUKSimRpm_File resultsOut =
        document.AddFile(VUKString(resultsFile.c_str()), VUKSimRpm_Document::Write);
    ResultStoreWriter store(meshOut, resultsOut);
    Imported report;
    Count(mesh, report);
    store.Store(mesh);

    std::int64_t step = std::numeric_limits<std::int64_t>::min();
    double value = 0.0;
    for (FrdResult result; reader.ReadResult(result);) {
        Count(result, report);
        if (result.step != step || result.value != value) {
            ++report.steps;
            step = result.step;
            value = result.value;
        }
        store.Store(result);
    }
    store.StoreEnd(reader.Trailing());
    report.lines = reader.Lines();
    report.bytes = reader.Bytes();
    return report;
}

Exported ExportResultFile(const VUKSimRpm_File& results, const std::string& output)
{
    ResultStoreReader store(results);
    const FrdMesh mesh = store.Mesh();
    FrdWriter writer(output);
    writer.Write(mesh);
    for (std::size_t i = 0; i < store.Results(); ++i) {
        writer.Write(store.Result(i));
    }
    writer.Finish(store.Trailing());
    return {mesh.source, writer.Bytes(), store.Way()};
}

} // namespace fe
