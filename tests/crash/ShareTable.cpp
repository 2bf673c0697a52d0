#include "ShareTable.h"

#include <iomanip>
#include <sstream>

namespace {

using Row = Tally::Row;

// With a comma before each three digits.
std::string Grouped(std::size_t number)
{
    std::string digits = std::to_string(number);
    for (std::size_t end = digits.size(); end > 3; end -= 3) {
        digits.insert(end - 3, ",");
    }
    return digits;
}

std::string Share(std::size_t Row::*count, const Row& row)
{
    if (row.*count == 0) {
        return "0";
    }
    std::ostringstream out;
    out << std::fixed << std::setprecision(2)
        << 100.0 * static_cast<double>(row.*count) / static_cast<double>(row.inPoolCall) << " %";
    return out.str();
}

std::string ShareThenAndNow(std::size_t Row::*count, const Row& then, const Row& now)
{
    const std::string before = Share(count, then);
    const std::string after = Share(count, now);
    return before == after ? after : before + " -> " + after;
}

void AppendRow(std::string& table, const std::string& scenario, CrashModel model, const Row& then,
               const Row& now)
{
    table += "| " + scenario + " | " + NameOf(model) + " | " + Grouped(now.states) + " | " +
             Grouped(now.inPoolCall) + " |";
    for (const auto count : {&Row::refused, &Row::longer, &Row::pastEnd, &Row::mixedUuid}) {
        table += " " + ShareThenAndNow(count, then, now) + " |";
    }
    table += '\n';
}
} // namespace

std::string ShareTable(const Tally& now, const Tally& unextended)
{
    std::string table = "| Run | Crash | States | Making a pool | Refused | Longer | Past the end |"
                        " Mixed UUID |\n|---|---|--:|--:|--:|--:|--:|--:|\n";
    std::map<CrashModel, std::pair<Row, Row>> sums;
    for (const std::string& scenario : now.Scenarios()) {
        for (const CrashModel model : kCrashModels) {
            const Row row = now.At(scenario, model);
            const Row then = unextended.At(scenario, model);
            AppendRow(table, scenario, model, then, row);
            sums[model].first.Add(then);
            sums[model].second.Add(row);
        }
    }
    for (const auto& [model, sum] : sums) {
        AppendRow(table, "**all**", model, sum.first, sum.second);
    }
    const Row all = now.Sum();
    return table + "\n" + Grouped(all.states) + " states, with " + Grouped(all.distinct.size()) +
           " different contents of the disk; " + Grouped(all.broken) + " with a broken promise.\n";
}
