#pragma once

#include "ModelPoolMap.h"

#include <memory>
#include <string>
#include <vector>

namespace model {

/// The pools that one pool may refer to, itself first.
class Directory
{
public:
    explicit Directory(const std::weak_ptr<PoolMap>& map) : mMap(map) {}

    /// For a new pool. Without `uuid` a fresh one is made.
    void Init(bool ownEntryOnly, const char* uuid);

    /// From `count` stored records of 32 bytes.
    void Load(const std::string& records, int count);

    [[nodiscard]] std::string Records() const;
    [[nodiscard]] int OwnSlot() const;
    [[nodiscard]] const Uuid& OwnUuid() const { return mMap.lock()->UuidOf(OwnSlot()); }
    [[nodiscard]] const std::weak_ptr<PoolMap>& Map() const noexcept { return mMap; }
    [[nodiscard]] int Length() const noexcept { return static_cast<int>(mSlots.size()); }

    [[nodiscard]] int ExternalizeReference(int slot) const;
    [[nodiscard]] int InternalizeReference(int index) const;

private:
    std::weak_ptr<PoolMap> mMap;
    std::vector<int> mSlots;
};
} // namespace model
