#include "VerifyCommand.h"

#include "EscapedText.h"
#include "FileSummary.h"
#include "ProgressLine.h"
#include "TextTable.h"
#include "Verification.h"

#include <algorithm>

namespace simpool {
namespace {

using Findings = std::vector<Finding>;

std::uint64_t CountErrors(const Findings& findings)
{
    return static_cast<std::uint64_t>(std::ranges::count_if(
        findings, [](const Finding& finding) { return TextOf(finding.code).IsError(); }));
}

const char* Severity(const FindingText& text)
{
    return text.IsError() ? "error" : "warning";
}

Json CodeDocument(const FindingText& text)
{
    Json code;
    code["code"] = text.id;
    code["name"] = text.name;
    code["severity"] = Severity(text);
    return code;
}

Json Document(const LoadedFiles& files, const Findings& findings)
{
    Json document = NewDocument("verify");
    document["files"] = Json::array();
    for (const LoadedFile& file : files) {
        Json entry = FileHead(file);
        entry["pools"] = file.Pools().size();
        document["files"].push_back(std::move(entry));
    }
    document["findings"] = Json::array();
    for (const Finding& finding : findings) {
        Json entry = CodeDocument(TextOf(finding.code));
        entry["file"] = Escaped(files[finding.file].name);
        entry["pool"] = finding.pool ? Json(*finding.pool) : Json();
        entry["position"] = finding.position;
        entry["what"] = finding.what;
        entry["advice"] = TextOf(finding.code).advice;
        document["findings"].push_back(std::move(entry));
    }
    const std::uint64_t errors = CountErrors(findings);
    document["errors"] = errors;
    document["warnings"] = findings.size() - errors;
    return document;
}

void Print(Output& out, const Finding& finding)
{
    const FindingText& text = TextOf(finding.code);
    const std::string place =
        finding.pool ? fmt::format("pool {} at {}: ", *finding.pool, Grouped(finding.position))
                     : "";
    out.Print("  {} {}{}\n",
              out.Paint(text.IsError() ? Colour::Red : Colour::Yellow,
                        fmt::format("{} {} {}:", Severity(text), text.id, text.name)),
              place, finding.what);
    out.Print("      {}\n", text.advice);
}

void Print(Output& out, const LoadedFiles& files, const Findings& findings)
{
    for (std::size_t i = 0; i < files.Count(); ++i) {
        Findings ofFile;
        std::ranges::copy_if(findings, std::back_inserter(ofFile),
                             [&](const Finding& finding) { return finding.file == i; });
        const std::uint64_t errors = CountErrors(ofFile);
        const std::string result = ofFile.empty()
                                       ? out.Paint(Colour::Green, "no findings")
                                       : out.Paint(errors > 0 ? Colour::Red : Colour::Yellow,
                                                   Counted(errors, "error") + ", " +
                                                       Counted(ofFile.size() - errors, "warning"));
        out.Print("{}: {}\n", FileLine(files[i]), result);
        for (const Finding& finding : ofFile) {
            Print(out, finding);
        }
    }
}

void PrintCodes(const Surroundings& surroundings)
{
    if (surroundings.json) {
        Json document = NewDocument("verify");
        document["codes"] = Json::array();
        for (const FindingText& text : AllFindingTexts()) {
            Json code = CodeDocument(text);
            code["meaning"] = text.meaning;
            code["advice"] = text.advice;
            document["codes"].push_back(std::move(code));
        }
        PrintJson(surroundings.out, document);
        return;
    }
    TextTable table({{"code"}, {"name"}, {"meaning"}});
    for (const FindingText& text : AllFindingTexts()) {
        table.AddRow({text.id, text.name, text.meaning});
    }
    table.Print(surroundings.out);
}
} // namespace

CommandText VerifyCommand::Text() const
{
    return {
        "verify", "Say what is wrong with files",
        "Walks through the files as opening them in one document does, and then looks at what "
        "opening deliberately leaves unchecked. Each finding has a code that stays the same from "
        "release to release, says which pool and position it is about, and what to do.\n\n"
        "The exit status is 0 without findings and 1 with any. Some warnings are about what a "
        "sound file may have as well, such as data that ends in zeros: --errors looks for errors "
        "alone, reads no data, and is fast.",
        "simpool verify run.sim\nsimpool verify --errors mesh.sim results.sim\n"
        "simpool verify --codes\n"};
}

void VerifyCommand::AddOptions(CLI::App& options)
{
    auto* files =
        options.add_option("file", mNames, "Files to look at, together")->type_name("FILE");
    options.add_flag("-e,--errors", mErrorsOnly, "Look for errors only, not for warnings");
    options.add_flag("--codes", mListsCodes, "List the codes of all findings that there are")
        ->excludes(files);
    options.callback([this] {
        if (mNames.empty() && !mListsCodes) {
            throw CLI::RequiredError("file");
        }
    });
}

ExitCode VerifyCommand::Run(const Surroundings& surroundings)
{
    if (mListsCodes) {
        PrintCodes(surroundings);
        return ExitCode::Fine;
    }
    const LoadedFiles files(mNames, LoadedFiles::Walk::AsOneDocument);
    std::uint64_t total = 0;
    for (const LoadedFile& file : files) {
        total += file.bytes.Size();
    }
    Findings findings;
    {
        ProgressLine line(surroundings.err, "verifying", total);
        findings = Verify(files, mErrorsOnly ? VerifyDepth::Errors : VerifyDepth::ErrorsAndWarnings,
                          [&](std::uint64_t done) { line.At(done); });
    }
    if (surroundings.json) {
        PrintJson(surroundings.out, Document(files, findings));
    } else {
        Print(surroundings.out, files, findings);
    }
    return findings.empty() ? ExitCode::Fine : ExitCode::Finding;
}
} // namespace simpool
