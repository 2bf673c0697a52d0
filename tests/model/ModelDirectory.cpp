#include "ModelDirectory.h"

#include "ModelCheck.h"
#include "Rules.h"

#include <algorithm>
#include <cstring>

namespace model {
namespace {
constexpr char kSource[] = "VUKSimRpm_PoolDirectoryImpl";
} // namespace

void Directory::Init(bool ownEntryOnly, const char* uuid)
{
    const auto map = mMap.lock();
    Uuid own;
    if (uuid != nullptr) {
        if (std::memchr(uuid, 0, 32) != nullptr) {
            Raise("VUKSimExcInvalidGUID", kSource, 30);
        }
        own.assign(uuid, 32);
    } else {
        do {
            own = UuidSource::Current().Create();
        } while (map->IsDuplicate(own));
    }
    const int slot = map->NewSlot(own);
    mSlots.push_back(slot);
    for (int older = 0; !ownEntryOnly && older < slot; ++older) {
        mSlots.push_back(older);
    }
}

void Directory::Load(const std::string& records, int count)
{
    const auto map = mMap.lock();
    for (int i = 0; i < count; ++i) {
        const Uuid uuid = records.substr(32 * static_cast<std::size_t>(i), 32);
        int slot = map->LookupByUuid(uuid);
        if (slot < 0) {
            slot = map->NewSlot(uuid);
        } else if (i == 0 && map->LivePool(slot) != nullptr) {
            Raise("VUKSimExcPoolAlreadyInDoc", kSource, 75);
        }
        mSlots.push_back(slot);
    }
}

std::string Directory::Records() const
{
    Check(!mSlots.empty(), "dirLength > 0", kSource, 87);
    const auto map = mMap.lock();
    std::string records;
    for (const int slot : mSlots) {
        records += map->UuidOf(slot);
    }
    return records;
}

int Directory::OwnSlot() const
{
    if (mSlots.empty()) {
        RaiseEmptyList();
    }
    return mSlots.front();
}

int Directory::ExternalizeReference(int slot) const
{
    const auto map = mMap.lock();
    Check(slot >= 0, "dstSlotInMap >= 0", kSource, 103);
    Check(slot < map->Length(), "dstSlotInMap < mMap.lock()->Length()", kSource, 104);
    const int own = OwnSlot();
    const int cached = Rules::Current().cachedIndexWins ? map->CachedIndex(own, slot) : -1;
    Check(cached < Length(), "srcSlotInDir < len", kSource, 110);
    if (cached >= 0) {
        return cached;
    }
    const auto found = std::find(mSlots.begin(), mSlots.end(), slot);
    if (found == mSlots.end()) {
        Raise("VUKSimExcCantExternalizeLoc", kSource, 123);
    }
    const auto index = static_cast<int>(found - mSlots.begin());
    map->Remember(own, slot, index);
    return index;
}

int Directory::InternalizeReference(int index) const
{
    Validate(index >= 0, "slotInDirectory >= 0", kSource, 129);
    Validate(index < Length(), "slotInDirectory < mMapSlotList.Length()", kSource, 130);
    return mSlots[static_cast<std::size_t>(index)];
}
} // namespace model
