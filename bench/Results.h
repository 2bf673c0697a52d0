// What was measured, kept for the tables and the targets.
#pragma once

#include "Cases.h"
#include "Contender.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

/// One contender at one case. Times are nanoseconds an operation.
struct Measured
{
    std::string caseId;
    std::string contender;
    Kind kind;
    std::vector<double> rounds = {};
    std::vector<double> syncs = {}; // milliseconds of the sync that followed each round

    [[nodiscard]] double Median() const;
    [[nodiscard]] double Least() const;
    [[nodiscard]] double Most() const;
    [[nodiscard]] double MedianSync() const;
};

/// Bytes that a process took beyond what it had before it opened the store.
struct Memory
{
    std::string caseId;
    std::string contender;
    Kind kind;
    long long peak;      // resident, pages of mapped files included
    long long anonymous; // of them the process' own, at the end
};

class Results
{
public:
    std::vector<Measured> measured;
    std::vector<Memory> memory;

    [[nodiscard]] std::optional<double> Of(const std::string& caseId,
                                           const std::string& contender) const;

    /// The fastest of a kind, with its name.
    struct Best
    {
        std::string contender;
        double median;
    };
    [[nodiscard]] std::optional<Best> BestOf(const std::string& caseId, Kind kind) const;

    [[nodiscard]] const Memory* MemoryOf(const std::string& caseId,
                                         const std::string& contender) const;
};

/// Who took part: name, version and tuning.
struct Participant
{
    std::string name;
    Kind kind;
    std::string version;
    std::string tuning;
};

void WriteCsv(const Results& results, const std::string& path);
void WriteMarkdown(const Results& results, const std::vector<Case>& cases,
                   const std::vector<Participant>& participants, const std::string& about,
                   const std::string& path);

/// One line for each target, met or not.
std::string TargetLines(const Results& results);

/// Processor, memory, system, load: what a reader has to know of the machine.
std::string AboutThisMachine(const std::string& folder);
