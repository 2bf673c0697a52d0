#include "ModelPoolMap.h"

#include "ModelCheck.h"
#include "Rules.h"

namespace model {

int PoolMap::NewSlot(const Uuid& uuid)
{
    if (IsDuplicate(uuid)) {
        Raise("VUKSimExcPoolAlreadyInDoc", "VUKSimRpm_PoolMap", 21);
    }
    const int slot = Length();
    mItems.push_back({uuid, {}});
    if (Rules::Current().uuidIndexKeepsTheFirstSlot) {
        mIndex.emplace(uuid, slot);
    } else {
        mIndex[uuid] = slot;
    }
    return slot;
}

void PoolMap::SetPool(int slot, const std::weak_ptr<PoolImpl>& pool)
{
    mItems.at(static_cast<std::size_t>(slot)).pool = pool;
}

void PoolMap::Remove(int slot)
{
    mItems.at(static_cast<std::size_t>(slot)).pool.reset();
}

std::shared_ptr<PoolImpl> PoolMap::LivePool(int slot) const
{
    return mItems.at(static_cast<std::size_t>(slot)).pool.lock();
}

const Uuid& PoolMap::UuidOf(int slot) const
{
    return mItems.at(static_cast<std::size_t>(slot)).uuid;
}

int PoolMap::LookupByUuid(const Uuid& uuid) const
{
    const auto found = mIndex.find(uuid);
    return found == mIndex.end() ? -1 : found->second;
}

bool PoolMap::IsDuplicate(const Uuid& uuid) const
{
    const int slot = LookupByUuid(uuid);
    return slot >= 0 && LivePool(slot) != nullptr;
}

int PoolMap::CachedIndex(int source, int target) const
{
    const auto found = mCache.find({source, target});
    return found == mCache.end() ? -1 : found->second;
}

void PoolMap::Remember(int source, int target, int index)
{
    mCache[{source, target}] = index;
}
} // namespace model
