#include "Scenarios.h"

#include <random>
#include <string>
#include <vector>

namespace {

// Calls on one file, drawn with a seed: the same seed makes the same calls on every machine.
class RandomCalls
{
public:
    RandomCalls(WatchedStore& store, std::uint64_t seed) : mStore(store), mRandom(seed) {}

    void Make(unsigned count)
    {
        mStore.Create(kFile, "a");
        for (unsigned i = 0; i < count; ++i) {
            One();
        }
    }

private:
    static constexpr char kFile[] = "a.sim";

    // 0 up to `most`.
    std::size_t Draw(std::size_t most) { return mRandom() % (most + 1); }

    void One()
    {
        switch (Draw(11)) {
        case 0:
            mStore.Allocate(kFile, Draw(300));
            break;
        case 1:
        case 2:
            mStore.NewPool(kFile, "p" + std::to_string(++mPools) + "-", Draw(1) == 0);
            break;
        case 3:
        case 4:
            mStore.Flush(kFile);
            break;
        case 5:
            Stream();
            break;
        case 6:
            Rewrite();
            break;
        case 7:
            mStore.Close(kFile);
            mStore.Update(kFile);
            break;
        default:
            mStore.Append(kFile, 1 + Draw(250));
        }
    }

    void Stream()
    {
        // One after the other: compilers differ in which argument of a call they work out first.
        const std::vector<unsigned> lengths = {Length(40), Length(200), Length(20)};
        const std::size_t chunkSize = 16 + Draw(100);
        mStore.Stream(kFile, chunkSize, lengths);
    }

    void Rewrite()
    {
        const auto pool = static_cast<unsigned>(Draw(mStore.PoolCount(kFile) - 1));
        const unsigned long long length = mStore.DataLength(kFile, pool);
        if (length > 0) {
            const std::size_t offset = Draw(length - 1);
            mStore.WriteAt(kFile, pool, offset, 1 + Draw(length - offset - 1));
        }
    }

    unsigned Length(std::size_t most) { return 1 + static_cast<unsigned>(Draw(most - 1)); }

    WatchedStore& mStore;
    std::mt19937_64 mRandom;
    int mPools = 0; // made so far
};
} // namespace

std::vector<Scenario> RandomScenarios(unsigned count, std::uint64_t seed)
{
    std::vector<Scenario> scenarios;
    for (unsigned i = 0; i < count; ++i) {
        const std::uint64_t own = seed + i;
        scenarios.push_back({"random calls, seed " + std::to_string(own),
                             [own](WatchedStore& store) { RandomCalls(store, own).Make(24); }, 60,
                             std::to_string(count) + " runs of random calls"});
    }
    return scenarios;
}
