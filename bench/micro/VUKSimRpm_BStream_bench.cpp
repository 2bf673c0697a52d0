#include "VUKSimRpm_BStreamAppendToPool.h"
#include "VUKSimRpm_BStreamReadBuffer.h"
#include "VUKSimRpm_BStreamReadLocator.h"
#include "VUKSimRpm_BStreamWriteBuffer.h"
#include "VUKSimRpm_BStreamWriteLocator.h"

#include "Counted.h"
#include "OnePool.h"

#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace {

constexpr unsigned long kChunk = 262144;           // bytes
constexpr unsigned long long kPool = 64ULL << 20U; // bytes
const char kRecord[12] = {};

/// Hands out a stream that `make` puts into place anew when `bytes` of it are used up.
template <class Stream, class Make>
class Renewed
{
public:
    Renewed(unsigned long long bytes, Make make) : mBytes(bytes), mMake(make) {}

    Stream& For(unsigned long long length)
    {
        if (!mStream || mUsed + length > mBytes) {
            mMake(mStream);
            mUsed = 0;
        }
        mUsed += length;
        return *mStream;
    }

private:
    unsigned long long mBytes;
    Make mMake;
    std::optional<Stream> mStream;
    unsigned long long mUsed = 0; // bytes
};

template <class Stream, class Make>
Renewed<Stream, Make> Renewing(unsigned long long bytes, Make make)
{
    return {bytes, make};
}

void BM_AppendStreamWrite(benchmark::State& state)
{
    std::optional<OnePool> store;
    auto streams = Renewing<VUKSimRpm_BStreamAppendToPool>(kPool, [&](auto& stream) {
        stream.reset(); // the old one flushes into the old store
        store.emplace();
        stream.emplace(store->Pool(), kChunk);
    });
    Measure(state, 12, [&] { streams.For(12).Write(kRecord, 12); });
}

void BM_WriteLocatorStreamWrite(benchmark::State& state)
{
    const OnePool store(std::string(kPool, ' '));
    auto streams = Renewing<VUKSimRpm_BStreamWriteLocator>(
        kPool, [&](auto& stream) { stream.emplace(store.Start(), 0ULL, kChunk); });
    Measure(state, 12, [&] { streams.For(12).Write(kRecord, 12); });
}

void BM_WriteLocatorStreamPrepWrite(benchmark::State& state)
{
    const OnePool store(std::string(kPool, ' '));
    auto streams = Renewing<VUKSimRpm_BStreamWriteLocator>(
        kPool, [&](auto& stream) { stream.emplace(store.Start(), 0ULL, kChunk); });
    Measure(state, 12, [&] { std::memcpy(streams.For(12).PrepWrite(12), kRecord, 12); });
}

void BM_ReadLocatorStreamPrepRead(benchmark::State& state)
{
    const OnePool store(std::string(kPool, ' '));
    auto streams = Renewing<VUKSimRpm_BStreamReadLocator>(
        kPool, [&](auto& stream) { stream.emplace(store.Start(), 0ULL, kChunk); });
    Measure(state, 12, [&] { benchmark::DoNotOptimize(streams.For(12).PrepRead(12)); });
}

void BM_ReadLocatorStreamPrepReadThroughBase(benchmark::State& state)
{
    const OnePool store(std::string(kPool, ' '));
    auto streams = Renewing<VUKSimRpm_BStreamReadLocator>(
        kPool, [&](auto& stream) { stream.emplace(store.Start(), 0ULL, kChunk); });
    Measure(state, 12, [&] {
        VUKSimRpm_BStreamRead* base = &streams.For(12);
        benchmark::DoNotOptimize(base); // the compiler must not know the type behind it
        benchmark::DoNotOptimize(base->PrepRead(12));
    });
}

void BM_ReadLocatorStreamRead(benchmark::State& state)
{
    const OnePool store(std::string(kPool, ' '));
    auto streams = Renewing<VUKSimRpm_BStreamReadLocator>(
        kPool, [&](auto& stream) { stream.emplace(store.Start(), 0ULL, kChunk); });
    char record[12];
    Measure(state, 12, [&] {
        streams.For(12).Read(record, 12);
        benchmark::DoNotOptimize(record);
    });
}

void BM_WriteText(benchmark::State& state)
{
    const VUKString text = std::string(static_cast<std::size_t>(state.range(0)), 'a').c_str();
    std::vector<char> buffer(std::size_t{1} << 20U);
    auto streams = Renewing<VUKSimRpm_BStreamWriteBuffer>(
        buffer.size(), [&](auto& stream) { stream.emplace(buffer.data(), buffer.size()); });
    const auto length = static_cast<unsigned long long>(state.range(0)) + 8;
    Measure(state, state.range(0), [&] {
        VUKSimRpm_BStreamWrite& stream = streams.For(length);
        stream.Write(text);
    });
}

void BM_ReadText(benchmark::State& state)
{
    const auto length = static_cast<unsigned int>(state.range(0)); // a multiple of 4
    std::string record(reinterpret_cast<const char*>(&length), 4);
    record += std::string(length, 'a');
    std::optional<VUKSimRpm_BStreamReadBuffer> stream;
    VUKString text;
    Measure(state, state.range(0), [&] {
        stream.emplace(record.data(), record.size());
        static_cast<VUKSimRpm_BStreamRead&>(*stream).Read(text);
    });
}
} // namespace

BENCHMARK(BM_AppendStreamWrite);
BENCHMARK(BM_WriteLocatorStreamWrite);
BENCHMARK(BM_WriteLocatorStreamPrepWrite);
BENCHMARK(BM_ReadLocatorStreamPrepRead);
BENCHMARK(BM_ReadLocatorStreamPrepReadThroughBase);
BENCHMARK(BM_ReadLocatorStreamRead);
BENCHMARK(BM_WriteText)->Arg(8)->Arg(40)->Arg(400);
BENCHMARK(BM_ReadText)->Arg(8)->Arg(40)->Arg(400);
