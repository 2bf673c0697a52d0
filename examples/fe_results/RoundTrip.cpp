#include "RoundTrip.h"

#include "DocumentFolder.h"
#include "Figures.h"
#include "TextDifference.h"
#include "Transfer.h"

#include "VUKSimRpm_Document.h"
#include "VUKString.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <set>
#include <stdexcept>

namespace fe {

namespace {

constexpr char kSignature[] = "FRD1"; // of all documents made here

double SecondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

constexpr std::size_t kLineWidth = 90;

// The texts with commas between them, in as many indented lines as they take.
std::string Joined(const std::vector<std::string>& texts)
{
    std::string joined;
    std::size_t column = 0;
    for (const std::string& text : texts) {
        if (!joined.empty()) {
            const bool full = column + text.size() > kLineWidth;
            joined += full ? ",\n      " : ", ";
            column = full ? 0 : column + 2;
        }
        joined += text;
        column += text.size();
    }
    return joined;
}

std::string Shapes(const Imported& report)
{
    std::vector<std::string> texts;
    for (const auto& [name, count] : report.shapes) {
        texts.push_back(Grouped(count) + " " + name);
    }
    return texts.empty() ? "" : " (" + Joined(texts) + ")";
}

/// The way of one result file.
struct Item
{
    std::string input;
    std::string stem; // of its files in the document's folder, unlike that of any other input
    Imported imported;
};

class RoundTrip
{
public:
    RoundTrip(const RoundTripOptions& options, std::ostream& out);

    void Run();

private:
    void Import();
    void Export();
    void ExportItem(const Item& item, VUKSimRpm_Document& document);
    void TellImport(const Item& item, VUKSimRpm_Document& document);
    void TellExport(const Item& item, const Exported& exported);
    void Summarise();
    [[nodiscard]] std::string MeshFile(const Item& item) const;
    [[nodiscard]] std::string ResultsFile(const Item& item) const;
    [[nodiscard]] std::string CopyFile(const Item& item) const;
    VUKSimRpm_File Open(VUKSimRpm_Document& document, const std::string& file);

