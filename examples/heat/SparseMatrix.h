#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace heat {

/// A square matrix that keeps its non-zero entries row by row, columns ascending.
class SparseMatrix
{
public:
    struct Entry
    {
        std::uint32_t row = 0;
        std::uint32_t column = 0;
        double value = 0.0;
    };

    SparseMatrix() = default;

    /// Entries at the same place are added up, in the order given: the same list always gives the
    /// same bits.
    SparseMatrix(std::uint32_t size, std::vector<Entry> entries);

    [[nodiscard]] std::uint32_t Size() const noexcept { return mSize; }
    [[nodiscard]] std::vector<double> Diagonal() const;

    /// `product` = matrix times `vector`; both hold Size() values.
    void Multiply(const std::vector<double>& vector, std::vector<double>& product) const;

    /// Replaces the rows and columns of the fixed unknowns by those of the unit matrix and returns
    /// what the right side of every other row gains when they take their `values`.
    [[nodiscard]] std::vector<double> Fix(const std::vector<bool>& fixed,
                                          const std::vector<double>& values);

private:
    std::uint32_t mSize = 0;
    std::vector<std::size_t> mRowStart; // Size() + 1 positions in the two lists below
    std::vector<std::uint32_t> mColumn;
    std::vector<double> mValue;
};

} // namespace heat
