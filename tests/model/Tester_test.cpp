// The tester itself: a rule that is broken in the model is found, and shrunk to its core.
#include "Drawer.h"
#include "ModelOptions.h"
#include "Rules.h"
#include "Run.h"
#include "Shrink.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <sstream>
#include <stdexcept>

namespace {

// Breaks one rule of the model for as long as it lives.
class Broken
{
public:
    explicit Broken(bool model::Rules::*rule) : mRule(rule)
    {
        model::Rules::Current().*mRule = false;
    }
    Broken(const Broken&) = delete;
    Broken& operator=(const Broken&) = delete;
    ~Broken() { model::Rules::Current().*mRule = true; }

private:
    bool model::Rules::*mRule;
};

// The shortest script that shows the broken rule; empty when no script of a short run does.
Script Find(bool model::Rules::*rule)
{
    constexpr std::uint64_t kScripts = 200;
    const Broken broken(rule);
    const ModelOptions& options = ModelOptions::Current();
    Tally ignored;
    for (std::uint64_t number = 0; number < kScripts; ++number) {
        const Script script = DrawScript(options.seed, number);
        if (RunScript(script, options.folder, ignored)) {
            return Shrink(script, options.folder);
        }
    }
    return {};
}

// A few operations tell that the rule is broken, and nothing else is wrong with them.
void ExpectFound(bool model::Rules::*rule)
{
    constexpr std::size_t kFew = 20;
    const Script script = Find(rule);
    std::cout << Print(script);
    EXPECT_GT(script.size(), 0U);
    EXPECT_LE(script.size(), kFew);
    Tally ignored;
    EXPECT_FALSE(RunScript(script, ModelOptions::Current().folder, ignored).has_value());
}

Script Numbered(std::uint32_t count)
{
    Script script;
    for (std::uint32_t i = 0; i < count; ++i) {
        script.push_back({Kind::AskFile, {i}});
    }
    return script;
}

bool Has(const Script& script, std::uint32_t least)
{
    return std::any_of(script.begin(), script.end(),
                       [&](const Operation& operation) { return operation.arguments[0] >= least; });
}

std::string RefusalOf(const std::string& text)
{
    std::istringstream in(text);
    try {
        Parse(in);
    } catch (const std::runtime_error& refused) {
        return refused.what();
    }
    return "";
}
} // namespace

TEST(Tester, FindsAUuidIndexThatFollowsTheNewestSlot)
{
    ExpectFound(&model::Rules::uuidIndexKeepsTheFirstSlot);
}

TEST(Tester, FindsAnEmptyPoolDroppedTooEarly)
{
    ExpectFound(&model::Rules::newPoolIsKnownBeforeTheDiscard);
}

TEST(Tester, FindsAnImportThatLeavesOldBytesBehind)
{
    ExpectFound(&model::Rules::importCutsTheFile);
}

TEST(Tester, FindsADirectoryThatIsAskedAgain)
{
    ExpectFound(&model::Rules::cachedIndexWins);
}

TEST(Tester, FindsAMemoryPoolThatIsCarriedTooFar)
{
    ExpectFound(&model::Rules::deltaDropsTheMemoryPool);
}

TEST(Tester, FindsALimitThatIsLookedAtTooEarly)
{
    ExpectFound(&model::Rules::readAheadIgnoresTheLimit);
}

TEST(Tester, FindsANegativeReferenceThatKeepsTheOffset)
{
    ExpectFound(&model::Rules::negativeReferenceZeroesTheOffset);
}

TEST(Tester, ShrinksToWhatIsNeeded)
{
    const Script small = Shrunk(Numbered(100), [](const Script& script) {
        return Has(script, 90) && Has(script, 50) && script.size() >= 2;
    });
    EXPECT_EQ(small.size(), 2U);
    EXPECT_TRUE(Has(small, 90));
}

TEST(Tester, MakesArgumentsPlain)
{
    const Script small =
        Shrunk(Numbered(100), [](const Script& script) { return Has(script, 20); });
    EXPECT_EQ(Print(small), "ask-file file=20\n");
}

TEST(Tester, DrawsTheSameScriptAgain)
{
    EXPECT_EQ(DrawScript(7, 3), DrawScript(7, 3));
    EXPECT_NE(DrawScript(7, 3), DrawScript(7, 10));
    EXPECT_NE(DrawScript(7, 3), DrawScript(8, 3));
}

TEST(Tester, ReadsAPrintedScriptBack)
{
    for (std::uint64_t number = 0; number < 50; ++number) {
        const Script script = DrawScript(1, number);
        std::istringstream in("# a remark\n\n" + Print(script));
        EXPECT_TRUE(Parse(in) == script) << number;
    }
}

TEST(Tester, KnowsEveryKindByItsPlaceInTheTable)
{
    ASSERT_EQ(AllKinds().size(), kKinds);
    for (std::size_t i = 0; i < kKinds; ++i) {
        EXPECT_EQ(static_cast<std::size_t>(AllKinds()[i].kind), i) << AllKinds()[i].name;
        EXPECT_LE(AllKinds()[i].arguments.size(), Operation::kMostArguments);
    }
}

TEST(Tester, RefusesWhatIsNoOperation)
{
    EXPECT_EQ(RefusalOf("ask-file file=1\nask-fil file=1"), "no operation: ask-fil file=1");
    EXPECT_EQ(RefusalOf("ask-file"), "no operation: ask-file");
    EXPECT_EQ(RefusalOf("ask-file pool=1"), "no operation: ask-file pool=1");
    EXPECT_EQ(RefusalOf("ask-file file=x"), "no operation: ask-file file=x");
    EXPECT_EQ(RefusalOf("ask-file file=1 file=2"), "no operation: ask-file file=1 file=2");
    EXPECT_EQ(RefusalOf("ask-file file=1\n"), "");
}
