#include "VUKBasWeakPtr.h"

#include "Counted.h"

namespace {

void BM_WeakPtrLock(benchmark::State& state)
{
    const auto owner = VUKBasMakeShared<int>(1);
    const VUKBasWeakPtr<int> weak = owner;
    Measure(state, 0, [&] { benchmark::DoNotOptimize(weak.lock().get()); });
}

void BM_WeakPtrCopy(benchmark::State& state)
{
    const auto owner = VUKBasMakeShared<int>(1);
    const VUKBasWeakPtr<int> weak = owner;
    Measure(state, 0, [&] {
        const VUKBasWeakPtr<int> copy = weak;
        benchmark::DoNotOptimize(&copy);
    });
}
} // namespace

BENCHMARK(BM_WeakPtrLock);
BENCHMARK(BM_WeakPtrCopy);
