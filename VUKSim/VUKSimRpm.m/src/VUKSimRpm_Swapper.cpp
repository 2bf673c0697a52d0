#include "VUKSimRpm_Swapper.h"

#include "VUKSimRpm_Assert.h"
#include "VUKSimRpm_SwapperTraits.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Swapper";

namespace at {
constexpr int kAlignment2 = 43;
constexpr int kAlignment4 = 78;
constexpr int kAlignment8 = 114;
} // namespace at

// Both directions are the same move: a block copy, or a reversal of each item.
template <int N>
void CopyArray(char* to, const char* from, int count)
{
    if (count <= 0) {
        return;
    }
    const std::size_t bytes = static_cast<std::size_t>(count) * N;
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(to, from, bytes);
    } else {
        for (std::size_t item = 0; item < bytes; item += N) {
            std::reverse_copy(from + item, from + item + N, to + item);
        }
    }
}
} // namespace

void VUKSimRpm_Swapper::AbortOnIllegalSize()
{
    constexpr char kText[] = "Illegal swap size.\n";
    std::fwrite(kText, 1, sizeof kText - 1, stderr);
    std::abort();
}

template <int N>
void VUKSimRpm_SwapperTraits<N>::InternalizeArray(const char* stored, void* items, int count)
{
    CopyArray<N>(static_cast<char*>(items), stored, count);
}

template <int N>
void VUKSimRpm_SwapperTraits<N>::ExternalizeArray(char* stored, const void* items, int count)
{
    CopyArray<N>(stored, static_cast<const char*>(items), count);
}

template <>
void VUKSimRpm_SwapperTraits<2>::CheckAlignment(const void* p)
{
    VUKSIMRPM_ASSERT(!(reinterpret_cast<intptr_t>(p) & 1), kSource, at::kAlignment2);
}

template <>
void VUKSimRpm_SwapperTraits<4>::CheckAlignment(const void* p)
{
    VUKSIMRPM_ASSERT(!(reinterpret_cast<intptr_t>(p) & 3), kSource, at::kAlignment4);
}

// To 4, not 8: stored 8-byte items are only promised to lie on 4-byte boundaries.
template <>
void VUKSimRpm_SwapperTraits<8>::CheckAlignment(const void* p)
{
    VUKSIMRPM_ASSERT(!(reinterpret_cast<intptr_t>(p) & 3), kSource, at::kAlignment8);
}

template class VUKSimRpm_SwapperTraits<2>;
template class VUKSimRpm_SwapperTraits<4>;
template class VUKSimRpm_SwapperTraits<8>;
