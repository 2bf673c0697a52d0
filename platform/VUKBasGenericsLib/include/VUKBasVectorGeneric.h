#pragma once

#include "VUKBasRangeException.h"
#include "VUKBasStdAllocator.h"

#include <cstddef>
#include <new>
#include <utility>
#include <vector>

/// A row of elements in one block, growing at its end. Sizes and indices are signed 64-bit, so that
/// they compare with signed and unsigned 32-bit indices exactly and without a cast.
///
/// A value: copies copy the elements. An operation that runs out of memory leaves all as it was.
template <class T>
class VUKBAS_EXPORT VUKBasVectorGeneric
{
public:
    VUKBasVectorGeneric() = default;

    [[nodiscard]] long long size() const noexcept { return static_cast<long long>(mItems.size()); }
    [[nodiscard]] bool empty() const noexcept { return mItems.empty(); }

    /// Elements that fit before the block must move.
    [[nodiscard]] long long capacity() const noexcept
    {
        return static_cast<long long>(mItems.capacity());
    }

    /// Not checked: `index` must be at least 0 and below size().
    [[nodiscard]] T& operator[](long long index) noexcept
    {
        return mItems[static_cast<std::size_t>(index)];
    }
    [[nodiscard]] const T& operator[](long long index) const noexcept
    {
        return mItems[static_cast<std::size_t>(index)];
    }

    /// The last element. Not checked: there must be one.
    [[nodiscard]] T& back() noexcept { return mItems.back(); }
    [[nodiscard]] const T& back() const noexcept { return mItems.back(); }

    [[nodiscard]] T* begin() noexcept { return mItems.data(); }
    [[nodiscard]] T* end() noexcept { return mItems.data() + mItems.size(); }
    [[nodiscard]] const T* begin() const noexcept { return mItems.data(); }
    [[nodiscard]] const T* end() const noexcept { return mItems.data() + mItems.size(); }

    /// Makes room for `count` elements in all; never less room than there is.
    /// \throws std::bad_alloc when there is no memory, or none could be enough.
    void reserve(long long count)
    {
        if (count <= capacity()) {
            return;
        }
        if (static_cast<std::size_t>(count) > mItems.max_size()) [[unlikely]] {
            throw std::bad_array_new_length();
        }
        mItems.reserve(static_cast<std::size_t>(count));
    }

    /// The element given may be one of this vector's own.
    void push_back(const T& item) { mItems.push_back(item); }
    void push_back(T&& item) { mItems.push_back(std::move(item)); }

    /// Not checked: there must be an element.
    void pop_back() noexcept { mItems.pop_back(); }

    /// Drops all elements from `count` on; the room stays.
    /// \throws VUKBasRangeException when there are not that many, or `count` is negative.
    void resize_down(long long count)
    {
        if (count < 0 || count > size()) [[unlikely]] {
            VUKBasRangeException(count, size())
                .Throw("VUKSim/VUKBasGenericsLib.m/src/VUKBasVectorGeneric", 1);
        }
        mItems.erase(mItems.begin() + count, mItems.end());
    }

    /// Drops all elements; the room stays.
    void clear() noexcept { mItems.clear(); }

private:
    std::vector<T, VUKBasStdAllocator<T>> mItems;
};
