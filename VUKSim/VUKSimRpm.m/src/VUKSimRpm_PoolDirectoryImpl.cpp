#include "VUKSimRpm_PoolDirectoryImpl.h"

#include "VUKBasSharedPtr.h"
#include "VUKSimExcCantExternalizeLoc.h"
#include "VUKSimExcInvalidGUID.h"
#include "VUKSimExcPoolAlreadyInDoc.h"
#include "VUKSimRpm_Assert.h"
#include "VUKSimRpm_PoolImpl.h"
#include "VUKSimRpm_UUID.h"

#include <cstring>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolDirectoryImpl";

namespace at {
constexpr int kInitFilled = 23;
constexpr int kInitShortGuid = 30;
constexpr int kInitNotLastSlot = 48;
constexpr int kLoadFilled = 59;
constexpr int kLoadDuplicate = 75;
constexpr int kDumpEmpty = 87;
constexpr int kDumpNegative = 94;
constexpr int kDumpBeyondMap = 95;
constexpr int kExternalizeNegative = 103;
constexpr int kExternalizeBeyondMap = 104;
constexpr int kExternalizeBadCache = 110;
constexpr int kExternalizeUnknown = 123;
constexpr int kInternalizeNegative = 129;
constexpr int kInternalizeBeyondEnd = 130;
constexpr int kInternalizeBadSlot = 133;
constexpr int kInternalizeBeyondMap = 134;
} // namespace at

constexpr int kUuidLength = VUKSimRpm_UUID::kLength;

VUKSimRpm_UUID CreateUnusedUUID(const VUKBasSharedPtr<VUKSimRpm_PoolMap>& map)
{
    char text[kUuidLength];
    do {
        VUKSimRpm_UUID::CreateUUID(text);
    } while (map->IsDuplicate(text));
    return VUKSimRpm_UUID(text);
}
} // namespace

VUKSimRpm_PoolDirectoryImpl::VUKSimRpm_PoolDirectoryImpl(
    const VUKBasWeakPtr<VUKSimRpm_PoolMap>& map)
    : mMap(map)
{}

VUKSimRpm_PoolDirectoryImpl::~VUKSimRpm_PoolDirectoryImpl() = default;

VUKString VUKSimRpm_PoolDirectoryImpl::GetGUID() const
{
    char text[kUuidLength + 1] = {};
    std::memcpy(text, mMap.BorrowLiving().UUID(OwnSlot()), kUuidLength);
    return VUKString::BuildFromUTF8(text);
}

void VUKSimRpm_PoolDirectoryImpl::Init(bool ownEntryOnly, const char* guid)
{
    VUKSIMRPM_ASSERT(mMapSlotList.Length() == 0, kSource, at::kInitFilled);
    const auto map = mMap.lock();
    int mySlot = -1;
    if (guid != nullptr) {
        if (strnlen(guid, kUuidLength) < kUuidLength) {
            VUKSimExcInvalidGUID().Throw(kSource, at::kInitShortGuid);
        }
        mySlot = map->NewSlot(guid);
    } else {
        mySlot = map->NewSlot(CreateUnusedUUID(map).Text());
    }
    mMapSlotList.Append(mySlot);
    const int len = map->Length() - 1;
    VUKSIMRPM_ASSERT(mySlot == len, kSource, at::kInitNotLastSlot);
    if (ownEntryOnly) {
        return;
    }
    mMapSlotList.Reserve(1 + static_cast<long long>(mySlot));
    for (int slot = 0; slot < mySlot; ++slot) {
        mMapSlotList.Append(slot);
    }
}

void VUKSimRpm_PoolDirectoryImpl::Load(const char* data, int count)
{
    VUKSIMRPM_ASSERT(mMapSlotList.Length() == 0, kSource, at::kLoadFilled);
    if (count < 1) {
        return;
    }
    const auto map = mMap.lock();
    map->GrowAllocation(count + map->Length());
    mMapSlotList.Reserve(count);
    for (int i = 0; i < count; ++i) {
        const char* uuid = data + static_cast<long long>(i) * kUuidLength;
        const int slot = map->SlotOf(uuid); // a new one has no pool
        if (i == 0 && map->OpenPool(slot) != nullptr) {
            VUKSimExcPoolAlreadyInDoc().Throw(kSource, at::kLoadDuplicate);
        }
        mMapSlotList.Append(slot);
    }
}

void VUKSimRpm_PoolDirectoryImpl::Dump(char* out) const
{
    const long long dirLength = mMapSlotList.Length();
    VUKSIMRPM_ASSERT(dirLength > 0, kSource, at::kDumpEmpty);
    for (long long i = 0; i < dirLength; ++i) {
        const int slotInMap = mMapSlotList[i];
        VUKSIMRPM_ASSERT(slotInMap >= 0, kSource, at::kDumpNegative);
        VUKSIMRPM_ASSERT(slotInMap < mMap.lock()->Length(), kSource, at::kDumpBeyondMap);
        std::memcpy(out + i * kUuidLength, mMap.lock()->UUID(slotInMap), kUuidLength);
    }
}

// All that ExternalizeReference asks, in order, and the search that the map is spared afterwards.
int VUKSimRpm_PoolDirectoryImpl::SearchReference(int dstSlotInMap) const
{
    VUKSIMRPM_ASSERT(dstSlotInMap >= 0, kSource, at::kExternalizeNegative);
    VUKSIMRPM_ASSERT(dstSlotInMap < mMap.lock()->Length(), kSource, at::kExternalizeBeyondMap);
    const auto map = mMap.lock();
    const int srcSlot = OwnSlot();
    const int srcSlotInDir = map->GetDirectoryIndex(srcSlot, dstSlotInMap);
    const long long len = mMapSlotList.Length();
    VUKSIMRPM_ASSERT(srcSlotInDir < len, kSource, at::kExternalizeBadCache);
    for (int index = 0; index < len; ++index) {
        if (mMapSlotList[index] == dstSlotInMap) {
            map->AddReference(srcSlot, dstSlotInMap, index);
            return index;
        }
    }
    VUKSimExcCantExternalizeLoc().Throw(kSource, at::kExternalizeUnknown);
}

// Says what is wrong with a reference that InternalizeReference did not find good.
void VUKSimRpm_PoolDirectoryImpl::RefuseReference(int slotInDirectory) const
{
    VUKSIMRPM_VALIDATE(slotInDirectory >= 0, kSource, at::kInternalizeNegative);
    VUKSIMRPM_VALIDATE(slotInDirectory < mMapSlotList.Length(), kSource, at::kInternalizeBeyondEnd);
    const int slotInMap = mMapSlotList[slotInDirectory];
    VUKSIMRPM_ASSERT(slotInMap >= 0, kSource, at::kInternalizeBadSlot);
    VUKSIMRPM_FAIL_ASSERTION(slotInMap < mMap.lock()->Length(), kSource, at::kInternalizeBeyondMap);
}
