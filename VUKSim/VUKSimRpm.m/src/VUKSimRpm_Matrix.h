#pragma once

#include "VUKSimRpm_Buffer.h"
#include "VUKSimRpm_Export.h"

#include <cstdint>

/// A square table of signed 32-bit entries that all read -1 until they are set.
///
/// It may be far larger than memory: a row is up to 64 pieces of equal length, and the memory of a
/// piece in which nothing was ever set is neither written nor read. It need not be zero either, so
/// that it costs no time to get, wherever it comes from.
class VUKSIMRPM_EXPORT VUKSimRpm_Matrix
{
public:
    /// The largest dimension whose number of entries is a signed 32-bit number.
    static constexpr int kMaxSize = 46336;

    /// `size` by `size` entries, none for 0 or less. \throws std::bad_alloc, also beyond kMaxSize.
    explicit VUKSimRpm_Matrix(int size);

    VUKSimRpm_Matrix(const VUKSimRpm_Matrix&) = delete;
    VUKSimRpm_Matrix& operator=(const VUKSimRpm_Matrix&) = delete;
    ~VUKSimRpm_Matrix();

    [[nodiscard]] int Size() const noexcept { return mSize; }

    /// Entry (`row`, `column`); both must lie in [0, Size()).
    [[nodiscard]] int Get(int row, int column) const noexcept
    {
        return InUse(row, column) ? mData[Index(row, column)] : -1;
    }
    void Set(int row, int column, int value) noexcept;

    /// Copies the top left block that both have in common; entries outside it keep their value.
    /// Pieces that are not in use in either are left so.
    void FillFrom(const VUKSimRpm_Matrix& other) noexcept;

    void Swap(VUKSimRpm_Matrix& other) noexcept;

private:
    [[nodiscard]] long long Index(int row, int column) const noexcept
    {
        return static_cast<long long>(row) * mSize + column;
    }
    [[nodiscard]] std::uint64_t* Pieces() const noexcept
    {
        return reinterpret_cast<std::uint64_t*>(mPieces.Bytes());
    }
    [[nodiscard]] bool InUse(int row, int column) const noexcept
    {
        return (Pieces()[row] >> (column >> mPieceBits) & 1U) != 0;
    }
    void Use(int row, int column) noexcept;
    void FillPiece(int row, int column, int length, const VUKSimRpm_Matrix& other) noexcept;

    int mSize;                // rows and columns
    int* mData = nullptr;     // owned; in row-major order, uninitialised where not in use
    int mPieceBits = 0;       // a piece is 2^mPieceBits entries of a row, the last one less
    VUKSimRpm_Buffer mPieces; // a word for each row, a bit for each of its pieces: set once in use
};
