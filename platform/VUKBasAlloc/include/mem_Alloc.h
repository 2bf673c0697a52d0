// Where all memory of the platform and of the libraries above it comes from: the allocation
// functions, the table of functions behind them, and the base class that sends a class's own
// operator new the same way.
#pragma once

#include "VUKBas_Export.h"

#include <cstddef>
#include <new>

/// The functions that every allocation ends in. At first they are the C library's.
///
/// Tests replace them to count blocks and to make the n-th allocation fail. Whoever replaces them
/// sees to it that `release` takes the blocks that the earlier functions gave out.
struct VUKBAS_EXPORT mem_Functions
{
    void* (*allocate)(std::size_t);       // null when there is no memory; any alignment up to
                                          // that of std::max_align_t; never asked for 0 bytes
    void* (*allocateZeroed)(std::size_t); // the same, every byte zero
    void (*release)(void*);               // takes blocks of both; never given null
};

/// The table in use, to be read or changed in place. One for the process, plain memory.
[[nodiscard]] VUKBAS_EXPORT mem_Functions& mem_CurrentFunctions() noexcept;

/// A block of `size` bytes; 0 bytes give a block of their own too.
/// \throws std::bad_alloc when there is no memory.
[[nodiscard]] VUKBAS_EXPORT void* mem_OperatorNewThrow(std::size_t size);

/// The same, for small blocks that live long: tree nodes, control blocks.
[[nodiscard]] VUKBAS_EXPORT void* mem_OperatorNewTinyThrow(std::size_t size);

/// The same, for arrays of built-in types and raw bytes. Their content is not set.
[[nodiscard]] VUKBAS_EXPORT void* mem_OperatorNewThrowBuiltin(std::size_t size);

/// The same, with every byte zero. The pages of a large block cost no memory until they are
/// touched.
[[nodiscard]] VUKBAS_EXPORT void* mem_OperatorNewZeroedThrow(std::size_t size);

/// Gives back a block of any of the functions above. Null is allowed and does nothing.
VUKBAS_EXPORT void mem_Free(void* block) noexcept;

/// Base of classes whose objects are allocated through the functions above when made with `new`.
/// No data, no virtual operations. Not for classes that need more alignment than std::max_align_t.
class VUKBAS_EXPORT mem_AllocationOperators
{
public:
    [[nodiscard]] static void* operator new(std::size_t size) { return mem_OperatorNewThrow(size); }
    [[nodiscard]] static void* operator new[](std::size_t size)
    {
        return mem_OperatorNewThrow(size);
    }

    /// Construction in place, which the operators above would hide.
    static void* operator new(std::size_t, void* place) noexcept { return place; }

    static void operator delete(void* block) noexcept { mem_Free(block); }
    static void operator delete[](void* block) noexcept { mem_Free(block); }
    static void operator delete(void*, void*) noexcept {}
};
