#include "VUKBasException.h"

#include "VUKBasAssertException.h"
#include "VUKBasRangeException.h"
#include "mem_Watch.h"

#include <gtest/gtest.h>

#include <exception>
#include <string>
#include <type_traits>

namespace {

// What a host's own exception looks like.
class HostException final : public VUKBasException
{
public:
    explicit HostException(int value) : mValue(value) {}

    [[nodiscard]] int Value() const { return mValue; }

    [[nodiscard]] const char* ClassName() const noexcept override { return "HostException"; }
    [[noreturn]] void Throw(const char* path, int line) override
    {
        Record(path, line);
        throw *this;
    }

private:
    void AppendValues(VUKBasExceptionText& text) const noexcept override
    {
        text.AppendSigned(mValue);
    }
    void AppendReason(VUKBasExceptionText& text) const noexcept override { text.Append("no luck"); }

    int mValue;
};

} // namespace

TEST(Exception, KnowsNoSiteBeforeItIsThrown)
{
    const HostException exception(4);
    EXPECT_STREQ(exception.Path(), "");
    EXPECT_EQ(exception.Line(), 0);
    EXPECT_STREQ(exception.what(), "HostException");
}

TEST(Exception, TellsClassSiteAndReasonInOneSentence)
{
    try {
        VUKBasException().Throw("a/b/C", 12);
    } catch (const VUKBasException& exception) {
        EXPECT_STREQ(exception.what(), "VUKBasException at a/b/C:12: an operation failed");
        EXPECT_STREQ(exception.ClassName(), "VUKBasException");
        EXPECT_STREQ(exception.Path(), "a/b/C");
        EXPECT_EQ(exception.Line(), 12);
    }
}

TEST(Exception, TellsItsValuesBehindTheClassName)
{
    try {
        HostException(-3).Throw("a/b/C", 12);
    } catch (const VUKBasException& exception) {
        EXPECT_STREQ(exception.what(), "HostException(-3) at a/b/C:12: no luck");
    }
}

TEST(Exception, ThrowsItsOwnClassThroughABaseReference)
{
    HostException original(9);
    VUKBasException& base = original;
    try {
        base.Throw("p", 1);
    } catch (const HostException& exception) {
        EXPECT_EQ(exception.Value(), 9);
        return;
    } catch (...) {
    }
    FAIL() << "sliced";
}

TEST(Exception, IsCaughtAsAStandardException)
{
    try {
        HostException(1).Throw("p", 2);
    } catch (const std::exception& exception) {
        EXPECT_STREQ(exception.what(), "HostException(1) at p:2: no luck");
    }
}

TEST(Exception, KeepsThePointerToThePath)
{
    const char path[] = "here";
    try {
        HostException(1).Throw(path, 2);
    } catch (const VUKBasException& exception) {
        EXPECT_EQ(exception.Path(), path);
    }
}

TEST(Exception, TakesANullPathForTheEmptyOne)
{
    try {
        HostException(1).Throw(nullptr, 2);
    } catch (const VUKBasException& exception) {
        EXPECT_STREQ(exception.Path(), "");
        EXPECT_STREQ(exception.what(), "HostException(1) at :2: no luck");
    }
}

TEST(Exception, TellsTheNewSiteWhenThrownAgain)
{
    HostException exception(5);
    EXPECT_THROW(exception.Throw("first", 1), HostException);
    try {
        exception.Throw("second", 2);
    } catch (const VUKBasException& again) {
        EXPECT_STREQ(again.what(), "HostException(5) at second:2: no luck");
    }
}

TEST(Exception, CutsASentenceThatIsTooLong)
{
    const std::string path(500, 'p');
    try {
        VUKBasException().Throw(path.c_str(), 2);
    } catch (const VUKBasException& exception) {
        // 384 characters with the terminator: 19 of "VUKBasException at ", 361 of the path, "...".
        EXPECT_EQ(std::string(exception.what()),
                  "VUKBasException at " + std::string(361, 'p') + "...");
        EXPECT_EQ(exception.Path(), path.c_str());
    }
}

TEST(Exception, CopiesTellTheSame)
{
    try {
        HostException(8).Throw("p", 3);
    } catch (const HostException& exception) {
        const HostException copy(exception); // NOLINT(performance-unnecessary-copy-initialization)
        EXPECT_STREQ(copy.what(), "HostException(8) at p:3: no luck");
        EXPECT_NE(copy.what(), exception.what());
        EXPECT_TRUE(std::is_nothrow_copy_constructible_v<HostException>);
    }
}

TEST(Exception, AllocatesNothing)
{
    mem_Watch watch;
    EXPECT_THROW(HostException(1).Throw("p", 3), HostException);
    EXPECT_EQ(watch.Allocations(), 0);
}

TEST(AssertException, CarriesTheTextOfTheCheck)
{
    try {
        VUKBasAssertException("!\"Bad mode.\"").Throw("dir/Document", 73);
    } catch (const VUKBasAssertException& exception) {
        EXPECT_STREQ(exception.Text(), "!\"Bad mode.\"");
        EXPECT_STREQ(exception.ClassName(), "VUKBasAssertException");
        EXPECT_STREQ(exception.what(), "VUKBasAssertException(!\"Bad mode.\") at dir/Document:73: "
                                       "this check does not hold");
    }
}

TEST(AssertException, CopiesTheText)
{
    char text[] = "slot >= 0";
    const VUKBasAssertException exception(text);
    text[0] = 'X';
    EXPECT_STREQ(exception.Text(), "slot >= 0");
}

TEST(AssertException, TakesNullForTheEmptyText)
{
    EXPECT_STREQ(VUKBasAssertException(nullptr).Text(), "");
}

TEST(AssertException, CutsALongTextBetweenCharacters)
{
    EXPECT_EQ(VUKBasAssertException(std::string(255, 'a').c_str()).Text(), std::string(255, 'a'));
    EXPECT_EQ(VUKBasAssertException(std::string(256, 'a').c_str()).Text(), std::string(255, 'a'));
    std::string euroAtTheEnd(257, 'a');
    euroAtTheEnd.replace(254, 3, "\xE2\x82\xAC");
    EXPECT_EQ(VUKBasAssertException(euroAtTheEnd.c_str()).Text(), std::string(254, 'a'));
}

TEST(AssertException, KeepsNothingOfALongTextInWhichNoCharacterBegins)
{
    EXPECT_STREQ(VUKBasAssertException(std::string(256, '\x80').c_str()).Text(), "");
}

TEST(AssertException, ThrowsItsOwnClassThroughABaseReference)
{
    VUKBasAssertException original("x");
    VUKBasException& base = original;
    EXPECT_THROW(base.Throw("p", 1), VUKBasAssertException);
}

TEST(RangeException, CarriesIndexAndLength)
{
    try {
        VUKBasRangeException(-1, 9'000'000'000).Throw("dir/List", 1);
    } catch (const VUKBasRangeException& exception) {
        EXPECT_EQ(exception.Index(), -1);
        EXPECT_EQ(exception.Length(), 9'000'000'000);
        EXPECT_STREQ(exception.ClassName(), "VUKBasRangeException");
        EXPECT_STREQ(exception.what(),
                     "VUKBasRangeException(-1, 9000000000) at dir/List:1: the first number is "
                     "negative or more than the second allows");
    }
}

TEST(RangeException, ThrowsItsOwnClassThroughABaseReference)
{
    VUKBasRangeException original(1, 2);
    VUKBasException& base = original;
    EXPECT_THROW(base.Throw("p", 1), VUKBasRangeException);
}
