#pragma once

#include "RepeatedPages.h"
#include "mem_Alloc.h"

#include <map>
#include <memory>

/// Gives out every block of the platform from 64 MiB on as repeated pages, so that gigabytes are
/// allocated and copied at the cost of megabytes; the last 16 MiB of a block are its own and zero.
/// One at a time; what is allocated under it must be freed under it.
class HugeBlocks
{
public:
    HugeBlocks() : mBefore(mem_CurrentFunctions())
    {
        sActive = this;
        mem_CurrentFunctions() = {&Allocate, &AllocateZeroed, &Release};
    }
    HugeBlocks(const HugeBlocks&) = delete;
    HugeBlocks& operator=(const HugeBlocks&) = delete;
    ~HugeBlocks()
    {
        mem_CurrentFunctions() = mBefore;
        sActive = nullptr;
    }

    /// A block of its own, every byte `fill` but for the last 16 MiB, which are zero.
    static std::unique_ptr<RepeatedPages> Make(std::size_t size, char fill)
    {
        auto pages = std::make_unique<RepeatedPages>(size, fill);
        pages->ZeroLastRepeat();
        return pages;
    }

private:
    static constexpr std::size_t kHuge = 67'108'864; // bytes

    static void* Allocate(std::size_t size)
    {
        return size < kHuge ? sActive->mBefore.allocate(size) : sActive->Keep(size);
    }

    static void* AllocateZeroed(std::size_t size)
    {
        return size < kHuge ? sActive->mBefore.allocateZeroed(size) : sActive->Keep(size);
    }

    static void Release(void* block)
    {
        if (sActive->mBlocks.erase(block) == 0) {
            sActive->mBefore.release(block);
        }
    }

    void* Keep(std::size_t size)
    {
        auto pages = Make(size, '\0');
        void* const block = pages->Bytes();
        mBlocks[block] = std::move(pages);
        return block;
    }

    static inline HugeBlocks* sActive = nullptr;

    mem_Functions mBefore;
    std::map<void*, std::unique_ptr<RepeatedPages>> mBlocks;
};
