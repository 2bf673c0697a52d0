#include "VUKSimRpm_PoolMap.h"

#include "VUKBasSharedPtr.h"
#include "VUKSimExcPoolAlreadyInDoc.h"
#include "VUKSimRpm_Assert.h"
#include "VUKSimRpm_PoolImpl.h"

#include <new>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolMap";

// Hosts and support know a failure by the source and line it reports. A number is given once: it
// stays when the code around it moves, and is not given again when its check is gone.
namespace at {
constexpr int kNewSlotDuplicate = 21;
constexpr int kSetPoolNegative = 50;
constexpr int kSetPoolBeyondEnd = 51;
constexpr int kPoolNegative = 58;
constexpr int kPoolBeyondEnd = 59;
constexpr int kUuidNegative = 66;
constexpr int kUuidBeyondEnd = 67;
constexpr int kAddReferenceSrcNegative = 74;
constexpr int kAddReferenceSrcBeyondEnd = 75;
constexpr int kAddReferenceDstNegative = 76;
constexpr int kAddReferenceDstBeyondEnd = 77;
constexpr int kGetIndexSrcNegative = 84;
constexpr int kGetIndexSrcBeyondEnd = 85;
constexpr int kGetIndexDstNegative = 86;
constexpr int kGetIndexDstBeyondEnd = 87;
constexpr int kRemoveNegative = 109;
constexpr int kRemoveBeyondEnd = 110;
} // namespace at
} // namespace

VUKSimRpm_PoolMap::VUKSimRpm_PoolMap() : mDirectoryIndexCache(0) {}

VUKSimRpm_PoolMap::~VUKSimRpm_PoolMap() = default;

VUKBasWeakPtr<VUKSimRpm_PoolImpl> VUKSimRpm_PoolMap::Pool(int slot) const
{
    return Checked(slot, at::kPoolNegative, at::kPoolBeyondEnd).pool;
}

VUKSimRpm_PoolImpl* VUKSimRpm_PoolMap::OpenPoolOfNoSlot(int slot) const
{
    if (slot >= 0) {
        Refuse(slot, at::kPoolNegative, at::kPoolBeyondEnd);
    }
    return nullptr;
}

const char* VUKSimRpm_PoolMap::UUID(int slot) const
{
    return Checked(slot, at::kUuidNegative, at::kUuidBeyondEnd).uuid.Text();
}

int VUKSimRpm_PoolMap::LookupByUUID(const char* uuid) const
{
    const auto* found = mUUIDIndex.Find(VUKSimRpm_UUID(uuid));
    return found == mUUIDIndex.End() ? -1 : found->second;
}

bool VUKSimRpm_PoolMap::IsDuplicate(const char* uuid) const
{
    return OpenPool(LookupByUUID(uuid)) != nullptr;
}

int VUKSimRpm_PoolMap::GetDirectoryIndex(int srcSlot, int dstSlot) const
{
    VUKSIMRPM_ASSERT(srcSlot >= 0, kSource, at::kGetIndexSrcNegative);
    VUKSIMRPM_ASSERT(srcSlot < mItemList.size(), kSource, at::kGetIndexSrcBeyondEnd);
    VUKSIMRPM_ASSERT(dstSlot >= 0, kSource, at::kGetIndexDstNegative);
    VUKSIMRPM_ASSERT(dstSlot < mItemList.size(), kSource, at::kGetIndexDstBeyondEnd);
    return mDirectoryIndexCache.Get(srcSlot, dstSlot);
}

int VUKSimRpm_PoolMap::NewSlot(const char* uuid)
{
    if (IsDuplicate(uuid)) {
        VUKSimExcPoolAlreadyInDoc().Throw(kSource, at::kNewSlotDuplicate);
    }
    // Copied first: the text may stand in the item list, which is about to move.
    const VUKSimRpm_UUID copy(uuid);
    const int slot = Length();
    GrowAllocation(slot + 1);
    mItemList.push_back(Item{copy, {}});
    try {
        // Deliberately not examined: the UUID of a pool that is gone keeps its first slot.
        mUUIDIndex.InsertUnique({copy, slot});
    } catch (...) {
        mItemList.pop_back();
        throw;
    }
    ++mLength;
    return slot;
}

int VUKSimRpm_PoolMap::SlotOf(const char* uuid)
{
    if (Length() == mDirectoryIndexCache.Size()) {
        const int slot = LookupByUUID(uuid);
        return slot >= 0 ? slot : NewSlot(uuid);
    }
    // The room is there, so that only the index can fail: one search of it will do.
    const VUKSimRpm_UUID copy(uuid);
    const int slot = Length();
    const int found = mUUIDIndex.FindOrInsert({copy, slot}).second;
    if (found == slot) {
        mItemList.push_back(Item{copy, {}});
        ++mLength;
    }
    return found;
}

void VUKSimRpm_PoolMap::SetPool(int slot, const VUKBasWeakPtr<VUKSimRpm_PoolImpl>& pool)
{
    VUKSIMRPM_ASSERT(slot >= 0, kSource, at::kSetPoolNegative);
    VUKSIMRPM_ASSERT(slot < mItemList.size(), kSource, at::kSetPoolBeyondEnd);
    mItemList[slot].pool = pool;
}

void VUKSimRpm_PoolMap::Remove(int slot)
{
    VUKSIMRPM_ASSERT(slot >= 0, kSource, at::kRemoveNegative);
    VUKSIMRPM_ASSERT(slot < mItemList.size(), kSource, at::kRemoveBeyondEnd);

    // The slot, its UUID and its row in the cache stay: locators elsewhere still carry the number.
    mItemList[slot].pool.reset();
}

void VUKSimRpm_PoolMap::AddReference(int srcSlot, int dstSlot, int index)
{
    VUKSIMRPM_ASSERT(srcSlot >= 0, kSource, at::kAddReferenceSrcNegative);
    VUKSIMRPM_ASSERT(srcSlot < mItemList.size(), kSource, at::kAddReferenceSrcBeyondEnd);
    VUKSIMRPM_ASSERT(dstSlot >= 0, kSource, at::kAddReferenceDstNegative);
    VUKSIMRPM_ASSERT(dstSlot < mItemList.size(), kSource, at::kAddReferenceDstBeyondEnd);
    mDirectoryIndexCache.Set(srcSlot, dstSlot, index);
}

void VUKSimRpm_PoolMap::GrowAllocation(int required)
{
    const long long current = mDirectoryIndexCache.Size();
    if (current >= required) {
        return;
    }
    const long long grown = (current + required + 63) & ~63LL;
    if (grown > VUKSimRpm_Matrix::kMaxSize) {
        throw std::bad_alloc();
    }
    mItemList.reserve(grown);
    VUKSimRpm_Matrix fresh(static_cast<int>(grown));
    fresh.FillFrom(mDirectoryIndexCache);
    fresh.Swap(mDirectoryIndexCache);
}

// The item of `slot`. The lines are where a slot that does not exist is reported.
const VUKSimRpm_PoolMap::Item& VUKSimRpm_PoolMap::Checked(int slot, int negative,
                                                          int beyondEnd) const
{
    if (slot < 0 || slot >= mLength) [[unlikely]] {
        Refuse(slot, negative, beyondEnd);
    }
    return mItemList[slot];
}

void VUKSimRpm_PoolMap::Refuse(int slot, int negative, int beyondEnd) const
{
    VUKSIMRPM_ASSERT(slot >= 0, kSource, negative);
    VUKSIMRPM_FAIL_ASSERTION(slot < mItemList.size(), kSource, beyondEnd);
}
