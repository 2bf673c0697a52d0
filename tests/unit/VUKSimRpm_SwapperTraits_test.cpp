#include "VUKSimRpm_SwapperTraits.h"

#include "Failures.h"
#include "RepeatedPages.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <string>

namespace {
constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Swapper";
}

TEST(SwapperTraits, ReadsArraysWithTheLowestByteOfEachItemFirst)
{
    std::uint16_t halves[3] = {};
    VUKSimRpm_SwapperTraits<2>::InternalizeArray("\x02\x01\x04\x03", halves, 2);
    EXPECT_EQ(halves[0], 0x0102);
    EXPECT_EQ(halves[1], 0x0304);
    EXPECT_EQ(halves[2], 0);

    std::uint32_t words[3] = {};
    VUKSimRpm_SwapperTraits<4>::InternalizeArray("\x04\x03\x02\x01\x08\x07\x06\x05", words, 2);
    EXPECT_EQ(words[0], 0x01020304U);
    EXPECT_EQ(words[1], 0x05060708U);
    EXPECT_EQ(words[2], 0U);

    std::uint64_t longs[3] = {};
    VUKSimRpm_SwapperTraits<8>::InternalizeArray("\x08\x07\x06\x05\x04\x03\x02\x01"
                                                 "\x18\x17\x16\x15\x14\x13\x12\x11",
                                                 longs, 2);
    EXPECT_EQ(longs[0], 0x0102030405060708U);
    EXPECT_EQ(longs[1], 0x1112131415161718U);
    EXPECT_EQ(longs[2], 0U);
}

TEST(SwapperTraits, WritesArraysWithTheLowestByteOfEachItemFirst)
{
    const std::uint16_t halves[] = {0x0102, 0x0304};
    std::string stored(5, '#');
    VUKSimRpm_SwapperTraits<2>::ExternalizeArray(stored.data(), halves, 2);
    EXPECT_EQ(stored, "\x02\x01\x04\x03#");

    const std::uint32_t words[] = {0x01020304, 0x05060708};
    stored.assign(9, '#');
    VUKSimRpm_SwapperTraits<4>::ExternalizeArray(stored.data(), words, 2);
    EXPECT_EQ(stored, "\x04\x03\x02\x01\x08\x07\x06\x05#");

    const double doubles[] = {1.0, -2.5};
    stored.assign(17, '#');
    VUKSimRpm_SwapperTraits<8>::ExternalizeArray(stored.data(), doubles, 2);
    EXPECT_EQ(stored, std::string("\0\0\0\0\0\0\xF0\x3F"
                                  "\0\0\0\0\0\0\x04\xC0#",
                                  17));
}

TEST(SwapperTraits, MovesArraysAtAnyAddress)
{
    char stored[] = "#\x08\x07\x06\x05\x04\x03\x02\x01";
    alignas(8) char items[17] = {};
    VUKSimRpm_SwapperTraits<8>::InternalizeArray(stored + 1, items + 3, 1);
    std::uint64_t item = 0;
    std::memcpy(&item, items + 3, 8);
    EXPECT_EQ(item, 0x0102030405060708U);
    EXPECT_EQ(items[2], 0);
    EXPECT_EQ(items[11], 0);
}

// The last of 2^29 + 1 items lies behind 4 GiB. In 32 bits they would be 8 bytes.
TEST(SwapperTraits, MovesMoreThan4GiB)
{
    const RepeatedPages stored(4294967304, 'a');
    RepeatedPages items(4294967304, '.');
    items.ZeroLastRepeat(); // from 4 GiB on, and its own
    VUKSimRpm_SwapperTraits<8>::InternalizeArray(stored.Bytes(), items.Bytes(), 536870913);
    EXPECT_EQ(std::string(items.Bytes() + 4294967296, 9), std::string("aaaaaaaa\0", 9));
}

TEST(SwapperTraits, ConvertsNothingForACountOfZeroOrLess)
{
    const std::uint64_t from[] = {0x0102030405060708};
    for (const int count : {0, -1, INT_MIN}) {
        std::string stored(8, '#');
        VUKSimRpm_SwapperTraits<2>::ExternalizeArray(stored.data(), from, count);
        VUKSimRpm_SwapperTraits<4>::ExternalizeArray(stored.data(), from, count);
        VUKSimRpm_SwapperTraits<8>::ExternalizeArray(stored.data(), from, count);
        EXPECT_EQ(stored, "########") << count;

        std::uint64_t item = 7;
        VUKSimRpm_SwapperTraits<2>::InternalizeArray("abcdefgh", &item, count);
        VUKSimRpm_SwapperTraits<4>::InternalizeArray("abcdefgh", &item, count);
        VUKSimRpm_SwapperTraits<8>::InternalizeArray("abcdefgh", &item, count);
        EXPECT_EQ(item, 7U) << count;
    }
    VUKSimRpm_SwapperTraits<4>::InternalizeArray(nullptr, nullptr, 0);
    VUKSimRpm_SwapperTraits<4>::ExternalizeArray(nullptr, nullptr, 0);
}

TEST(SwapperTraits, AsksThatTwoByteItemsLieAtEvenAddresses)
{
    alignas(8) const char place[8] = {};
    for (const int even : {0, 2, 4, 6}) {
        EXPECT_NO_THROW(VUKSimRpm_SwapperTraits<2>::CheckAlignment(place + even)) << even;
    }
    for (const int odd : {1, 3, 5, 7}) {
        EXPECT_TRUE(
            RaisesAssertion([&] { VUKSimRpm_SwapperTraits<2>::CheckAlignment(place + odd); },
                            "!(reinterpret_cast<intptr_t>(p) & 1)", kSource, 43));
    }
}

TEST(SwapperTraits, AsksThatFourByteItemsLieAtMultiplesOfFour)
{
    alignas(8) const char place[8] = {};
    EXPECT_NO_THROW(VUKSimRpm_SwapperTraits<4>::CheckAlignment(place));
    EXPECT_NO_THROW(VUKSimRpm_SwapperTraits<4>::CheckAlignment(place + 4));
    for (const int offset : {1, 2, 3, 5, 6, 7}) {
        EXPECT_TRUE(
            RaisesAssertion([&] { VUKSimRpm_SwapperTraits<4>::CheckAlignment(place + offset); },
                            "!(reinterpret_cast<intptr_t>(p) & 3)", kSource, 78));
    }
}

TEST(SwapperTraits, AsksThatEightByteItemsLieAtMultiplesOfFourOnly)
{
    alignas(8) const char place[8] = {};
    EXPECT_NO_THROW(VUKSimRpm_SwapperTraits<8>::CheckAlignment(place));
    EXPECT_NO_THROW(VUKSimRpm_SwapperTraits<8>::CheckAlignment(place + 4));
    for (const int offset : {1, 2, 3, 5, 6, 7}) {
        EXPECT_TRUE(
            RaisesAssertion([&] { VUKSimRpm_SwapperTraits<8>::CheckAlignment(place + offset); },
                            "!(reinterpret_cast<intptr_t>(p) & 3)", kSource, 114));
    }
}

TEST(SwapperTraits, TakesNullForAligned)
{
    EXPECT_NO_THROW(VUKSimRpm_SwapperTraits<2>::CheckAlignment(nullptr));
    EXPECT_NO_THROW(VUKSimRpm_SwapperTraits<4>::CheckAlignment(nullptr));
    EXPECT_NO_THROW(VUKSimRpm_SwapperTraits<8>::CheckAlignment(nullptr));
}
