#include "VUKSimUttOSFile.h"

#include "Counted.h"
#include "TemporaryFolder.h"

#include <vector>

namespace {

constexpr unsigned long long kBytes = 16ULL << 20U;

class FullFile
{
public:
    FullFile()
    {
        mFile.OpenWrite(mFolder.File("a.bin"));
        const std::vector<char> bytes(kBytes);
        mFile.WriteAtomic(0, bytes.data(), kBytes);
    }
    VUKSimUttOSFile& operator*() { return mFile; }

    /// The next place, far from the last.
    unsigned long long Next()
    {
        mPlace = (mPlace + 65537ULL * 64) % (kBytes - 65536);
        return mPlace;
    }

private:
    TemporaryFolder mFolder;
    VUKSimUttOSFile mFile;
    unsigned long long mPlace = 0;
};

void BM_OSFileRead(benchmark::State& state)
{
    FullFile file;
    const auto length = static_cast<unsigned long>(state.range(0));
    std::vector<char> buffer(length);
    Measure(state, state.range(0), [&] {
        benchmark::DoNotOptimize((*file).ReadAtomic(file.Next(), buffer.data(), length));
    });
}

void BM_OSFileWrite(benchmark::State& state)
{
    FullFile file;
    const auto length = static_cast<unsigned long>(state.range(0));
    const std::vector<char> buffer(length);
    Measure(state, state.range(0),
            [&] { (*file).WriteAtomic(file.Next(), buffer.data(), length); });
}
} // namespace

BENCHMARK(BM_OSFileRead)->Arg(8)->Arg(64)->Arg(4096);
BENCHMARK(BM_OSFileWrite)->Arg(12)->Arg(64)->Arg(4096);
