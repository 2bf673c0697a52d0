#pragma once

#include "VUKBasRangeException.h"
#include "VUKBasSharedPtr.h"
#include "VUKBasVectorGeneric.h"

#include <utility>

/// A list whose copies share their elements until one of them changes ("copy on write").
///
/// A value, cheap to copy. A single element is kept in the list itself and needs no memory; more of
/// them are in a block. Lengths and indices are signed 64-bit. An operation that runs out of memory
/// leaves the list as it was.
template <class T>
class VUKBAS_EXPORT cow_List
{
public:
    cow_List() = default;

    [[nodiscard]] long long Length() const noexcept { return mItems ? mItems->size() : mSingles; }

    /// \throws VUKBasRangeException with the index and the length when there is no such element.
    [[nodiscard]] const T& operator[](long long index) const
    {
        if (index < 0 || index >= Length()) [[unlikely]] {
            RaiseOutOfRange(index, Length());
        }
        return mItems ? (*mItems)[index] : mSingle;
    }

    /// Adds a copy of `item`, which may be one of this list's own elements.
    void Append(const T& item)
    {
        if (mItems.UseCount() == 1) {
            mItems->push_back(item);
        } else if (Length() == 0 && !mItems) {
            mSingle = item;
            mSingles = 1;
        } else {
            Items own = OwnItems(Length() + 1);
            own->push_back(item);
            Take(own);
        }
    }

    /// Makes room for `count` elements in all.
    void Reserve(long long count)
    {
        if (mItems.UseCount() == 1) {
            mItems->reserve(count);
        } else if (mItems || count > 1) {
            Items own = OwnItems(count);
            Take(own);
        }
    }

private:
    using Items = VUKBasSharedPtr<VUKBasVectorGeneric<T>>;

    // Kept out of the way of the common case.
    [[noreturn, gnu::noinline]] static void RaiseOutOfRange(long long index, long long length)
    {
        VUKBasRangeException(index, length).Throw("VUKSim/VUKSimContainers.m/src/cow_List", 1);
    }

    // The same elements in a block that no other list shares, with room for `count` in all.
    [[nodiscard]] Items OwnItems(long long count) const
    {
        Items own = VUKBasMakeShared<VUKBasVectorGeneric<T>>();
        own->reserve(count > Length() ? count : Length());
        for (long long i = 0; i < Length(); ++i) {
            own->push_back((*this)[i]);
        }
        return own;
    }

    void Take(Items& own) noexcept
    {
        mItems.swap(own);
        if (mSingles != 0) {
            static_cast<void>(std::exchange(mSingle, T())); // with the memory it holds
            mSingles = 0;
        }
    }

    Items mItems;     // shared with copies; null in a list that never held more than one element
    T mSingle{};      // the element of a list without a block
    int mSingles = 0; // 1 while it is one, else 0
};
