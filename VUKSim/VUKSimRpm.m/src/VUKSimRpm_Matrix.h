#pragma once

#include "VUKSimRpm_Export.h"

#include <utility>

/// A square table of signed 32-bit entries that all read -1 until they are set.
///
/// It may be far larger than memory: entries that were never set cost none. They are kept
/// complemented, so that the untouched zero pages of a fresh block read -1, and copying skips rows
/// in which nothing was ever set.
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
    [[nodiscard]] int Get(int row, int column) const noexcept { return ~mData[Index(row, column)]; }
    void Set(int row, int column, int value) noexcept;

    /// Copies the top left block that both have in common; entries outside it keep their value.
    /// Rows that are untouched in both are left so.
    void FillFrom(const VUKSimRpm_Matrix& other) noexcept;

    void Swap(VUKSimRpm_Matrix& other) noexcept;

private:
    [[nodiscard]] long long Index(int row, int column) const noexcept
    {
        return static_cast<long long>(row) * mSize + column;
    }
    [[nodiscard]] char* TouchedRows() const noexcept;

    int mSize;            // rows and columns
    int* mData = nullptr; // owned; complements in row-major order, then a mark for each touched row
};
