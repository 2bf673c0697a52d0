// Replays crashes of recorded runs and kills real writers, then prints how many and what became of
// them. See kUsage.
#include "CrashOptions.h"
#include "SalvageJudge.h"
#include "ShareTable.h"
#include "Tally.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace {

constexpr char kUsage[] =
    "usage: crash_tests [OPTION...] [--gtest_...]\n"
    "  --long           40 times as many power losses, 400 random runs, 2000 kills\n"
    "  --kills=N        kills N real writers\n"
    "  --seed=N         draws random runs, power losses and kills with another seed\n"
    "  --every=N        judges each Nth image of cut writes and power losses only\n"
    "  --table          prints the table of docs/reliability.md; needs a whole run\n"
    "  --document=FILE  FILE must hold that table; it is that of a short run with the own seed\n";

constexpr std::size_t kLeastStates = 50000; // that differ, of a whole run

bool Whole()
{
    const testing::UnitTest& all = *testing::UnitTest::GetInstance();
    return all.test_to_run_count() == all.total_test_count();
}

std::string Read(const std::string& name)
{
    std::ifstream in(name, std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(in), {});
    if (!in) {
        throw std::runtime_error("cannot read " + name);
    }
    return text;
}

// Behind all tests: the counts, that a whole run reached enough, and that the document says so.
class CrashReport : public testing::Environment
{
public:
    void TearDown() override
    {
        const Tally& tally = Tally::Total();
        const Tally::Row all = tally.Sum();
        const CrashOptions& options = CrashOptions::Current();
        if (all.states == 0) {
            return;
        }
        tally.Print(std::cout);
        std::cout << all.states << " states, " << all.distinct.size() << " different ones, "
                  << all.broken << " with a broken promise; " << SalvageJudge::Files()
                  << " files salvaged; seed " << options.seed << std::endl;
        if (!Whole() || options.every > 1) {
            return;
        }
        EXPECT_GE(all.distinct.size(), kLeastStates);
        const std::string table = ShareTable(tally, Tally::Unextended());
        if (options.table) {
            std::cout << table;
        }
        if (!options.document.empty()) {
            EXPECT_NE(Read(options.document).find(table), std::string::npos)
                << options.document << " must hold this table:\n\n"
                << table;
        }
    }
};

// The number behind the equals sign. Anything else is a std::logic_error.
std::uint64_t Number(const std::string& argument)
{
    const std::string text = argument.substr(argument.find('=') + 1);
    std::size_t length = 0;
    const std::uint64_t number = std::stoull(text, &length);
    if (length != text.size()) {
        throw std::invalid_argument(argument);
    }
    return number;
}

void ReadOption(const std::string& argument, CrashOptions& options)
{
    if (argument == "--long") {
        options.longRun = true;
    } else if (argument.starts_with("--kills=")) {
        options.kills = static_cast<unsigned>(Number(argument));
    } else if (argument.starts_with("--seed=")) {
        options.seed = Number(argument);
    } else if (argument.starts_with("--every=")) {
        options.every = std::max(1U, static_cast<unsigned>(Number(argument)));
    } else if (argument == "--table") {
        options.table = true;
    } else if (argument.starts_with("--document=")) {
        options.document = argument.substr(argument.find('=') + 1);
    } else if (!argument.starts_with("--gtest_")) {
        throw std::invalid_argument(argument);
    }
}
} // namespace

int main(int count, char** values)
{
    // First of all: the scenarios depend on them.
    for (int i = 1; i < count; ++i) {
        try {
            ReadOption(values[i], CrashOptions::Current());
        } catch (const std::logic_error&) {
            std::cerr << "crash_tests: cannot make sense of " << values[i] << '\n' << kUsage;
            return 2;
        }
    }
    testing::InitGoogleTest(&count, values);
    testing::AddGlobalTestEnvironment(new CrashReport); // owned by GoogleTest
    return RUN_ALL_TESTS();
}
