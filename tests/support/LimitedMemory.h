#pragma once

#include "mem_Alloc.h"

#include <cstddef>
#include <limits>

/// Lets a number of the platform's allocations pass and fails those after them, all or so many, for
/// as long as it lives. One at a time.
class LimitedMemory
{
public:
    explicit LimitedMemory(int allocations, int refusals = std::numeric_limits<int>::max())
        : mFunctions(mem_CurrentFunctions())
    {
        sFunctions = mFunctions;
        sLeft = allocations;
        sRefusals = refusals;
        mem_CurrentFunctions().allocate = [](std::size_t size) -> void* {
            return Passes() ? sFunctions.allocate(size) : nullptr;
        };
        mem_CurrentFunctions().allocateZeroed = [](std::size_t size) -> void* {
            return Passes() ? sFunctions.allocateZeroed(size) : nullptr;
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
    static bool Passes() noexcept { return sLeft-- > 0 || sLeft < -sRefusals; }

    static inline mem_Functions sFunctions = {}; // those that do the work
    static inline int sLeft = 0;                 // below zero once one was refused
    static inline int sRefusals = 0;             // how many are

    mem_Functions mFunctions; // the table to put back
};
