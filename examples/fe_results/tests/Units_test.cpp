#include "Units.h"

#include <gtest/gtest.h>

namespace fe {
namespace {

TEST(Units, QuantitiesHaveTheirUnits)
{
    EXPECT_EQ(UnitOf("DISP", "D1"), "length");
    EXPECT_EQ(UnitOf("STRESS", "SXX"), "force/length^2");
    EXPECT_EQ(UnitOf("TOSTRAIN", "EXX"), "1");
    EXPECT_EQ(UnitOf("NDTEMP", "T"), "temperature");
    EXPECT_EQ(UnitOf("ERROR", "STR(%)"), "percent");
}

TEST(Units, ImaginaryPartsHaveThoseOfTheRealOnes)
{
    EXPECT_EQ(UnitOf("DISPI", "D1"), "length");
    EXPECT_EQ(UnitOf("STRESSI", "SXX"), "force/length^2");
    EXPECT_EQ(UnitOf("TOSTRAII", "EXX"), "1");
    EXPECT_EQ(UnitOf("ERRORI", "STR(%)"), "percent");
}

TEST(Units, PhasesAreInDegreesBesideTheirAmplitudes)
{
    EXPECT_EQ(UnitOf("PDISP", "MAG1"), "length");
    EXPECT_EQ(UnitOf("PDISP", "PHA1"), "degree");
    EXPECT_EQ(UnitOf("PSTRESS", "MAGXX"), "force/length^2");
    EXPECT_EQ(UnitOf("PSTRESS", "PHAXX"), "degree");
}

TEST(Units, ContactHasGapsAndTractions)
{
    EXPECT_EQ(UnitOf("CONTACT", "COPEN"), "length");
    EXPECT_EQ(UnitOf("CONTACT", "CSLIP1"), "length");
    EXPECT_EQ(UnitOf("CONTACT", "CPRESS"), "force/length^2");
    EXPECT_EQ(UnitOf("CONTACT", "CSHEAR2"), "force/length^2");
}

TEST(Units, WhatIsNotKnownHasNone)
{
    EXPECT_EQ(UnitOf("SDV", "SDV1"), "");
    EXPECT_EQ(UnitOf("", ""), "");
    EXPECT_EQ(UnitOf("I", "X"), "");
}

} // namespace
} // namespace fe
