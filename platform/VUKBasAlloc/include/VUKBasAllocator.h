#pragma once

#include "VUKBasAllocatorBase.h"
#include "VUKBasMemAllocator.h"

#include <cstddef>
#include <utility>

/// Handle on an allocator; copies share it, the last one deletes it. A default handle is empty.
class VUKBAS_EXPORT VUKBasAllocator
{
public:
    VUKBasAllocator() = default;

    /// Takes over `adopted`, which was made with `new`; null gives an empty handle.
    explicit VUKBasAllocator(VUKBasAllocatorBase* adopted) noexcept;

    VUKBasAllocator(const VUKBasAllocator& other) noexcept;
    VUKBasAllocator(VUKBasAllocator&& other) noexcept;
    VUKBasAllocator& operator=(VUKBasAllocator other) noexcept;
    ~VUKBasAllocator();

    [[nodiscard]] bool Null() const noexcept { return mAllocator == nullptr; }

    /// A block of the allocator.
    /// \throws std::bad_alloc when there is no memory, and on an empty handle, which has none.
    [[nodiscard]] void* Alloc(std::size_t size);

    /// Gives back a block of the same allocator. Null does nothing, nor does an empty handle.
    void Free(void* block) noexcept;

    void Swap(VUKBasAllocator& other) noexcept { std::swap(mAllocator, other.mAllocator); }

private:
    VUKBasAllocatorBase* mAllocator = nullptr; // shared with the other handles on it
};
