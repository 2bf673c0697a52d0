#pragma once

#include "mem_Alloc.h"

#include <cstddef>

/// A source of memory that is chosen at run time, shared by the VUKBasAllocator handles on it.
///
/// Made with `new` and given to a first handle; it deletes itself with the last. The count is plain
/// memory, used by one thread at a time.
class VUKBAS_EXPORT VUKBasAllocatorBase : public mem_AllocationOperators
{
public:
    VUKBasAllocatorBase() = default;
    VUKBasAllocatorBase(const VUKBasAllocatorBase&) = delete;
    VUKBasAllocatorBase& operator=(const VUKBasAllocatorBase&) = delete;
    virtual ~VUKBasAllocatorBase();

    /// A block of `size` bytes, aligned for any built-in type.
    /// \throws std::bad_alloc when there is no memory.
    [[nodiscard]] virtual void* Alloc(std::size_t size) = 0;

    /// Takes back a block of this allocator's own Alloc; null does nothing.
    virtual void Free(void* block) noexcept = 0;

private:
    friend class VUKBasAllocator;

    int mHandles = 0; // handles that hold this allocator
};
