#pragma once

#include "mem_Alloc.h"

#include <cstddef>
#include <new>
#include <type_traits>

/// Lets the standard containers behind the platform's own take their memory from mem_Alloc.h, so
/// that one table sees every allocation. Stateless: all allocators of all types are equal.
template <class T>
class VUKBAS_EXPORT VUKBasStdAllocator
{
public:
    using value_type = T;
    using propagate_on_container_move_assignment = std::true_type;

    VUKBasStdAllocator() = default;

    // Implicit: containers go from one element type to another.
    template <class U>
    VUKBasStdAllocator(const VUKBasStdAllocator<U>&) noexcept // NOLINT(google-explicit-constructor)
    {}

    /// \throws std::bad_array_new_length (a std::bad_alloc) when `count` elements cannot be
    /// counted in bytes.
    [[nodiscard]] T* allocate(std::size_t count)
    {
        static_assert(alignof(T) <= alignof(std::max_align_t));
        if (count > static_cast<std::size_t>(-1) / sizeof(T)) [[unlikely]] {
            throw std::bad_array_new_length();
        }
        return static_cast<T*>(mem_OperatorNewThrow(count * sizeof(T)));
    }

    void deallocate(T* block, std::size_t) noexcept { mem_Free(block); }

    template <class U>
    friend bool operator==(const VUKBasStdAllocator&, const VUKBasStdAllocator<U>&) noexcept
    {
        return true;
    }
};
