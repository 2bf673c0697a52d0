#pragma once

#include "VUKBasNodeAllocator.h"
#include "VUKBasPair.h"
#include "VUKBasStandardComparitor.h"
#include "VUKBasTreeGeneric.h"
#include "VUKBasVectorGeneric.h"
#include "VUKBasWeakPtr.h"
#include "VUKSimRpm_Export.h"
#include "VUKSimRpm_Matrix.h"
#include "VUKSimRpm_UUID.h"

class VUKSimRpm_PoolImpl;

/// Gives every pool that a document knows a slot, an integer of its own.
///
/// Locators carry slots; the map turns one back into the pool's UUID and, while the pool is open,
/// into the pool. Slots count up from 0 and are never reused or renumbered while the map lives. The
/// document owns the map; the map refers to pools only weakly. Beside the slots it remembers, for a
/// pair of slots, where the second stands in the directory of the first. That cache has
/// 4 * dimension^2 bytes of address space but only touched rows cost memory.
class VUKSIMRPM_EXPORT VUKSimRpm_PoolMap
{
public:
    struct Item
    {
        VUKSimRpm_UUID uuid;                    // set when the slot is made, never changed
        VUKBasWeakPtr<VUKSimRpm_PoolImpl> pool; // null while no open pool occupies the slot
    };

    VUKSimRpm_PoolMap();
    VUKSimRpm_PoolMap(const VUKSimRpm_PoolMap&) = delete;
    VUKSimRpm_PoolMap& operator=(const VUKSimRpm_PoolMap&) = delete;
    ~VUKSimRpm_PoolMap();

    /// The number of slots; valid ones are 0 to Length() - 1.
    [[nodiscard]] int Length() const noexcept { return mLength; }

    /// The pool in `slot`, null when it is not open.
    /// \throws VUKBasAssertException for a slot that does not exist, as do all that take one.
    [[nodiscard]] VUKBasWeakPtr<VUKSimRpm_PoolImpl> Pool(int slot) const;

    /// The same, borrowed for one access. A negative slot has none.
    [[nodiscard]] VUKSimRpm_PoolImpl* OpenPool(int slot) const
    {
        if (static_cast<unsigned>(slot) >= static_cast<unsigned>(mLength)) [[unlikely]] {
            return OpenPoolOfNoSlot(slot);
        }
        return mItemList[slot].pool.Borrow();
    }

    /// The 32 characters of the slot's UUID, not terminated; valid until a slot is added.
    [[nodiscard]] const char* UUID(int slot) const;

    /// The slot that the 32 characters at `uuid` were first given, or -1.
    [[nodiscard]] int LookupByUUID(const char* uuid) const;

    /// Whether the pool of that UUID is open now, judged by the slot that LookupByUUID finds.
    [[nodiscard]] bool IsDuplicate(const char* uuid) const;

    /// Where `dstSlot` stands in the directory of `srcSlot`, as far as it was remembered, else -1.
    [[nodiscard]] int GetDirectoryIndex(int srcSlot, int dstSlot) const;

    /// The same for slots that are known to exist; nothing is checked.
    [[nodiscard]] int RememberedIndex(int srcSlot, int dstSlot) const noexcept
    {
        return mDirectoryIndexCache.Get(srcSlot, dstSlot);
    }

    /// Makes a slot for the 32 characters at `uuid` and returns it. A UUID that has a slot already
    /// keeps it in the index: the new slot can be reached only by its number.
    /// \throws VUKSimExcPoolAlreadyInDoc when the pool of that UUID is open; std::bad_alloc. No
    /// slot is added then.
    int NewSlot(const char* uuid);

    /// The slot that LookupByUUID finds, or one that NewSlot makes.
    /// \throws std::bad_alloc: no slot is added then.
    int SlotOf(const char* uuid);

    /// Puts `pool` into `slot`, in place of what was there.
    void SetPool(int slot, const VUKBasWeakPtr<VUKSimRpm_PoolImpl>& pool);

    /// Takes the pool out of `slot`.
    void Remove(int slot);

    /// Remembers that `dstSlot` stands at `index` in the directory of `srcSlot`.
    void AddReference(int srcSlot, int dstSlot, int index);

    /// Makes room for `required` slots. The allocation grows to the sum of what it was and what is
    /// required, rounded up to a multiple of 64, so that growth is rare.
    /// \throws std::bad_alloc, also beyond VUKSimRpm_Matrix::kMaxSize; the map is unchanged then,
    /// but for a larger reservation.
    void GrowAllocation(int required);

private:
    [[nodiscard]] const Item& Checked(int slot, int negative, int beyondEnd) const;
    [[gnu::cold]] VUKSimRpm_PoolImpl* OpenPoolOfNoSlot(int slot) const;
    [[noreturn, gnu::cold]] void Refuse(int slot, int negative, int beyondEnd) const;

    using UUIDIndex = VUKBasTreeGeneric<VUKBasNodeAllocator, VUKBasPair<VUKSimRpm_UUID const, int>,
                                        &VUKBasStandardComparitor<VUKSimRpm_UUID>::Compare>;

    VUKSimRpm_Matrix mDirectoryIndexCache; // dimension: the allocation, 0 or a multiple of 64
    VUKBasVectorGeneric<Item> mItemList;   // by slot
    int mLength = 0;                       // of that list, kept: it would have to divide
    UUIDIndex mUUIDIndex;                  // each UUID's first slot
};
