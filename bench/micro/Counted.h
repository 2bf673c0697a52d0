#pragma once

#include "CountedMemory.h"
#include "ScriptedSystemCalls.h"

#include <benchmark/benchmark.h>

/// Times `work`, which moves `bytes`, and says how many blocks it allocates and how many system
/// calls it makes each time. It is counted before it is timed, so that counting costs nothing.
template <class Work>
void Measure(benchmark::State& state, long long bytes, Work work)
{
    constexpr int kCounted = 1000; // runs
    work();                        // allocates and maps what stays
    {
        const CountedMemory memory;
        const ScriptedSystemCalls calls;
        for (int i = 0; i < kCounted; ++i) {
            work();
        }
        state.counters["allocations"] = memory.Allocations() / double{kCounted};
        state.counters["calls"] = static_cast<double>(calls.Calls().size()) / kCounted;
    }
    for (auto _ : state) {
        work();
    }
    state.SetBytesProcessed(state.iterations() * bytes);
}
