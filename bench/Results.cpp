#include "Results.h"

#include <algorithm>

namespace {
double MedianOf(std::vector<double> values)
{
    if (values.empty()) {
        return 0;
    }
    std::ranges::sort(values);
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}
} // namespace

double Measured::Median() const
{
    return MedianOf(rounds);
}

double Measured::Least() const
{
    return std::ranges::min(rounds);
}

double Measured::Most() const
{
    return std::ranges::max(rounds);
}

double Measured::MedianSync() const
{
    return MedianOf(syncs);
}

std::optional<double> Results::Of(const std::string& caseId, const std::string& contender) const
{
    for (const Measured& each : measured) {
        if (each.caseId == caseId && each.contender == contender) {
            return each.Median();
        }
    }
    return std::nullopt;
}

std::optional<Results::Best> Results::BestOf(const std::string& caseId, Kind kind) const
{
    std::optional<Best> best;
    for (const Measured& each : measured) {
        if (each.caseId == caseId && each.kind == kind && (!best || each.Median() < best->median)) {
            best = Best{each.contender, each.Median()};
        }
    }
    return best;
}

const Memory* Results::MemoryOf(const std::string& caseId, const std::string& contender) const
{
    const auto found = std::ranges::find_if(memory, [&](const Memory& each) {
        return each.caseId == caseId && each.contender == contender;
    });
    return found == memory.end() ? nullptr : &*found;
}
