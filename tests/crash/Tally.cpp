#include "Tally.h"

#include <algorithm>
#include <iomanip>

namespace {

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

Tally& Tally::Unextended()
{
    static Tally unextended;
    return unextended;
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

Tally::Row Tally::At(const std::string& scenario, CrashModel model) const
{
    const auto found = mRows.find({scenario, model});
    return found == mRows.end() ? Row() : found->second;
}

Tally::Row Tally::Sum() const
{
    Row sum;
    for (const auto& [key, row] : mRows) {
        sum.Add(row);
    }
    return sum;
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
            const Row row = At(scenario, model);
            PrintRow(out, scenario, NameOf(model), row);
            totals[model].Add(row);
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
