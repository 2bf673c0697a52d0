#pragma once

#include "mem_Alloc.h"

#include <cstddef>

/// Stands in front of the allocation functions while it lives: counts the blocks and makes chosen
/// allocations fail. One at a time; what is allocated under it must be freed under it.
class mem_Watch
{
public:
    mem_Watch() : mBefore(mem_CurrentFunctions())
    {
        sWatch = this;
        mem_CurrentFunctions() = {Allocate, AllocateZeroed, Release};
    }
    mem_Watch(const mem_Watch&) = delete;
    mem_Watch& operator=(const mem_Watch&) = delete;
    ~mem_Watch()
    {
        mem_CurrentFunctions() = mBefore;
        sWatch = nullptr;
    }

    /// Calls of both allocation functions so far, those that failed among them.
    [[nodiscard]] int Allocations() const { return mAllocations; }

    /// Blocks given out and not yet released.
    [[nodiscard]] int Live() const { return mLive; }

    /// The size of the last request.
    [[nodiscard]] std::size_t LastSize() const { return mLastSize; }

    /// Makes the n-th allocation from now on fail; 1 is the next one. Those behind it succeed.
    void FailAt(int n) { mFailAt = mAllocations + n; }

private:
    static void* Allocate(std::size_t size)
    {
        return sWatch->Serve(size, sWatch->mBefore.allocate);
    }
    static void* AllocateZeroed(std::size_t size)
    {
        return sWatch->Serve(size, sWatch->mBefore.allocateZeroed);
    }
    static void Release(void* block)
    {
        --sWatch->mLive;
        sWatch->mBefore.release(block);
    }

    void* Serve(std::size_t size, void* (*allocate)(std::size_t))
    {
        mLastSize = size;
        if (++mAllocations == mFailAt) {
            return nullptr;
        }
        ++mLive;
        return allocate(size);
    }

    inline static mem_Watch* sWatch = nullptr; // the one that lives

    mem_Functions mBefore;
    int mAllocations = 0;
    int mLive = 0;
    int mFailAt = 0; // the number of the allocation that fails; 0 for none
    std::size_t mLastSize = 0;
};
