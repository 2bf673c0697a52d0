#include "Tally.h"

#include <algorithm>
#include <functional>
#include <iomanip>

namespace {

std::size_t HashOf(const DiskState& files)
{
    std::size_t hash = 0;
    for (const DiskFile& file : files) {
        hash = hash * 1000003U + std::hash<std::string>()(file.bytes) + (file.present ? 1U : 0U);
    }
    return hash;
}

// A count and its share of `all`.
void PrintShare(std::ostream& out, std::size_t count, std::size_t all)
{
    const double share =
        all == 0 ? 0.0 : 100.0 * static_cast<double>(count) / static_cast<double>(all);
    out << std::setw(7) << count << std::setw(7) << std::fixed << std::setprecision(2) << share
        << '%';
}
} // namespace

Tally& Tally::Total()
{
    static Tally total;
    return total;
}

void Tally::Count(const std::string& scenario, const CrashImage& image, const Outcome& outcome)
{
    if (std::ranges::find(mScenarios, scenario) == mScenarios.end()) {
        mScenarios.push_back(scenario);
    }
    Row& row = mRows[{scenario, image.model}];
    ++row.states;
    row.inPoolCall += outcome.inPoolCall ? 1U : 0U;
    row.refused += outcome.refused ? 1U : 0U;
    row.longer += outcome.longer ? 1U : 0U;
    row.pastEnd += outcome.pastEnd ? 1U : 0U;
    row.mixedUuid += outcome.mixedUuid ? 1U : 0U;
    row.broken += outcome.broken.empty() ? 0U : 1U;
    row.distinct.insert(HashOf(image.files));
    if (outcome.refused) {
        ++mRefusedBy[outcome.refusedBy];
    }
}

std::size_t Tally::States() const
{
    std::size_t states = 0;
    for (const auto& [key, row] : mRows) {
        states += row.states;
    }
    return states;
}

std::size_t Tally::Broken() const
{
    std::size_t broken = 0;
    for (const auto& [key, row] : mRows) {
        broken += row.broken;
    }
    return broken;
}

void Tally::Print(std::ostream& out) const
{
    out << std::left << std::setw(34) << "scenario" << std::setw(19) << "model" << std::right
        << std::setw(9) << "states" << std::setw(9) << "distinct" << std::setw(9) << "in call"
        << std::setw(15) << "refused" << std::setw(15) << "longer" << std::setw(15) << "past end"
        << std::setw(15) << "mixed UUID" << std::setw(8) << "broken" << '\n';
    std::map<CrashModel, Row> totals;
    for (const std::string& scenario : mScenarios) {
        for (const CrashModel model : kCrashModels) {
            const auto found = mRows.find({scenario, model});
            if (found != mRows.end()) {
                PrintRow(out, scenario, NameOf(model), found->second);
                totals[model].Add(found->second);
            }
        }
    }
    for (const auto& [model, row] : totals) {
        PrintRow(out, "all", NameOf(model), row);
    }
    for (const auto& [name, count] : mRefusedBy) {
        out << "refused by " << name << ": " << count << '\n';
    }
}

void Tally::PrintRow(std::ostream& out, const std::string& scenario, const std::string& model,
                     const Row& row)
{
    out << std::left << std::setw(34) << scenario << std::setw(19) << model << std::right
        << std::setw(9) << row.states << std::setw(9) << row.distinct.size() << std::setw(9)
        << row.inPoolCall;
    for (const std::size_t count : {row.refused, row.longer, row.pastEnd, row.mixedUuid}) {
        PrintShare(out, count, row.inPoolCall);
    }
    out << std::setw(8) << row.broken << '\n';
}

void Tally::Row::Add(const Row& other)
{
    states += other.states;
    inPoolCall += other.inPoolCall;
    refused += other.refused;
    longer += other.longer;
    pastEnd += other.pastEnd;
    mixedUuid += other.mixedUuid;
    broken += other.broken;
    distinct.insert(other.distinct.begin(), other.distinct.end());
}
