// Whatever a file holds, opening it costs time and memory in proportion to its size.
#include "HurtingFiles.h"

#include "ResidentBytes.h"
#include "TemporaryFolder.h"
#include "VUKBasException.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <new>
#include <stdexcept>
#include <string>
#include <tuple>

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kSanitized = true;
#elif defined(__has_feature)
constexpr bool kSanitized = __has_feature(address_sanitizer) || __has_feature(memory_sanitizer);
#else
constexpr bool kSanitized = false;
#endif

// A sanitizer slows down what it watches, and keeps memory of its own.
constexpr std::size_t kOpenings = kSanitized ? 1 : 3;
constexpr double kMostSeconds = kSanitized ? 60 : 2;

// What opening a file took; plain bytes, for it comes from another process.
struct Cost
{
    double seconds = 0;    // of processor time; the median of several
    long long peak = 0;    // memory beyond what there was before, in bytes
    unsigned pools = 0;    // of an opened file
    char refused[64] = ""; // the exception's class; empty: the file opened
};

// Opens the file once; says in `cost` what came of it.
double OpenOnce(const VUKString& name, VUKSimRpm_Document::AccessMode mode, Cost& cost)
{
    VUKSimRpm_Document document("TEST");
    const std::clock_t begin = std::clock();
    try {
        cost.pools = document.AddFile(name, mode).PoolCount();
    } catch (const VUKBasException& raised) {
        std::snprintf(cost.refused, sizeof cost.refused, "%s", raised.ClassName());
    } catch (const std::bad_alloc&) {
        std::snprintf(cost.refused, sizeof cost.refused, "std::bad_alloc");
    }
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

Cost MeasureHere(const VUKString& name, VUKSimRpm_Document::AccessMode mode)
{
    Cost cost;
    const long long before = PeakResidentBytes();
    std::array<double, kOpenings> times;
    for (double& time : times) {
        time = OpenOnce(name, mode, cost);
    }
    std::ranges::sort(times);
    cost.seconds = times[kOpenings / 2];
    cost.peak = PeakResidentBytes() - before;
    return cost;
}

// In a process of its own, whose peak of memory begins with what it has.
Cost Measure(const VUKString& name, VUKSimRpm_Document::AccessMode mode)
{
    ::malloc_trim(0); // what was freed before would be used again unseen
    std::array<int, 2> ends;
    if (::pipe(ends.data()) != 0) {
        throw std::runtime_error("no pipe");
    }
    const pid_t child = ::fork();
    if (child == 0) {
        const Cost cost = MeasureHere(name, mode);
        ::_exit(::write(ends[1], &cost, sizeof cost) == sizeof cost ? 0 : 1);
    }
    ::close(ends[1]);
    Cost cost;
    const ssize_t got = ::read(ends[0], &cost, sizeof cost);
    ::close(ends[0]);
    int status = 0;
    if (child == -1 || ::waitpid(child, &status, 0) != child || status != 0 || got != sizeof cost) {
        throw std::runtime_error("opening the file ended the process");
    }
    return cost;
}

constexpr std::size_t kSizes[] = {64 * 1024, 640 * 1024, 10 * 1024 * 1024};

class HurtingFile : public testing::TestWithParam<std::tuple<HurtingKind, std::size_t>>
{
protected:
    HurtingFile()
    {
        const auto& [kind, size] = GetParam();
        const std::string content = kind.build(size);
        if (content.size() != size) {
            throw std::logic_error("a file of another size");
        }
        mName = mFolder.Write("a.sim", content);
    }

    TemporaryFolder mFolder;
    VUKString mName;
};

// One line of the table in docs/reliability.md.
void Print(const HurtingKind& kind, std::size_t size, const Cost& read, const Cost& update)
{
    const std::string outcome =
        read.refused[0] != '\0' ? read.refused : std::to_string(read.pools) + " pools";
    std::printf("| %s | %zu KB | %.1f ms | %.1f ms | %.1f MB | %s |\n", kind.name.c_str(),
                size / 1024, read.seconds * 1e3, update.seconds * 1e3,
                static_cast<double>(std::max(read.peak, update.peak)) / 1e6, outcome.c_str());
}

std::string NameOf(const testing::TestParamInfo<HurtingFile::ParamType>& info)
{
    std::string name =
        std::get<0>(info.param).name + " " + std::to_string(std::get<1>(info.param) / 1024) + "KB";
    std::erase_if(name, [](char letter) { return letter == ',' || letter == '.'; });
    std::ranges::replace(name, ' ', '_');
    return name;
}
} // namespace

// Ten times as long as it may take, for machines that are slow. What a sanitizer keeps for itself
// is not the library's memory.
TEST_P(HurtingFile, OpensOrIsRefusedInTimeAndMemoryInProportionToItsSize)
{
    const auto& [kind, size] = GetParam();
    const Cost read = Measure(mName, VUKSimRpm_Document::Read);
    const Cost update = Measure(mName, VUKSimRpm_Document::Update);
    Print(kind, size, read, update);
    EXPECT_STREQ(read.refused, update.refused);
    for (const Cost& cost : {read, update}) {
        EXPECT_LT(cost.seconds, kMostSeconds);
        if (!kSanitized) {
            EXPECT_LT(cost.peak, static_cast<long long>(size) + 64 * 1024 * 1024);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, HurtingFile,
                         testing::Combine(testing::ValuesIn(HurtingKinds()),
                                          testing::ValuesIn(kSizes)),
                         NameOf);
