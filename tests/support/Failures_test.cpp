#include "Failures.h"

#include <gtest/gtest.h>

namespace {

// A failed check as the library makes it, reported `reports` times.
void Fail(VUKSimUttAssert::Kind kind, const char* text, const char* path, int line, int reports = 1)
{
    for (int i = 0; i < reports; ++i) {
        if (kind == VUKSimUttAssert::Kind::Assertion) {
            VUKSimUttAssert::ReportAssertionFailure(text, path, line);
        } else {
            VUKSimUttAssert::ReportValidationFailure(text, path, line);
        }
    }
    VUKBasAssertException(text).Throw(path, line);
}

constexpr auto kAssertion = VUKSimUttAssert::Kind::Assertion;
constexpr auto kValidation = VUKSimUttAssert::Kind::Validation;
} // namespace

TEST(Failures, TakeACheckThatWasReportedOnceAndThrown)
{
    EXPECT_TRUE(RaisesAssertion([] { Fail(kAssertion, "a", "p", 1); }, "a", "p", 1));
    EXPECT_TRUE(RaisesValidation([] { Fail(kValidation, "a", "p", 1); }, "a", "p", 1));
}

TEST(Failures, NoticeAnotherCheck)
{
    EXPECT_FALSE(RaisesAssertion([] { Fail(kAssertion, "b", "p", 1); }, "a", "p", 1));
    EXPECT_FALSE(RaisesAssertion([] { Fail(kAssertion, "a", "q", 1); }, "a", "p", 1));
    EXPECT_FALSE(RaisesAssertion([] { Fail(kAssertion, "a", "p", 2); }, "a", "p", 1));
    EXPECT_FALSE(RaisesAssertion([] { Fail(kValidation, "a", "p", 1); }, "a", "p", 1));
    EXPECT_FALSE(RaisesValidation([] { Fail(kAssertion, "a", "p", 1); }, "a", "p", 1));
}

TEST(Failures, NoticeACheckThatWasNotReportedOrTwiceOrNotThrown)
{
    EXPECT_FALSE(RaisesAssertion([] { Fail(kAssertion, "a", "p", 1, 0); }, "a", "p", 1));
    EXPECT_FALSE(RaisesAssertion([] { Fail(kAssertion, "a", "p", 1, 2); }, "a", "p", 1));
    EXPECT_FALSE(
        RaisesAssertion([] { VUKSimUttAssert::ReportAssertionFailure("a", "p", 1); }, "a", "p", 1));
    EXPECT_FALSE(RaisesAssertion([] {}, "a", "p", 1));
}

TEST(Failures, NoticeAThrowThatDiffersFromItsReport)
{
    const auto reportsOther = [](const char* text, const char* path, int line) {
        VUKSimUttAssert::ReportAssertionFailure(text, path, line);
        VUKBasAssertException("a").Throw("p", 1);
    };
    EXPECT_FALSE(RaisesAssertion([&] { reportsOther("b", "p", 1); }, "a", "p", 1));
    EXPECT_FALSE(RaisesAssertion([&] { reportsOther("a", "q", 1); }, "a", "p", 1));
    EXPECT_FALSE(RaisesAssertion([&] { reportsOther("a", "p", 2); }, "a", "p", 1));
    EXPECT_TRUE(RaisesAssertion([&] { reportsOther("a", "p", 1); }, "a", "p", 1));
}

TEST(Failures, NoticeAnotherClassPlaceOrAReport)
{
    const auto raise = [] { VUKSimExcNotSimFile().Throw("p", 1); };
    EXPECT_TRUE(Raises<VUKSimExcNotSimFile>(raise, "p", 1));
    EXPECT_FALSE(Raises<VUKSimExcNotSimFile>(raise, "q", 1));
    EXPECT_FALSE(Raises<VUKSimExcNotSimFile>(raise, "p", 2));
    EXPECT_FALSE(Raises<VUKSimExcShortPool>(raise, "p", 1));
    EXPECT_FALSE(Raises<VUKBasException>(raise, "p", 1)); // only its base
    EXPECT_FALSE(Raises<VUKSimExcNotSimFile>([] {}, "p", 1));
    EXPECT_FALSE(Raises<VUKSimExcNotSimFile>(
        [&] {
            VUKSimUttAssert::ReportAssertionFailure("a", "p", 1);
            raise();
        },
        "p", 1));
    EXPECT_FALSE(RaisesBadAlloc(raise));
    EXPECT_FALSE(RaisesBadAlloc([] {}));
}

TEST(Failures, NoticeOtherValues)
{
    const auto bounds = [] { VUKSimExcIOBounds(1, 2, 3).Throw("p", 1); };
    EXPECT_TRUE(RaisesIOBounds(bounds, 1, 2, 3, "p", 1));
    EXPECT_FALSE(RaisesIOBounds(bounds, 0, 2, 3, "p", 1));
    EXPECT_FALSE(RaisesIOBounds(bounds, 1, 0, 3, "p", 1));
    EXPECT_FALSE(RaisesIOBounds(bounds, 1, 2, 0, "p", 1));

    const auto shortBuffer = [] { VUKSimExcShortBuffer(1, 2).Throw("p", 1); };
    EXPECT_FALSE(RaisesShortBuffer(shortBuffer, 0, 2, "p", 1));
    EXPECT_FALSE(RaisesShortBuffer(shortBuffer, 1, 0, "p", 1));
    const auto tooBig = [] { VUKSimExcRequestTooBig(1, 2).Throw("p", 1); };
    EXPECT_FALSE(RaisesRequestTooBig(tooBig, 0, 2, "p", 1));
    EXPECT_FALSE(RaisesRequestTooBig(tooBig, 1, 0, "p", 1));

    const VUKSimUttExceptionString<1024> name("a.sim");
    const auto upgrade = [&] { VUKSimExcNeedUpgrade(6, 5, name).Throw("p", 1); };
    EXPECT_FALSE(RaisesNeedUpgrade(upgrade, 5, 5, "a.sim", "p", 1));
    EXPECT_FALSE(RaisesNeedUpgrade(upgrade, 6, 6, "a.sim", "p", 1));
    EXPECT_FALSE(RaisesNeedUpgrade(upgrade, 6, 5, "b.sim", "p", 1));
    const auto create = [&] { VUKSimExcCantCreateFile(name).Throw("p", 1); };
    EXPECT_FALSE(RaisesCantCreateFile(create, "b.sim", "p", 1));

    const auto range = [] { VUKBasRangeException(1, 2).Throw("p", 1); };
    EXPECT_FALSE(RaisesRange(range, 0, 2));
    EXPECT_FALSE(RaisesRange(range, 1, 0));
    const auto file = [] { VUKSimUttOSFileException({"open"}, "a.sim", 2).Throw("p", 1); };
    EXPECT_TRUE(RaisesFileError(file, "open", 2));
    EXPECT_FALSE(RaisesFileError(file, "close", 2));
    EXPECT_FALSE(RaisesFileError(file, "open", 3));
}
