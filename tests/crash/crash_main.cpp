// crash_tests [--long] [--seed=N] [GoogleTest's options]
//
// Replays crashes of recorded runs and kills real writers, then prints how many and what became of
// them. --long does far more of both; so does VUKSIM_CRASH_LONG=1 in the environment.
#include "CrashOptions.h"
#include "Tally.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <string>

namespace {

constexpr std::size_t kLeastStates = 50000; // of a whole run

// Behind all tests: the counts, and that a whole run reached enough.
class CrashReport : public testing::Environment
{
public:
    void TearDown() override
    {
        const Tally& tally = Tally::Total();
        if (tally.States() == 0) {
            return;
        }
        tally.Print(std::cout);
        std::cout << tally.States() << " states, " << tally.Broken()
                  << " with a broken promise; seed " << CrashOptions::Current().seed << std::endl;
        const testing::UnitTest& all = *testing::UnitTest::GetInstance();
        if (all.test_to_run_count() == all.total_test_count()) {
            EXPECT_GE(tally.States(), kLeastStates);
        }
    }
};

void ReadOptions(int count, char** values)
{
    CrashOptions& options = CrashOptions::Current();
    options.longRun = std::getenv("VUKSIM_CRASH_LONG") != nullptr;
    for (int i = 1; i < count; ++i) {
        const std::string value = values[i];
        if (value == "--long") {
            options.longRun = true;
        } else if (value.starts_with("--seed=")) {
            options.seed = std::stoull(value.substr(7));
        }
    }
}
} // namespace

int main(int count, char** values)
{
    ReadOptions(count, values); // first: the scenarios depend on them
    testing::InitGoogleTest(&count, values);
    testing::AddGlobalTestEnvironment(new CrashReport); // owned by GoogleTest
    return RUN_ALL_TESTS();
}
