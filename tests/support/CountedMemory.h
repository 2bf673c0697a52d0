#pragma once

#include "mem_Alloc.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <map>

/// Counts the platform's blocks for as long as it lives, and fills fresh ones that nobody asked to
/// be zero with 0xA5, so that bytes which were never set are seen. One at a time.
class CountedMemory
{
public:
    CountedMemory() : mBefore(mem_CurrentFunctions())
    {
        sActive = this;
        mem_CurrentFunctions() = {&Allocate, &AllocateZeroed, &Release};
    }
    CountedMemory(const CountedMemory&) = delete;
    CountedMemory& operator=(const CountedMemory&) = delete;
    ~CountedMemory()
    {
        mem_CurrentFunctions() = mBefore;
        sActive = nullptr;
    }

    /// Allocations so far.
    [[nodiscard]] int Allocations() const noexcept { return mAllocations; }

    /// Blocks given out and not yet released; those from before do not count.
    [[nodiscard]] std::size_t Blocks() const noexcept { return mBlocks.size(); }

    /// The most bytes that were given out at one time.
    [[nodiscard]] std::size_t Peak() const noexcept { return mPeak; }

private:
    static void* Allocate(std::size_t size)
    {
        void* block = sActive->Count(sActive->mBefore.allocate(size), size);
        if (block != nullptr) {
            std::memset(block, 0xA5, size);
        }
        return block;
    }

    static void* AllocateZeroed(std::size_t size)
    {
        return sActive->Count(sActive->mBefore.allocateZeroed(size), size);
    }

    static void Release(void* block)
    {
        const auto found = sActive->mBlocks.find(block);
        if (found != sActive->mBlocks.end()) {
            sActive->mHeld -= found->second;
            sActive->mBlocks.erase(found);
        }
        sActive->mBefore.release(block);
    }

    void* Count(void* block, std::size_t size)
    {
        if (block != nullptr) {
            ++mAllocations;
            mBlocks[block] = size;
            mHeld += size;
            mPeak = std::max(mPeak, mHeld);
        }
        return block;
    }

    static inline CountedMemory* sActive = nullptr;

    mem_Functions mBefore;
    std::map<void*, std::size_t> mBlocks; // sizes in bytes
    int mAllocations = 0;
    std::size_t mHeld = 0; // bytes
    std::size_t mPeak = 0; // bytes
};
