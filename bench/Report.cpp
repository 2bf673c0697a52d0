// The tables: CSV for programs, Markdown with bars for readers.
#include "Results.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iomanip>
#include <sstream>
#include <stdexcept>

#include <sys/statfs.h>
#include <sys/utsname.h>

namespace {

std::string Number(double value)
{
    std::ostringstream out;
    out << std::fixed << std::setprecision(value < 10 ? 2 : value < 1000 ? 1 : 0) << value;
    return out.str();
}

std::string KindName(Kind kind)
{
    switch (kind) {
    case Kind::Library:
        return "library";
    case Kind::Floor:
        return "floor";
    default:
        return "peer";
    }
}

// Two signs for each doubling of the time over the fastest's.
std::string Bar(double value, double least)
{
    return std::string(static_cast<std::size_t>(1 + std::lround(2 * std::log2(value / least))),
                       '#');
}

std::string Ratio(double value, const std::optional<Results::Best>& best)
{
    return best ? Number(value / best->median) : "-";
}

std::ofstream Create(const std::string& path)
{
    std::ofstream out(path, std::ios::trunc);
    if (!out) {
        throw std::runtime_error("cannot write " + path);
    }
    return out;
}

void WriteCase(std::ostream& out, const Results& results, const Case& one)
{
    std::vector<Measured> rows;
    std::ranges::copy_if(results.measured, std::back_inserter(rows),
                         [&](const Measured& each) { return each.caseId == one.id; });
    if (rows.empty()) {
        return;
    }
    std::ranges::sort(rows, {}, &Measured::Median);
    const auto peer = results.BestOf(one.id, Kind::Peer);
    const auto floor = results.BestOf(one.id, Kind::Floor);
    out << "\n### " << one.id << ": " << one.title << "\n\n"
        << "| contender | kind | ns | min..max | MiB/s | to best peer | to best floor | sync ms "
           "| |\n"
        << "|---|---|--:|---|--:|--:|--:|--:|---|\n";
    for (const Measured& row : rows) {
        const double median = row.Median();
        out << "| " << row.contender << " | " << KindName(row.kind) << " | " << Number(median)
            << " | " << Number(row.Least()) << ".." << Number(row.Most()) << " | "
            << (one.moved > 0
                    ? Number(static_cast<double>(one.moved) / median * 1e9 / 1024.0 / 1024.0)
                    : "")
            << " | " << Ratio(median, peer) << " | " << Ratio(median, floor) << " | "
            << (row.MedianSync() > 0.001 ? Number(row.MedianSync()) : "") << " | `"
            << Bar(median, rows.front().Median()) << "` |\n";
    }
}

std::string FieldOf(const std::string& file, const std::string& key)
{
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with(key)) {
            std::erase(line, '"');
            return line.substr(std::min(line.size(), line.find_first_not_of("\t :=", key.size())));
        }
    }
    return "unknown";
}
} // namespace

void WriteCsv(const Results& results, const std::string& path)
{
    std::ofstream out = Create(path);
    out << "case,contender,kind,median_ns,min_ns,max_ns,rounds,median_sync_ms,to_best_peer,"
           "to_best_floor\n";
    for (const Measured& each : results.measured) {
        const double median = each.Median();
        out << each.caseId << ',' << each.contender << ',' << KindName(each.kind) << ','
            << Number(median) << ',' << Number(each.Least()) << ',' << Number(each.Most()) << ','
            << each.rounds.size() << ',' << Number(each.MedianSync()) << ','
            << Ratio(median, results.BestOf(each.caseId, Kind::Peer)) << ','
            << Ratio(median, results.BestOf(each.caseId, Kind::Floor)) << '\n';
    }
    for (const Memory& each : results.memory) {
        out << each.caseId << ',' << each.contender << ',' << KindName(each.kind) << ",peak_bytes,"
            << each.peak << ",anonymous_bytes," << each.anonymous << ",,,\n";
    }
}

void WriteMarkdown(const Results& results, const std::vector<Case>& cases,
                   const std::vector<Participant>& participants, const std::string& about,
                   const std::string& path)
{
    std::ofstream out = Create(path);
    out << "# Bench\n\n"
        << about << "\n## Contenders\n\n| name | kind | version | tuned |\n"
        << "|---|---|---|---|\n";
    for (const Participant& each : participants) {
        out << "| " << each.name << " | " << KindName(each.kind) << " | " << each.version << " | "
            << each.tuning << " |\n";
    }
    out << "\n## Times\n\nMedians in ns an operation, two signs of a bar for each doubling.\n";
    for (const Case& one : cases) {
        WriteCase(out, results, one);
    }
    out << "\n## Memory\n\nWhat a process took beyond what it had before it opened the store; "
           "pages of mapped files count in the peak.\n\n"
        << "| case | contender | peak MiB | its own MiB |\n|---|---|--:|--:|\n";
    for (const Memory& each : results.memory) {
        out << "| " << each.caseId << " | " << each.contender << " | "
            << Number(static_cast<double>(each.peak) / 1048576) << " | "
            << Number(static_cast<double>(each.anonymous) / 1048576) << " |\n";
    }
    out << "\n## Targets\n\n```text\n" << TargetLines(results) << "```\n";
    if (!out.flush()) {
        throw std::runtime_error("cannot write " + path);
    }
}

std::string AboutThisMachine(const std::string& folder)
{
    utsname system = {};
    uname(&system);
    struct statfs disk = {};
    statfs(folder.c_str(), &disk);
    std::ifstream load("/proc/loadavg");
    std::string loads;
    std::getline(load, loads);
    std::ifstream processors("/proc/cpuinfo");
    int count = 0;
    for (std::string line; std::getline(processors, line);) {
        count += line.starts_with("processor") ? 1 : 0;
    }
    std::ostringstream out;
    out << "- processor: " << count << " x " << FieldOf("/proc/cpuinfo", "model name") << "\n"
        << "- memory: " << FieldOf("/proc/meminfo", "MemTotal") << "\n"
        << "- system: " << system.sysname << ' ' << system.release << ", "
        << FieldOf("/etc/os-release", "PRETTY_NAME") << "\n"
        << "- file system: type 0x" << std::hex << disk.f_type << std::dec << "\n"
        << "- load when the run began: " << loads << "\n";
    return out.str();
}
