#include "VUKSimRpm_Matrix.h"

#include "mem_Alloc.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>

VUKSimRpm_Matrix::VUKSimRpm_Matrix(int size) : mSize(size)
{
    if (size > kMaxSize) {
        throw std::bad_alloc();
    }
    if (size >= 1) {
        const auto rows = static_cast<std::size_t>(size);
        mData = static_cast<int*>(mem_OperatorNewZeroedThrow(rows * rows * sizeof(int) + rows));
    }
}

VUKSimRpm_Matrix::~VUKSimRpm_Matrix()
{
    mem_Free(mData);
}

void VUKSimRpm_Matrix::Set(int row, int column, int value) noexcept
{
    mData[Index(row, column)] = ~value;
    TouchedRows()[row] = 1;
}

void VUKSimRpm_Matrix::FillFrom(const VUKSimRpm_Matrix& other) noexcept
{
    const int common = std::min(mSize, other.mSize);
    for (int row = 0; row < common; ++row) {
        if (other.TouchedRows()[row] != 0 || TouchedRows()[row] != 0) {
            std::memcpy(mData + Index(row, 0), other.mData + other.Index(row, 0),
                        static_cast<std::size_t>(common) * sizeof(int));
            TouchedRows()[row] = 1;
        }
    }
}

void VUKSimRpm_Matrix::Swap(VUKSimRpm_Matrix& other) noexcept
{
    std::swap(mSize, other.mSize);
    std::swap(mData, other.mData);
}

char* VUKSimRpm_Matrix::TouchedRows() const noexcept
{
    return reinterpret_cast<char*>(mData + Index(mSize, 0));
}
