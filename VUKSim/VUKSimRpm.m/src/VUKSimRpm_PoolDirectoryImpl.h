#pragma once

#include "VUKBasWeakPtr.h"
#include "VUKSimRpm_Export.h"
#include "VUKSimRpm_PoolMap.h"
#include "VUKString.h"
#include "cow_List.h"

/// The pools that one pool may refer to, the pool itself first.
///
/// In memory it lists slots of the document's pool map, on disk the 32-byte UUIDs of the same pools
/// in the same order. A reference stored in the pool is an index into this list, so that its bytes
/// stay true in another document. Made empty, filled once by Init or Load, unchanged from then on.
/// The pool owns its directory; bound streams keep it alive beyond the pool. Its pool map must be
/// alive for every operation but construction.
class VUKSIMRPM_EXPORT VUKSimRpm_PoolDirectoryImpl
{
public:
    explicit VUKSimRpm_PoolDirectoryImpl(const VUKBasWeakPtr<VUKSimRpm_PoolMap>& map);
    VUKSimRpm_PoolDirectoryImpl(const VUKSimRpm_PoolDirectoryImpl&) = delete;
    VUKSimRpm_PoolDirectoryImpl& operator=(const VUKSimRpm_PoolDirectoryImpl&) = delete;
    ~VUKSimRpm_PoolDirectoryImpl();

    /// The document's pool map; expired once the document has closed.
    [[nodiscard]] const VUKBasWeakPtr<VUKSimRpm_PoolMap>& Map() const noexcept { return mMap; }

    /// The number of entries.
    [[nodiscard]] long long Length() const noexcept { return mMapSlotList.Length(); }

    /// The slot of the pool itself. \throws VUKBasRangeException while the directory is empty.
    [[nodiscard]] int OwnSlot() const { return mMapSlotList[0]; }

    /// The pool's UUID as text. \throws VUKBasRangeException while the directory is empty.
    [[nodiscard]] VUKString GetGUID() const;

    /// Fills the directory of a new pool: a new slot for the pool and, unless `ownEntryOnly`, every
    /// slot that was there before, in order. `guid` is a text of at least 32 characters, or null
    /// for a fresh UUID.
    /// \throws VUKSimExcInvalidGUID when a zero lies among the 32, VUKSimExcPoolAlreadyInDoc when
    /// that pool is open: nothing is changed then.
    void Init(bool ownEntryOnly, const char* guid);

    /// Fills the directory from `count` stored records of 32 bytes. UUIDs the map has not met get
    /// slots without a pool. A count of 0 or less leaves the directory empty.
    /// \throws VUKSimExcPoolAlreadyInDoc when the first record names an open pool; std::bad_alloc.
    /// What was added to map and list before stays; the caller discards the directory.
    void Load(const char* data, int count);

    /// Writes 32 bytes for each entry to `out`. \throws VUKBasAssertException while the directory
    /// is empty.
    void Dump(char* out) const;

    /// The lowest index of slot `dstSlotInMap`, remembered in the map after the first search.
    /// \throws VUKSimExcCantExternalizeLoc when the directory does not name it.
    [[nodiscard]] int ExternalizeReference(int dstSlotInMap) const
    {
        if (MapHas(dstSlotInMap)) [[likely]] { // and nearly always remembers it
            const int index = mMap.BorrowLiving().RememberedIndex(OwnSlot(), dstSlotInMap);
            if (index >= 0 && index < Length()) [[likely]] {
                return index;
            }
        }
        return SearchReference(dstSlotInMap);
    }

    /// The slot at index `slotInDirectory`, a number read from a file.
    /// \throws VUKBasAssertException when the directory has no such entry.
    [[nodiscard]] int InternalizeReference(int slotInDirectory) const
    {
        if (slotInDirectory >= 0 && slotInDirectory < Length()) [[likely]] {
            const int slotInMap = mMapSlotList[slotInDirectory];
            if (MapHas(slotInMap)) [[likely]] {
                return slotInMap;
            }
        }
        RefuseReference(slotInDirectory);
    }

private:
    [[nodiscard]] bool MapHas(int slot) const noexcept
    {
        return slot >= 0 && slot < mMap.BorrowLiving().Length();
    }
    [[nodiscard]] int SearchReference(int dstSlotInMap) const;
    [[noreturn, gnu::cold]] void RefuseReference(int slotInDirectory) const;

    VUKBasWeakPtr<VUKSimRpm_PoolMap> mMap;
    cow_List<int> mMapSlotList; // entry 0 is the pool's own slot
};
