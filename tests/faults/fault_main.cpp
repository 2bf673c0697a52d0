// Lets everything that can fail do so, and prints how many faults were tried.
#include "FaultLoop.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>

#include <unistd.h>

namespace {

constexpr int kLeastPoints = 5800; // of a whole run

// Behind all tests: the counts, and that a whole run tried enough.
class FaultReport : public testing::Environment
{
public:
    void TearDown() override
    {
        int total = 0;
        for (const auto& [what, points] : TriedPoints()) {
            std::cout << points << " fault points of " << what << '\n';
            total += points;
        }
        std::cout << total << " fault points tried" << std::endl;
        const testing::UnitTest& all = *testing::UnitTest::GetInstance();
        if (all.test_to_run_count() == all.total_test_count()) {
            EXPECT_GE(total, kLeastPoints);
        }
    }
};
} // namespace

int main(int count, char** values)
{
    // Files in memory, where the system has a place for them: a disk would be waited for.
    if (access("/dev/shm", W_OK) == 0) {
        setenv("TMPDIR", "/dev/shm", 0);
    }
    testing::InitGoogleTest(&count, values);
    testing::AddGlobalTestEnvironment(new FaultReport); // owned by GoogleTest
    return RUN_ALL_TESTS();
}
