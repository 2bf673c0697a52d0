#include "VUKSimRpm_Locator.h"

#include "Counted.h"
#include "OnePool.h"
#include "VUKSimRpm_BStreamReadBuffer.h"
#include "VUKSimRpm_BStreamWriteBuffer.h"
#include "VUKSimRpm_DirectLocator.h"
#include "VUKSimRpm_MemoryPool.h"

#include <optional>
#include <vector>

namespace {

constexpr unsigned long long kBytes = 1U << 20U; // in the pool

/// A locator that goes round in the pool, `step` bytes at a time.
class Wanderer
{
public:
    Wanderer(const VUKSimRpm_Locator& start, unsigned long long step)
        : mStart(start), mAt(start), mStep(step)
    {}
    const VUKSimRpm_Locator& Next()
    {
        mAt += mStep;
        mPassed += mStep;
        if (mPassed + mStep > kBytes) {
            mAt = mStart;
            mPassed = 0;
        }
        return mAt;
    }

private:
    VUKSimRpm_Locator mStart;
    VUKSimRpm_Locator mAt;
    unsigned long long mStep;
    unsigned long long mPassed = 0; // bytes from mStart
};

void BM_LocatorCopy(benchmark::State& state)
{
    const OnePool store(Letters(100));
    const VUKSimRpm_Locator start = store.Start();
    Measure(state, 0, [&] {
        const VUKSimRpm_Locator copy = start;
        benchmark::DoNotOptimize(&copy);
    });
}

void BM_LocatorStep(benchmark::State& state)
{
    const OnePool store(Letters(100));
    VUKSimRpm_Locator at = store.Start();
    Measure(state, 0, [&] {
        at += 8;
        benchmark::DoNotOptimize(&at);
    });
}

void BM_LocatorSum(benchmark::State& state)
{
    const OnePool store(Letters(100));
    const VUKSimRpm_Locator start = store.Start();
    Measure(state, 0, [&] {
        const VUKSimRpm_Locator sum = start + 8;
        benchmark::DoNotOptimize(&sum);
    });
}

void BM_LocatorCompare(benchmark::State& state)
{
    const OnePool store(Letters(100));
    const VUKSimRpm_Locator one = store.Start();
    const VUKSimRpm_Locator other = one + 8;
    Measure(state, 0, [&] { benchmark::DoNotOptimize(one < other); });
}

void BM_LocatorRead(benchmark::State& state)
{
    const OnePool store(Letters(kBytes));
    const auto length = static_cast<unsigned long>(state.range(0));
    Wanderer places(store.Start(), 4160);
    std::vector<char> buffer(length);
    Measure(state, state.range(0),
            [&] { benchmark::DoNotOptimize(places.Next().Read(length, buffer.data())); });
}

void BM_LocatorWrite(benchmark::State& state)
{
    const OnePool store(Letters(kBytes));
    const auto length = static_cast<unsigned long>(state.range(0));
    Wanderer places(store.Start(), 4160);
    const std::vector<char> buffer(length);
    Measure(state, state.range(0), [&] { places.Next().Write(length, buffer.data()); });
}

void BM_LocatorReadFromImage(benchmark::State& state)
{
    const OnePool store(Letters(kBytes));
    const auto length = static_cast<unsigned long>(state.range(0));
    VUKSimRpm_MemoryPool image(store.Start(), kBytes, {}, nullptr);
    Wanderer places(VUKSimRpm_Locator(store.Start(), image), 4160);
    std::vector<char> buffer(length);
    Measure(state, state.range(0),
            [&] { benchmark::DoNotOptimize(places.Next().Read(length, buffer.data())); });
}

void BM_DirectLocatorRead(benchmark::State& state)
{
    const OnePool store(Letters(kBytes));
    const VUKSimRpm_DirectLocator place = (store.Start() + 4160).DirectLocator();
    const auto length = static_cast<unsigned long>(state.range(0));
    std::vector<char> buffer(length);
    Measure(state, state.range(0),
            [&] { benchmark::DoNotOptimize(place.Read(length, buffer.data())); });
}

void BM_LocatorExternalize(benchmark::State& state)
{
    const OnePool store(Letters(100));
    const VUKSimRpm_Locator start = store.Start();
    std::vector<char> buffer(std::size_t{12} << 20U);
    std::optional<VUKSimRpm_BStreamWriteBuffer> stream;
    std::size_t room = 0;
    Measure(state, 12, [&] {
        if (room < 12) {
            stream.emplace(buffer.data(), buffer.size(), store.Pool());
            room = buffer.size();
        }
        start.ExternalizeImpl(*stream);
        room -= 12;
    });
}

void BM_LocatorInternalize(benchmark::State& state)
{
    const OnePool store(Letters(100));
    const std::vector<char> buffer(std::size_t{12} << 20U); // offset 0, index 0
    std::optional<VUKSimRpm_BStreamReadBuffer> stream;
    std::size_t left = 0;
    VUKSimRpm_Locator loaded;
    Measure(state, 12, [&] {
        if (left < 12) {
            stream.emplace(buffer.data(), buffer.size(), store.Pool());
            left = buffer.size();
        }
        loaded.InternalizeImpl(*stream);
        left -= 12;
    });
}
} // namespace

BENCHMARK(BM_LocatorCopy);
BENCHMARK(BM_LocatorStep);
BENCHMARK(BM_LocatorSum);
BENCHMARK(BM_LocatorCompare);
BENCHMARK(BM_LocatorRead)->Arg(8)->Arg(64)->Arg(4096);
BENCHMARK(BM_LocatorWrite)->Arg(12)->Arg(64)->Arg(4096);
BENCHMARK(BM_LocatorReadFromImage)->Arg(8)->Arg(64)->Arg(4096);
BENCHMARK(BM_DirectLocatorRead)->Arg(8)->Arg(64)->Arg(4096);
BENCHMARK(BM_LocatorExternalize);
BENCHMARK(BM_LocatorInternalize);
