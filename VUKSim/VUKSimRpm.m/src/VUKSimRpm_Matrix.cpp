#include "VUKSimRpm_Matrix.h"

#include "mem_Alloc.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <utility>

namespace {

constexpr int kPieces = 64; // of a row at most: the bits of its word
} // namespace

VUKSimRpm_Matrix::VUKSimRpm_Matrix(int size) : mSize(size)
{
    if (size > kMaxSize) {
        throw std::bad_alloc();
    }
    if (size >= 1) {
        while ((size - 1) >> mPieceBits >= kPieces) {
            ++mPieceBits;
        }
        const auto rows = static_cast<std::size_t>(size);
        mPieces.Allocate(rows * sizeof(std::uint64_t));
        mData = static_cast<int*>(mem_OperatorNewThrowBuiltin(rows * rows * sizeof(int)));
    }
}

VUKSimRpm_Matrix::~VUKSimRpm_Matrix()
{
    mem_Free(mData);
}

void VUKSimRpm_Matrix::Set(int row, int column, int value) noexcept
{
    Use(row, column);
    mData[Index(row, column)] = value;
}

void VUKSimRpm_Matrix::FillFrom(const VUKSimRpm_Matrix& other) noexcept
{
    const int common = std::min(mSize, other.mSize);
    const int step = 1 << std::min(mPieceBits, other.mPieceBits); // within one piece of each
    for (int row = 0; row < common; ++row) {
        if ((Pieces()[row] | other.Pieces()[row]) == 0) {
            continue; // nearly always
        }
        for (int column = 0; column < common; column += step) {
            if (InUse(row, column) || other.InUse(row, column)) {
                FillPiece(row, column, std::min(step, common - column), other);
            }
        }
    }
}

void VUKSimRpm_Matrix::Swap(VUKSimRpm_Matrix& other) noexcept
{
    std::swap(mSize, other.mSize);
    std::swap(mData, other.mData);
    std::swap(mPieceBits, other.mPieceBits);
    mPieces.Swap(other.mPieces);
}

// Sees to it that the piece of an entry is in use.
void VUKSimRpm_Matrix::Use(int row, int column) noexcept
{
    if (!InUse(row, column)) {
        const int piece = column >> mPieceBits;
        const int begin = piece << mPieceBits;
        std::fill_n(mData + Index(row, begin), std::min(1 << mPieceBits, mSize - begin), -1);
        Pieces()[row] |= std::uint64_t{1} << piece;
    }
}

// Copies `length` entries that lie in one piece here and in one there.
void VUKSimRpm_Matrix::FillPiece(int row, int column, int length,
                                 const VUKSimRpm_Matrix& other) noexcept
{
    Use(row, column);
    int* const first = mData + Index(row, column);
    if (other.InUse(row, column)) {
        std::copy_n(other.mData + other.Index(row, column), length, first);
    } else {
        std::fill_n(first, length, -1);
    }
}
