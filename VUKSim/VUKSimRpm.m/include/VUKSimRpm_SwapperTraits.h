#pragma once

#include "VUKSimRpm_Export.h"

/// Moves arrays of N-byte items (N = 2, 4 or 8) between their stored form, little-endian, and the
/// host's. Counts are in items; a count of 0 or less converts nothing.
template <int N>
class VUKSIMRPM_EXPORT VUKSimRpm_SwapperTraits
{
    static_assert(N == 2 || N == 4 || N == 8, "no other item width is stored");

public:
    /// Converts `count` stored items at `stored` into `items`; the two must not overlap.
    static void InternalizeArray(const char* stored, void* items, int count);

    /// Converts `count` items at `items` into their stored form; the two must not overlap.
    static void ExternalizeArray(char* stored, const void* items, int count);

    /// Asserts that `p` is aligned for items of N bytes: to 2 for 2, to 4 for both 4 and 8, since
    /// stored 8-byte items are only promised to lie on 4-byte boundaries.
    /// \throws VUKBasAssertException when it is not.
    static void CheckAlignment(const void* p);
};

template <>
VUKSIMRPM_EXPORT void VUKSimRpm_SwapperTraits<2>::CheckAlignment(const void* p);
template <>
VUKSIMRPM_EXPORT void VUKSimRpm_SwapperTraits<4>::CheckAlignment(const void* p);
template <>
VUKSIMRPM_EXPORT void VUKSimRpm_SwapperTraits<8>::CheckAlignment(const void* p);

extern template class VUKSimRpm_SwapperTraits<2>;
extern template class VUKSimRpm_SwapperTraits<4>;
extern template class VUKSimRpm_SwapperTraits<8>;
