#pragma once

#include "VUKBasAllocatorBase.h"

/// The default allocator: the heap, by way of mem_Alloc.h.
class VUKBAS_EXPORT VUKBasMemAllocator final : public VUKBasAllocatorBase
{
public:
    [[nodiscard]] void* Alloc(std::size_t size) override;
    void Free(void* block) noexcept override;
};
