#pragma once

#include "ModelUuid.h"

#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace model {

class PoolImpl;

/// All pools that a document knows, by slot. Slots are never taken back.
class PoolMap
{
public:
    int NewSlot(const Uuid& uuid);
    void SetPool(int slot, const std::weak_ptr<PoolImpl>& pool);
    void Remove(int slot);

    [[nodiscard]] std::shared_ptr<PoolImpl> LivePool(int slot) const;
    [[nodiscard]] const Uuid& UuidOf(int slot) const;
    [[nodiscard]] int LookupByUuid(const Uuid& uuid) const; // -1 for an unknown one
    [[nodiscard]] bool IsDuplicate(const Uuid& uuid) const;
    [[nodiscard]] int Length() const noexcept { return static_cast<int>(mItems.size()); }

    /// Where `target` stands in the directory of the pool in slot `source`; -1 when never asked.
    [[nodiscard]] int CachedIndex(int source, int target) const;
    void Remember(int source, int target, int index);

private:
    struct Item
    {
        Uuid uuid;
        std::weak_ptr<PoolImpl> pool;
    };

    std::vector<Item> mItems;
    std::map<Uuid, int> mIndex;                // to the first slot of each UUID
    std::map<std::pair<int, int>, int> mCache; // never cleared
};
} // namespace model
