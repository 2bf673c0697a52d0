#include "VUKSimRpm_Matrix.h"

#include "Failures.h"
#include "LimitedMemory.h"
#include "mem_Alloc.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>

namespace {

// Each entry of a `size` by `size` matrix told apart from all others.
void Number(VUKSimRpm_Matrix& matrix, int base)
{
    for (int row = 0; row < matrix.Size(); ++row) {
        for (int column = 0; column < matrix.Size(); ++column) {
            matrix.Set(row, column, base + 100 * row + column);
        }
    }
}

// A matrix in memory that held something else before.
VUKSimRpm_Matrix InUsedMemory(int size)
{
    static mem_Functions real;
    struct Restored
    {
        ~Restored() { mem_CurrentFunctions() = real; }
    } restored;
    real = mem_CurrentFunctions();
    mem_CurrentFunctions().allocate = [](std::size_t bytes) {
        return std::memset(real.allocate(bytes), 'd', bytes);
    };
    return VUKSimRpm_Matrix(size);
}
} // namespace

TEST(Matrix, ReadsMinusOneUntilAnEntryIsSet)
{
    for (const int size : {1, 2, 64, 192}) {
        const VUKSimRpm_Matrix matrix(size);
        EXPECT_EQ(matrix.Size(), size);
        for (int row = 0; row < size; ++row) {
            for (int column = 0; column < size; ++column) {
                ASSERT_EQ(matrix.Get(row, column), -1) << row << ", " << column;
            }
        }
    }
}

TEST(Matrix, KeepsEachEntryByRowAndColumn)
{
    VUKSimRpm_Matrix matrix(3);
    Number(matrix, 0);
    EXPECT_EQ(matrix.Get(0, 0), 0);
    EXPECT_EQ(matrix.Get(0, 2), 2);
    EXPECT_EQ(matrix.Get(2, 0), 200);
    EXPECT_EQ(matrix.Get(1, 2), 102);
    EXPECT_EQ(matrix.Get(2, 2), 202);
}

TEST(Matrix, KeepsEveryValueOf32Bits)
{
    VUKSimRpm_Matrix matrix(2);
    matrix.Set(0, 0, INT_MAX);
    matrix.Set(0, 1, INT_MIN);
    matrix.Set(1, 0, 0);
    matrix.Set(1, 1, 7);
    matrix.Set(1, 1, -1);
    EXPECT_EQ(matrix.Get(0, 0), 2147483647);
    EXPECT_EQ(matrix.Get(0, 1), -2147483647 - 1);
    EXPECT_EQ(matrix.Get(1, 0), 0);
    EXPECT_EQ(matrix.Get(1, 1), -1);
}

TEST(Matrix, ReadsMinusOneWhateverItsMemoryHeldBefore)
{
    VUKSimRpm_Matrix matrix = InUsedMemory(192); // in pieces of 4
    matrix.Set(5, 6, 77);
    matrix.Set(191, 191, 78);
    for (int row = 0; row < 192; ++row) {
        for (int column = 0; column < 192; ++column) {
            const bool set = (row == 5 && column == 6) || (row == 191 && column == 191);
            ASSERT_EQ(matrix.Get(row, column) == -1, !set) << row << ", " << column;
        }
    }
    EXPECT_EQ(matrix.Get(5, 6), 77);
    EXPECT_EQ(matrix.Get(191, 191), 78);
}

TEST(Matrix, ReadsMinusOneUntilAnEntryIsSetAtEachWidthOfAPiece)
{
    for (const int size : {64, 65, 128, 129, 257}) {
        VUKSimRpm_Matrix matrix = InUsedMemory(size);
        matrix.Set(0, size - 1, 7);
        EXPECT_EQ(matrix.Get(0, 0), -1) << size;
        EXPECT_EQ(matrix.Get(0, size - 1), 7) << size;
    }
}

TEST(Matrix, SetsEntriesWhereARowDoesNotDivideEvenly)
{
    for (const int size : {65, 127, 129, 1000}) {
        VUKSimRpm_Matrix matrix(size);
        Number(matrix, 5);
        EXPECT_EQ(matrix.Get(0, 0), 5);
        EXPECT_EQ(matrix.Get(0, size - 1), 5 + size - 1);
        EXPECT_EQ(matrix.Get(size - 1, 64), 5 + 100 * (size - 1) + 64);
        EXPECT_EQ(matrix.Get(size - 1, size - 1), 5 + 101 * (size - 1));
    }
}

TEST(Matrix, HasNoStorageForADimensionOfZeroOrLess)
{
    for (const int size : {0, -1, INT_MIN}) {
        const LimitedMemory none(0);
        const VUKSimRpm_Matrix matrix(size);
        EXPECT_EQ(matrix.Size(), size);
        EXPECT_FALSE(none.RanOut());
    }
}

TEST(Matrix, FillsItsTopLeftFromASmallerOne)
{
    VUKSimRpm_Matrix small(2);
    Number(small, 5);
    VUKSimRpm_Matrix large(4);
    large.Set(1, 3, 77);
    large.Set(3, 0, 78);

    large.FillFrom(small);
    EXPECT_EQ(large.Get(0, 0), 5);
    EXPECT_EQ(large.Get(0, 1), 6);
    EXPECT_EQ(large.Get(1, 0), 105);
    EXPECT_EQ(large.Get(1, 1), 106);
    EXPECT_EQ(large.Get(0, 2), -1);
    EXPECT_EQ(large.Get(2, 0), -1);
    EXPECT_EQ(large.Get(1, 3), 77);
    EXPECT_EQ(large.Get(3, 0), 78);
}

