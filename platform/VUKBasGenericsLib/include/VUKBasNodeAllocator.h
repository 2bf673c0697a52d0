#pragma once

#include "mem_Alloc.h"

#include <cstddef>
#include <new>

/// Gives the nodes of a tree their memory: small blocks, one at a time. Stateless, in the form that
/// the standard containers ask for.
template <class T>
class VUKBAS_EXPORT VUKBasNodeAllocator
{
public:
    using value_type = T;

    VUKBasNodeAllocator() = default;

    // Implicit: containers go from the element's type to the node's.
    template <class U>
    // NOLINTNEXTLINE(google-explicit-constructor)
    VUKBasNodeAllocator(const VUKBasNodeAllocator<U>&) noexcept
    {}

    [[nodiscard]] T* allocate(std::size_t count)
    {
        static_assert(alignof(T) <= alignof(std::max_align_t));
        if (count > static_cast<std::size_t>(-1) / sizeof(T)) [[unlikely]] {
            throw std::bad_array_new_length();
        }
        return static_cast<T*>(mem_OperatorNewTinyThrow(count * sizeof(T)));
    }

    void deallocate(T* node, std::size_t) noexcept { mem_Free(node); }

    template <class U>
    friend bool operator==(const VUKBasNodeAllocator&, const VUKBasNodeAllocator<U>&) noexcept
    {
        return true;
    }
};
