#include "SparseMatrix.h"

#include <algorithm>
#include <tuple>

namespace heat {

SparseMatrix::SparseMatrix(std::uint32_t size, std::vector<Entry> entries)
    : mSize(size), mRowStart(size + std::size_t{1}, 0)
{
    std::stable_sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
        return std::tie(a.row, a.column) < std::tie(b.row, b.column);
    });
    const Entry* previous = nullptr;
    for (const Entry& entry : entries) {
        if (previous && previous->row == entry.row && previous->column == entry.column) {
            mValue.back() += entry.value;
        } else {
            mColumn.push_back(entry.column);
            mValue.push_back(entry.value);
            mRowStart[entry.row + std::size_t{1}] = mValue.size();
        }
        previous = &entry;
    }
    // A row without entries ends where the row before it does.
    for (std::size_t row = 1; row < mRowStart.size(); ++row) {
        mRowStart[row] = std::max(mRowStart[row], mRowStart[row - 1]);
    }
}

std::vector<double> SparseMatrix::Diagonal() const
{
    std::vector<double> diagonal(mSize, 0.0);
    for (std::uint32_t row = 0; row < mSize; ++row) {
        for (std::size_t i = mRowStart[row]; i < mRowStart[row + 1]; ++i) {
            if (mColumn[i] == row) {
                diagonal[row] = mValue[i];
            }
        }
    }
    return diagonal;
}

void SparseMatrix::Multiply(const std::vector<double>& vector, std::vector<double>& product) const
{
    for (std::uint32_t row = 0; row < mSize; ++row) {
        double sum = 0.0;
        for (std::size_t i = mRowStart[row]; i < mRowStart[row + 1]; ++i) {
            sum += mValue[i] * vector[mColumn[i]];
        }
        product[row] = sum;
    }
}

std::vector<double> SparseMatrix::Fix(const std::vector<bool>& fixed,
                                      const std::vector<double>& values)
{
    std::vector<double> gain(mSize, 0.0);
    for (std::uint32_t row = 0; row < mSize; ++row) {
        for (std::size_t i = mRowStart[row]; i < mRowStart[row + 1]; ++i) {
            const std::uint32_t column = mColumn[i];
            if (fixed[row]) {
                mValue[i] = column == row ? 1.0 : 0.0;
            } else if (fixed[column]) {
                gain[row] -= mValue[i] * values[column];
                mValue[i] = 0.0;
            }
        }
    }
    return gain;
}

} // namespace heat