    const RoundTripOptions& mOptions;
    std::ostream& mOut;
    std::vector<Item> mItems;
    DocumentFolder mFolder;
    std::uint64_t mTextBytes = 0;
    std::uint64_t mStoredBytes = 0;
    std::uint64_t mPoolChanges = 0;
    std::uint64_t mMeshWays = 0;
    double mImportSeconds = 0.0;
    double mExportSeconds = 0.0;
};

RoundTrip::RoundTrip(const RoundTripOptions& options, std::ostream& out)
    : mOptions(options), mOut(out), mFolder(options.folder)
{
    std::set<std::string> stems;
    for (const std::string& input : options.inputs) {
        const std::string name = std::filesystem::path(input).stem().string();
        std::string stem = name;
        for (int next = 2; !stems.insert(stem).second; ++next) {
            stem = name + "-" + std::to_string(next);
        }
        mItems.push_back({input, stem, {}});
    }
}

void RoundTrip::Run()
{
    Import();
    Export();
    if (!mOptions.folder.empty()) {
        mFolder.Publish();
    }
    Summarise();
}

void RoundTrip::Import()
{
    if (!mOptions.quiet) {
        mOut << Counted(mItems.size(), "result file") << " into one document\n";
    }
    VUKSimRpm_Document document(kSignature);
    for (Item& item : mItems) {
        const auto start = std::chrono::steady_clock::now();
        item.imported = ImportResultFile(item.input, document, MeshFile(item), ResultsFile(item));
        mImportSeconds += SecondsSince(start);
        mTextBytes += item.imported.bytes;
        if (!mOptions.quiet) {
            TellImport(item, document);
        }
    }
    document.Close();
}

// All files are opened the other way round, so that references lead to pools that the document does
// not know yet.
void RoundTrip::Export()
{
    if (!mOptions.quiet) {
        mOut << "\nClosed; opened again in reverse order, results before their meshes\n";
    }
    std::vector<std::string> files;
    for (const Item& item : mItems) {
        files.insert(files.end(), {MeshFile(item), ResultsFile(item)});
    }
    std::reverse(files.begin(), files.end());
    VUKSimRpm_Document document(kSignature);
    for (const std::string& file : files) {
        Open(document, file);
    }
    for (const Item& item : mItems) {
        ExportItem(item, document);
    }
    document.Close();
}

void RoundTrip::ExportItem(const Item& item, VUKSimRpm_Document& document)
{
    const auto start = std::chrono::steady_clock::now();
    const Exported exported = ExportResultFile(Open(document, ResultsFile(item)), CopyFile(item));
    mExportSeconds += SecondsSince(start);
    mPoolChanges += exported.walk.poolChanges;
    mMeshWays += exported.walk.meshWays;
    mStoredBytes +=
        std::filesystem::file_size(MeshFile(item)) + std::filesystem::file_size(ResultsFile(item));
    if (const auto difference = FindDifference(item.input, CopyFile(item))) {
        throw std::runtime_error(item.input + ":" + std::to_string(difference->line) +
                                 ": came back changed\n  was: " + difference->first +
                                 "\n  is:  " + difference->second);
    }
    if (!mOptions.quiet) {
        TellExport(item, exported);
    }
}

void RoundTrip::TellImport(const Item& item, VUKSimRpm_Document& document)
{
    const Imported& report = item.imported;
    mOut << "\n  " << item.input << "\n    " << Counted(report.lines, "line") << ", "
         << Grouped(report.bytes) << " bytes: " << Counted(report.nodes, "node") << ", "
         << Counted(report.elements, "element") << Shapes(report) << "\n";
    if (report.results > 0) {
        mOut << "    " << Counted(report.results, "block") << " of results at "
             << Counted(report.steps, "step") << "\n      " << Joined(report.quantities) << "\n";
    }
    if (report.spelled > 0) {
        mOut << "    " << Counted(report.spelled, "field")
             << " with a spelling of its own, kept beside the number\n";
    }
    for (const std::string& path : {MeshFile(item), ResultsFile(item)}) {
        const VUKSimRpm_File file = Open(document, path);
        mOut << "    -> " << std::filesystem::path(path).filename().string() << ": "
             << Grouped(std::filesystem::file_size(path)) << " bytes, "
             << Counted(file.PoolCount(), "pool") << "\n";
    }
}

void RoundTrip::TellExport(const Item& item, const Exported& exported)
{
    const Walk& walk = exported.walk;
    mOut << "\n  " << item.stem << ".results.sim\n    ";
    if (item.imported.results == 0) {
        mOut << "from its end straight to the mesh\n";
    } else {
        mOut << "from the last block to the first along " << Counted(walk.steps, "locator") << ", "
             << Grouped(walk.poolChanges) << " into another pool;\n    "
             << Counted(walk.meshWays, "locator") << " to the mesh in the other file, "
             << Counted(walk.ownNodeLists, "block") << " at nodes of its own choice\n";
    }
    mOut << "    written again as " << exported.source << ": " << Grouped(exported.bytes)
         << " bytes, all equal to the input's\n";
}

void RoundTrip::Summarise()
{
    Imported all;
    for (const Item& item : mItems) {
        all.nodes += item.imported.nodes;
        all.elements += item.imported.elements;
        all.results += item.imported.results;
        all.steps += item.imported.steps;
        all.reals += item.imported.reals;
    }
    if (!mOptions.quiet) {
        mOut << "\n"
             << Grouped(mTextBytes) << " bytes of text, " << Grouped(mStoredBytes)
             << " bytes stored; import " << Rate(mTextBytes, mImportSeconds) << ", export "
             << Rate(mTextBytes, mExportSeconds) << "\n"
             << Counted(mMeshWays, "locator") << " crossed files, " << Grouped(mPoolChanges)
             << " more crossed pools\n";
    }
    if (!mOptions.folder.empty()) {
        mOut << "Left in " << mOptions.folder << ": the document and the copies\n";
    }
    mOut << "Proved: " << Counted(mItems.size(), "result file") << " ("
         << Counted(all.nodes, "node") << ", " << Counted(all.elements, "element") << ", "
         << Counted(all.results, "block") << " at " << Counted(all.steps, "step") << ", "
         << Grouped(all.reals) << " real numbers) came back with every digit." << std::endl;
}

std::string RoundTrip::MeshFile(const Item& item) const
{
    return mFolder.PathOf(item.stem + ".mesh.sim");
}

std::string RoundTrip::ResultsFile(const Item& item) const
{
    return mFolder.PathOf(item.stem + ".results.sim");
}

std::string RoundTrip::CopyFile(const Item& item) const
{
    return mFolder.PathOf(item.stem + ".frd");
}

// A file that the document has already is handed out again.
VUKSimRpm_File RoundTrip::Open(VUKSimRpm_Document& document, const std::string& file)
{
    return document.AddFile(VUKString(file.c_str()), VUKSimRpm_Document::Read);
}

} // namespace

void RunRoundTrip(const RoundTripOptions& options, std::ostream& out)
{
    RoundTrip(options, out).Run();
}

} // namespace fe
