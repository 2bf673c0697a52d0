#include "VUKSimUttExceptionString.h"

#include "VUKSimUttUtils.h"
#include "VUKString.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <type_traits>

TEST(ExceptionString, IsZeroedByDefault)
{
    const VUKSimUttExceptionString<1024> text;
    EXPECT_TRUE(std::all_of(text.Text(), text.Text() + 1024, [](char c) { return c == '\0'; }));
}

TEST(ExceptionString, IsEmptyFromNull)
{
    EXPECT_STREQ(VUKSimUttExceptionString<8>(nullptr).Text(), "");
}

TEST(ExceptionString, CopiesTheTextAndZeroesTheRest)
{
    std::string source = "run.sim";
    const VUKSimUttExceptionString<16> text(source.c_str());
    source = "xxxxxxx";
    EXPECT_EQ(std::string(text.Text(), 16), std::string("run.sim\0\0\0\0\0\0\0\0\0", 16));
}

TEST(ExceptionString, HoldsOneByteLessThanItsSize)
{
    EXPECT_STREQ(VUKSimUttExceptionString<8>("1234567").Text(), "1234567");
    EXPECT_STREQ(VUKSimUttExceptionString<8>("12345678").Text(), "1234567");
    EXPECT_STREQ(VUKSimUttExceptionString<1>("a").Text(), "");
}

TEST(ExceptionString, CutsInFrontOfACharacterThatDoesNotFitWhole)
{
    // A euro sign is three bytes; of eight, seven hold text.
    EXPECT_STREQ(VUKSimUttExceptionString<8>("1234\xE2\x82\xAC").Text(), "1234\xE2\x82\xAC");
    EXPECT_STREQ(VUKSimUttExceptionString<8>("12345\xE2\x82\xAC").Text(), "12345");
    EXPECT_STREQ(VUKSimUttExceptionString<8>("123456\xE2\x82\xAC").Text(), "123456");
    EXPECT_STREQ(VUKSimUttExceptionString<8>("1234567\xE2\x82\xAC").Text(), "1234567");
    EXPECT_STREQ(VUKSimUttExceptionString<8>("123\xF0\x9F\x98\x80z").Text(), "123\xF0\x9F\x98\x80");
    EXPECT_STREQ(VUKSimUttExceptionString<8>("1234\xF0\x9F\x98\x80").Text(), "1234");
}

TEST(ExceptionString, ReadsNoFurtherThanItKeeps)
{
    const char unterminated[8] = {'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h'};
    EXPECT_STREQ(VUKSimUttExceptionString<8>(unterminated).Text(), "abcdefg");
}

TEST(ExceptionString, IsAPlainBlockOfBytes)
{
    EXPECT_EQ(sizeof(VUKSimUttExceptionString<1024>), 1024U);
    EXPECT_TRUE(std::is_trivially_copyable_v<VUKSimUttExceptionString<1024>>);
}

TEST(Utils, CopiesAStringForAnException)
{
    EXPECT_STREQ(VUKSimUttUtils::Copy(VUKString("run.sim")).Text(), "run.sim");
    EXPECT_STREQ(VUKSimUttUtils::Copy(VUKString()).Text(), "");
}

TEST(Utils, CutsAStringThatAnExceptionCannotHold)
{
    const std::string longest(1023, 'n');
    EXPECT_EQ(VUKSimUttUtils::Copy(VUKString(longest.c_str())).Text(), longest);
    EXPECT_EQ(VUKSimUttUtils::Copy(VUKString((longest + "m").c_str())).Text(), longest);
}
