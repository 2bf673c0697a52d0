#include "VUKSimRpm_PoolMap.h"

#include "Counted.h"
#include "VUKSimRpm_UUID.h"

#include <string>
#include <vector>

namespace {

std::vector<std::string> Identifiers(std::size_t count)
{
    std::vector<std::string> identifiers(count, std::string(32, ' '));
    for (std::string& identifier : identifiers) {
        VUKSimRpm_UUID::CreateUUID(identifier.data());
    }
    return identifiers;
}

void BM_UuidLess(benchmark::State& state)
{
    const std::vector<std::string> identifiers = Identifiers(2);
    const VUKSimRpm_UUID one(identifiers[0].data());
    const VUKSimRpm_UUID other(identifiers[1].data());
    Measure(state, 0, [&] { benchmark::DoNotOptimize(one.Less(other)); });
}

void BM_UuidCreate(benchmark::State& state)
{
    char text[32];
    Measure(state, 0, [&] {
        VUKSimRpm_UUID::CreateUUID(text);
        benchmark::DoNotOptimize(text);
    });
}

void BM_PoolMapLookup(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    const std::vector<std::string> identifiers = Identifiers(count);
    VUKSimRpm_PoolMap map;
    for (const std::string& identifier : identifiers) {
        map.NewSlot(identifier.data());
    }
    std::size_t which = 0;
    Measure(state, 0, [&] {
        which = which + 1 == count ? 0 : which + 1;
        benchmark::DoNotOptimize(map.LookupByUUID(identifiers[which].data()));
    });
}

void BM_PoolMapDirectoryIndex(benchmark::State& state)
{
    VUKSimRpm_PoolMap map;
    for (const std::string& identifier : Identifiers(1000)) {
        map.NewSlot(identifier.data());
    }
    map.AddReference(7, 900, 12);
    Measure(state, 0, [&] { benchmark::DoNotOptimize(map.GetDirectoryIndex(7, 900)); });
}
} // namespace

BENCHMARK(BM_UuidLess);
BENCHMARK(BM_UuidCreate);
BENCHMARK(BM_PoolMapLookup)->Arg(100)->Arg(1000)->Arg(10000);
BENCHMARK(BM_PoolMapDirectoryIndex);