TEST(Matrix, FillsItselfFromTheTopLeftOfALargerOne)
{
    VUKSimRpm_Matrix large(4);
    Number(large, 5);
    VUKSimRpm_Matrix small(2);

    small.FillFrom(large);
    EXPECT_EQ(small.Size(), 2);
    EXPECT_EQ(small.Get(0, 0), 5);
    EXPECT_EQ(small.Get(0, 1), 6);
    EXPECT_EQ(small.Get(1, 0), 105);
    EXPECT_EQ(small.Get(1, 1), 106);
}

TEST(Matrix, FillsInEntriesThatWereNeverSetToo)
{
    VUKSimRpm_Matrix sparse(2);
    sparse.Set(0, 1, 9);
    VUKSimRpm_Matrix full(2);
    Number(full, 5);

    full.FillFrom(sparse);
    EXPECT_EQ(full.Get(0, 0), -1);
    EXPECT_EQ(full.Get(0, 1), 9);
    EXPECT_EQ(full.Get(1, 0), -1);
    EXPECT_EQ(full.Get(1, 1), -1);
}

TEST(Matrix, FillsAcrossPiecesOfAnyLength)
{
    // Pieces of 1, of 4 and of 64 entries.
    for (const int from : {64, 192, 4032}) {
        for (const int to : {64, 192, 4032}) {
            VUKSimRpm_Matrix source(from);
            source.Set(3, 5, 35);
            source.Set(3, 63, 363);
            VUKSimRpm_Matrix target(to);
            target.Set(3, 4, 34); // is set here alone, which is not seen there
            target.Set(to - 1, to - 1, 9);
            target.FillFrom(source);
            EXPECT_EQ(target.Get(3, 5), 35) << from << " to " << to;
            EXPECT_EQ(target.Get(3, 63), 363) << from << " to " << to;
            EXPECT_EQ(target.Get(3, 4), -1) << from << " to " << to;
            EXPECT_EQ(target.Get(2, 5), -1) << from << " to " << to;
            EXPECT_EQ(target.Get(to - 1, to - 1), to > from ? 9 : -1) << from << " to " << to;
        }
    }
}

TEST(Matrix, HandsOnWhatItWasFilledWith)
{
    VUKSimRpm_Matrix first(2);
    first.Set(1, 0, 9);
    VUKSimRpm_Matrix second(3);
    second.FillFrom(first);
    VUKSimRpm_Matrix third(4);
    third.FillFrom(second);
    EXPECT_EQ(third.Get(1, 0), 9);
    EXPECT_EQ(third.Get(0, 0), -1);
}

TEST(Matrix, StaysAsItIsWhenThereIsNothingInCommon)
{
    VUKSimRpm_Matrix some(2);
    Number(some, 5);
    for (const int size : {0, -3}) {
        VUKSimRpm_Matrix none(size);
        some.FillFrom(none);
        none.FillFrom(some);
        EXPECT_EQ(none.Size(), size);
    }
    EXPECT_EQ(some.Get(0, 0), 5);
    EXPECT_EQ(some.Get(1, 1), 106);
}

TEST(Matrix, SwapsDimensionsAndEntries)
{
    VUKSimRpm_Matrix one(2);
    Number(one, 5);
    VUKSimRpm_Matrix other(0);

    one.Swap(other);
    EXPECT_EQ(one.Size(), 0);
    EXPECT_EQ(other.Size(), 2);
    EXPECT_EQ(other.Get(1, 0), 105);

    VUKSimRpm_Matrix third(3);
    third.Set(2, 2, 8);
    third.Swap(other);
    EXPECT_EQ(third.Size(), 2);
    EXPECT_EQ(third.Get(1, 1), 106);
    EXPECT_EQ(other.Size(), 3);
    EXPECT_EQ(other.Get(2, 2), 8);
}

TEST(Matrix, RunsOutOfMemoryAsItsAllocatorDoes)
{
    const LimitedMemory none(0);
    EXPECT_TRUE(RaisesBadAlloc([] { VUKSimRpm_Matrix(64); }));
    EXPECT_TRUE(none.RanOut());
}

// 46,336 is the highest multiple of 64 whose square is a signed 32-bit number.
TEST(Matrix, RefusesADimensionAbove46336WithoutAskingForMemory)
{
    const LimitedMemory none(0);
    EXPECT_TRUE(RaisesBadAlloc([] { VUKSimRpm_Matrix(46337); }));
    EXPECT_TRUE(RaisesBadAlloc([] { VUKSimRpm_Matrix(46400); }));
    EXPECT_TRUE(RaisesBadAlloc([] { VUKSimRpm_Matrix(65536); })); // its square has 33 bits
    EXPECT_TRUE(RaisesBadAlloc([] { VUKSimRpm_Matrix(INT_MAX); }));
    EXPECT_FALSE(none.RanOut());
}
