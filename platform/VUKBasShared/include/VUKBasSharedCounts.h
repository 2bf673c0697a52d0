#pragma once

#include "VUKBas_Export.h"
#include "mem_Alloc.h"

/// The counts behind a shared object: one block for all its shared and weak pointers.
///
/// Plain integers, whether or not the host links threads. The object dies with the last strong
/// count; the block with the last weak one. All strong owners together hold one weak count, so that
/// the block outlives the object's destructor even when the last weak pointer goes inside it.
class VUKBAS_EXPORT VUKBasSharedCounts
{
public:
    /// Destroys the object that the block counts for, and only the object. The block knows by this
    /// function how its object was made; no pointer needs the object's full type.
    using DestroyObject = void (*)(VUKBasSharedCounts*) noexcept;

    /// Counts for one shared pointer.
    explicit VUKBasSharedCounts(DestroyObject destroy) noexcept : mDestroy(destroy) {}

    VUKBasSharedCounts(const VUKBasSharedCounts&) = delete;
    VUKBasSharedCounts& operator=(const VUKBasSharedCounts&) = delete;

    /// Shared pointers on the object; 0 once it is gone.
    [[nodiscard]] int Strong() const noexcept { return mStrong; }

    /// Weak pointers on the object.
    [[nodiscard]] int Weak() const noexcept { return mStrong != 0 ? mWeak - 1 : mWeak; }

    void AddStrong() noexcept { ++mStrong; }
    void AddWeak() noexcept { ++mWeak; }

    /// May destroy the object and free this block.
    void DropStrong() noexcept
    {
        if (--mStrong == 0) [[unlikely]] {
            EndObject();
        }
    }

    /// May free this block.
    void DropWeak() noexcept
    {
        if (--mWeak == 0) [[unlikely]] {
            mem_Free(this); // every kind of block is one of mem_Alloc.h, with nothing to destroy
        }
    }

private:
    // Kept out of the way of the common case, which is one decrement.
    [[gnu::noinline]] void EndObject() noexcept
    {
        mDestroy(this);
        DropWeak();
    }

    DestroyObject mDestroy;
    int mStrong = 1;
    int mWeak = 1; // weak pointers, and one more while there is a strong one
};
