#include "VUKSimRpm_Chunk.h"

#include "CountedMemory.h"
#include "OnePool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

TEST(Chunk, HoldsAtLeast16Bytes)
{
    EXPECT_EQ(VUKSimRpm_Chunk(0).Size(), 16UL);
    EXPECT_EQ(VUKSimRpm_Chunk(15).Size(), 16UL);
    EXPECT_EQ(VUKSimRpm_Chunk(16).Size(), 16UL);
    EXPECT_EQ(VUKSimRpm_Chunk(17).Size(), 17UL);
    EXPECT_EQ(VUKSimRpm_Chunk(18446744073709551615UL).Size(), 18446744073709551615UL);
}

TEST(Chunk, HasNoMemoryUntilItIsAskedForOnce)
{
    const CountedMemory memory;
    VUKSimRpm_Chunk chunk(100);
    EXPECT_EQ(chunk.Begin(), nullptr);
    EXPECT_EQ(memory.Allocations(), 0);
    chunk.AllocateOnce();
    const char* const begin = chunk.Begin();
    chunk.AllocateOnce();
    EXPECT_EQ(chunk.Begin(), begin);
    EXPECT_EQ(memory.Allocations(), 1);
}

TEST(Chunk, IsZeroWhenItIsNew)
{
    VUKSimRpm_Chunk chunk(16384);
    chunk.AllocateOnce();
    chunk.BeginAs(4080, nullptr, 0);
    EXPECT_EQ(std::count(chunk.Begin(), chunk.Begin() + 16384, '\0'), 16384);
}

TEST(Chunk, BeginsInItsPageAsTheBytesDoInTheFile)
{
    VUKSimRpm_Chunk chunk(16384);
    chunk.AllocateOnce();
    chunk.BeginAs(80, nullptr, 0);
    EXPECT_EQ(PlaceInPage(chunk.Begin()), 80U);
    chunk.BeginAs(4095, nullptr, 0);
    EXPECT_EQ(PlaceInPage(chunk.Begin()), 4095U);
    chunk.BeginAs(4096, nullptr, 0);
    EXPECT_EQ(PlaceInPage(chunk.Begin()), 0U);
    chunk.BeginAs(1000080, nullptr, 0);
    EXPECT_EQ(PlaceInPage(chunk.Begin()), 656U);
}

TEST(Chunk, CanBeFilledWhereverItBegins)
{
    VUKSimRpm_Chunk chunk(16384);
    chunk.AllocateOnce();
    for (unsigned long long offset = 0; offset < 4096; ++offset) {
        chunk.BeginAs(offset, nullptr, 0);
        std::fill_n(chunk.Begin(), 16384, 'x'); // a sanitizer sees one byte too many
    }
    EXPECT_EQ(chunk.Begin()[16383], 'x');
}

TEST(Chunk, TakesBytesAlongToWhereItBegins)
{
    VUKSimRpm_Chunk chunk(16384);
    chunk.AllocateOnce();
    chunk.BeginAs(80, nullptr, 0);
    const std::string letters = Letters(16384);
    std::copy(letters.begin(), letters.end(), chunk.Begin());
    chunk.BeginAs(3080, chunk.Begin() + 10000, 6384);
    EXPECT_EQ(std::string(chunk.Begin(), 6384), letters.substr(10000));
}

TEST(Chunk, StaysWhereItIsWhenItIsSmallerThanFourPages)
{
    VUKSimRpm_Chunk chunk(16383);
    chunk.AllocateOnce();
    const char* const begin = chunk.Begin();
    const std::string letters = Letters(16383);
    std::copy(letters.begin(), letters.end(), chunk.Begin());
    chunk.BeginAs(81, chunk.Begin() + 5, 16378);
    EXPECT_EQ(chunk.Begin(), begin);
    EXPECT_EQ(std::string(chunk.Begin(), 16378), letters.substr(5));
}
