#pragma once

#include "VUKSimRpm_Export.h"

#include <algorithm>
#include <bit>
#include <cstring>

/// Moves single items between their stored form, little-endian, and the host's.
///
/// This class and VUKSimRpm_SwapperTraits are the one place where the two orders meet. Neither
/// pointer needs any alignment. Sizes are in bytes: 2, 4 or 8; any other size writes
/// "Illegal swap size.\n" to standard error and aborts the process.
class VUKSIMRPM_EXPORT VUKSimRpm_Swapper
{
public:
    /// Reads one stored item into `item`; returns `size`.
    static int InternalizeScalarUnsafe(const char* stored, void* item, int size)
    {
        return CopyScalar(static_cast<char*>(item), stored, size);
    }

    /// Writes one item to its stored form; returns `size`.
    static int ExternalizeScalarUnsafe(char* stored, const void* item, int size)
    {
        return CopyScalar(stored, static_cast<const char*>(item), size);
    }

private:
    // Both directions are the same move: a plain copy, or a reversal on a big-endian host.
    static int CopyScalar(char* to, const char* from, int size)
    {
        if (size != 4 && size != 8 && size != 2) [[unlikely]] {
            AbortOnIllegalSize();
        }
        const auto bytes = static_cast<unsigned>(size);
        if constexpr (std::endian::native == std::endian::little) {
            std::memcpy(to, from, bytes);
        } else {
            std::reverse_copy(from, from + bytes, to);
        }
        return size;
    }

    [[noreturn]] static void AbortOnIllegalSize();
};
