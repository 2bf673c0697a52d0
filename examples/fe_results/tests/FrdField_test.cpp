#include "FrdField.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace fe {
namespace {

std::string Spelled(double value)
{
    std::string text;
    AppendReal(text, value);
    return text;
}

std::string Spelled(std::int64_t value, std::size_t width)
{
    std::string text;
    AppendInteger(text, value, width);
    return text;
}

TEST(FrdField, RealsHaveSixDigitsInTwelveColumns)
{
    EXPECT_EQ(Spelled(0.0), " 0.00000E+00");
    EXPECT_EQ(Spelled(-0.0), "-0.00000E+00");
    EXPECT_EQ(Spelled(1.0), " 1.00000E+00");
    EXPECT_EQ(Spelled(-375.109), "-3.75109E+02");
    EXPECT_EQ(Spelled(3.33067e-16), " 3.33067E-16");
    EXPECT_EQ(Spelled(1e100), "1.00000E+100");
    EXPECT_EQ(Spelled(-std::numeric_limits<double>::quiet_NaN()), "        -NAN");
    EXPECT_EQ(Spelled(std::numeric_limits<double>::infinity()), "         INF");
}

TEST(FrdField, ASolversRealComesBackWithItsDigits)
{
    for (const std::string text :
         {" 0.00000E+00", "-0.00000E+00", " 9.99999E+99", "-1.23456E-99", " 1.17549E-38",
          " 3.40282E+38", "        -NAN", "         NAN", "        -INF", "1.00000E+100"}) {
        const auto value = ParseReal(text);
        ASSERT_TRUE(value.has_value()) << text;
        EXPECT_EQ(Spelled(*value), text);
    }
}

TEST(FrdField, RealsOfOtherCompilersAreUnderstood)
{
    EXPECT_EQ(ParseReal(" 0.1250E+01 "), 1.25);
    EXPECT_EQ(ParseReal("  1.25000D+01"), 12.5);
    EXPECT_EQ(ParseReal("-1.25000d-01"), -0.125);
    EXPECT_EQ(ParseReal(" 1.00000-100"), 1e-100);
    EXPECT_EQ(ParseReal("-1.00000+100"), -1e100);
    EXPECT_EQ(ParseReal("+1.5"), 1.5);
    EXPECT_EQ(ParseReal("          3."), 3.0);
    EXPECT_TRUE(std::isnan(ParseReal("         NaN").value()));
}

TEST(FrdField, WhatIsNoRealIsRefused)
{
    for (const char* text : {"", "            ", "abc", "1.0 2.0", "1.0E", "************", "--1.0",
                             "1.0E+999", "1.0E+00x", "0x10", "1.0--5", "1.0DD5", "E+05", "D"}) {
        EXPECT_FALSE(ParseReal(text).has_value()) << "\"" << text << "\"";
    }
}

TEST(FrdField, IntegersStandToTheRight)
{
    EXPECT_EQ(Spelled(17, 10), "        17");
    EXPECT_EQ(Spelled(-1, 5), "   -1");
    EXPECT_EQ(Spelled(9999999999, 10), "9999999999");
}

TEST(FrdField, IntegersAreReadWholeOrNotAtAll)
{
    EXPECT_EQ(ParseInteger("        17"), 17);
    EXPECT_EQ(ParseInteger("17        "), 17);
    EXPECT_EQ(ParseInteger("   -1"), -1);
    EXPECT_EQ(ParseInteger("9999999999"), 9999999999);
    for (const char* text : {"", "     ", "1 2", "1.5", "WATER", "99999999999999999999", "-"}) {
        EXPECT_FALSE(ParseInteger(text).has_value()) << "\"" << text << "\"";
    }
}

TEST(FrdField, AColumnBehindTheLinesEndIsEmpty)
{
    EXPECT_EQ(Column("abcdef", 2, 3), "cde");
    EXPECT_EQ(Column("abcdef", 4, 10), "ef");
    EXPECT_EQ(Column("abcdef", 6, 1), "");
    EXPECT_EQ(Column("abcdef", 60, 1), "");
}

} // namespace
} // namespace fe
