#include "VUKSimUttAssert.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct Report
{
    VUKSimUttAssert::Kind kind;
    std::string text;
    std::string path;
    int line;
};

std::vector<Report> gReports;

void Note(VUKSimUttAssert::Kind kind, const char* text, const char* path, int line)
{
    gReports.push_back({kind, text, path, line});
}

void Raise(VUKSimUttAssert::Kind, const char*, const char*, int)
{
    throw std::runtime_error("from the handler");
}

// Leaves the default handler behind, whatever a test installed.
class Assert : public testing::Test
{
public:
    Assert() { gReports.clear(); }
    ~Assert() override { VUKSimUttAssert::SetHandler(nullptr); }
};

} // namespace

TEST_F(Assert, TellsTheHandlerOfAFailedAssertion)
{
    VUKSimUttAssert::SetHandler(Note);
    VUKSimUttAssert::ReportAssertionFailure("slot >= 0", "dir/PoolMap", 109);
    ASSERT_EQ(gReports.size(), 1U);
    EXPECT_EQ(gReports[0].kind, VUKSimUttAssert::Kind::Assertion);
    EXPECT_EQ(gReports[0].text, "slot >= 0");
    EXPECT_EQ(gReports[0].path, "dir/PoolMap");
    EXPECT_EQ(gReports[0].line, 109);
}

TEST_F(Assert, TellsTheHandlerOfAFailedValidation)
{
    VUKSimUttAssert::SetHandler(Note);
    VUKSimUttAssert::ReportValidationFailure("index < mPools.size()", "dir/FileImpl", 277);
    ASSERT_EQ(gReports.size(), 1U);
    EXPECT_EQ(gReports[0].kind, VUKSimUttAssert::Kind::Validation);
    EXPECT_EQ(gReports[0].text, "index < mPools.size()");
    EXPECT_EQ(gReports[0].path, "dir/FileImpl");
    EXPECT_EQ(gReports[0].line, 277);
}

TEST_F(Assert, GivesBackTheHandlerBefore)
{
    EXPECT_EQ(VUKSimUttAssert::SetHandler(Note), nullptr);
    EXPECT_EQ(VUKSimUttAssert::SetHandler(Raise), &Note);
    EXPECT_EQ(VUKSimUttAssert::SetHandler(nullptr), &Raise);
    EXPECT_EQ(VUKSimUttAssert::SetHandler(nullptr), nullptr);
}

TEST_F(Assert, WritesOneLineToStandardErrorByDefault)
{
    testing::internal::CaptureStderr();
    VUKSimUttAssert::ReportAssertionFailure("slot >= 0", "dir/PoolMap", 109);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Assertion failed: slot >= 0 at dir/PoolMap:109\n");

    testing::internal::CaptureStderr();
    VUKSimUttAssert::ReportValidationFailure("100 % > n", "dir/FileImpl", 277);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Validation failed: 100 % > n at dir/FileImpl:277\n");
}

TEST_F(Assert, GoesBackToTheDefaultWithANullHandler)
{
    VUKSimUttAssert::SetHandler(Note);
    VUKSimUttAssert::SetHandler(nullptr);
    testing::internal::CaptureStderr();
    VUKSimUttAssert::ReportAssertionFailure("x", "y", 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Assertion failed: x at y:1\n");
    EXPECT_TRUE(gReports.empty());
}

TEST_F(Assert, LetsThroughWhatTheHandlerThrows)
{
    VUKSimUttAssert::SetHandler(Raise);
    EXPECT_THROW(VUKSimUttAssert::ReportAssertionFailure("x", "y", 1), std::runtime_error);
    EXPECT_THROW(VUKSimUttAssert::ReportValidationFailure("x", "y", 1), std::runtime_error);
}
