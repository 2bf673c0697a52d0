#pragma once

#include "mem_Alloc.h"

#include <cstddef>

/// Lets a number of the platform's allocations pass and fails all after them, for as long as it
/// lives. One at a time.
class LimitedMemory
{
public:
    explicit LimitedMemory(int allocations) : mFunctions(mem_CurrentFunctions())
    {
        sFunctions = mFunctions;
        sLeft = allocations;
        mem_CurrentFunctions().allocate = [](std::size_t size) -> void* {
            return sLeft-- > 0 ? sFunctions.allocate(size) : nullptr;
        };
        mem_CurrentFunctions().allocateZeroed = [](std::size_t size) -> void* {
            return sLeft-- > 0 ? sFunctions.allocateZeroed(size) : nullptr;
        };
    }
    LimitedMemory(const LimitedMemory&) = delete;
    LimitedMemory& operator=(const LimitedMemory&) = delete;
    ~LimitedMemory() { mem_CurrentFunctions() = mFunctions; }

    /// Whether an allocation was refused.
    [[nodiscard]] static bool RanOut() noexcept { return sLeft < 0; }

    /// Allocations that still pass.
    [[nodiscard]] static int Left() noexcept { return sLeft > 0 ? sLeft : 0; }

private:
    static inline mem_Functions sFunctions = {}; // those that do the work
    static inline int sLeft = 0;                 // below zero once one was refused

    mem_Functions mFunctions; // the table to put back
};
