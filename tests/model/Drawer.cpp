#include "Drawer.h"

#include "Motifs.h"
#include "Random.h"

#include <algorithm>
#include <iterator>
#include <numeric>

namespace {

struct Emphasis
{
    Kind from; // the kinds up to `to`
    Kind to;
    int factor;
};

struct Sort
{
    std::size_t length; // operations
    std::vector<Emphasis> emphases;
    bool large = false; // begins with a file of hundreds of pools
};

const std::vector<Sort>& Sorts()
{
    static const std::vector<Sort> sorts{
        {500, {}},
        {500, {{Kind::OpenBufferReader, Kind::UnwindWriter, 3}}},
        {500, {{Kind::DamageFile, Kind::RemoveFile, 6}, {Kind::AddFile, Kind::CloseFile, 2}}},
        {500, {{Kind::AppendPool, Kind::AppendPool, 4}, {Kind::NewPool, Kind::NewPool, 3}}},
        {300, {{Kind::ManyPools, Kind::ManyPools, 4}}, true},
        {500, {{Kind::ResetLocator, Kind::WriteMemory, 3}}},
        {60, {}},
    };
    return sorts;
}

std::vector<int> WeightsOf(const Sort& sort)
{
    std::vector<int> weights;
    for (const KindFacts& facts : AllKinds()) {
        int weight = facts.weight;
        for (const Emphasis& emphasis : sort.emphases) {
            if (emphasis.from <= facts.kind && facts.kind <= emphasis.to) {
                weight *= emphasis.factor;
            }
        }
        weights.push_back(weight);
    }
    return weights;
}

std::uint32_t DrawByWeight(const std::vector<int>& weights, Random& random)
{
    const int all = std::accumulate(weights.begin(), weights.end(), 0);
    auto left = static_cast<int>(random.Below(static_cast<std::uint32_t>(all)));
    const auto drawn = std::find_if(weights.begin(), weights.end(), [&](int weight) {
        left -= weight;
        return left < 0;
    });
    return static_cast<std::uint32_t>(drawn - weights.begin());
}

std::uint32_t DrawArgument(const Argument& argument, Random& random)
{
    switch (argument.domain) {
    case Argument::Domain::Length:
        switch (random.Below(16)) {
        case 0:
            return 0;
        case 1:
            return random.Below(300);
        case 2:
            return 12; // a reference
        default:
            return random.Below(65);
        }
    case Argument::Domain::Choice:
        return DrawByWeight(argument.weights, random);
    case Argument::Domain::Limit:
        return random.InEight(4) ? 0 : random.Below(200);
    default:
        return random.Below(argument.count);
    }
}

Operation DrawOperation(const std::vector<int>& weights, Random& random)
{
    const KindFacts& facts = AllKinds()[DrawByWeight(weights, random)];
    Operation operation{.kind = facts.kind};
    for (std::size_t i = 0; i < facts.arguments.size(); ++i) {
        const Argument& argument = facts.arguments[i];
        operation.arguments[i] = DrawArgument(argument, random);
        if (argument.domain == Argument::Domain::Register && random.InEight(5)) {
            operation.arguments[i] = operation.arguments[0] % argument.count;
        }
    }
    return operation;
}

// Something to work on: a file of each document, and a pool of each.
Script Beginning(Random& random)
{
    Script script;
    for (std::uint32_t i = 0; i < kDocuments; ++i) {
        script.push_back({Kind::AddFile, {i, i, 0, i}});
        script.push_back({Kind::FileAllocate, {i, random.Below(65), i}});
        script.push_back({Kind::TakeCurrentPool, {i, i}});
    }
    return script;
}

void Append(Script& script, const Script& more)
{
    script.insert(script.end(), more.begin(), more.end());
}
} // namespace

Script DrawScript(std::uint64_t seed, std::uint64_t number)
{
    Random random(seed * 1000003 + number);
    const Sort& sort = Sorts()[number % Sorts().size()];
    const std::vector<int> weights = WeightsOf(sort);
    Script script = Beginning(random);
    if (sort.large) {
        Append(script, ManyPoolsInAFile(random.Below(kDocuments)));
    }
    while (script.size() < sort.length) {
        if (random.InEight(1)) {
            Append(script, DrawMotif(random));
        } else {
            script.push_back(DrawOperation(weights, random));
        }
    }
    return script;
}
