// What the tests of the pool map and of the directories share.
#pragma once

#include "VUKBasSharedPtr.h"
#include "VUKSimRpm_DocumentImpl.h"
#include "VUKSimRpm_FileImpl.h"
#include "VUKSimRpm_PoolDirectoryImpl.h"
#include "VUKSimRpm_PoolImpl.h"
#include "VUKSimRpm_PoolMap.h"
#include "mem_Alloc.h"

#include "Bytes.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

/// Makes pools that live and do nothing else: their file was never opened, their directory is null.
/// A map asks no more of a pool. It must outlive them.
class PoolMaker
{
public:
    [[nodiscard]] VUKBasSharedPtr<VUKSimRpm_PoolImpl> NewPool()
    {
        return VUKBasMakeShared<VUKSimRpm_PoolImpl>(
            mFile, VUKBasSharedPtr<VUKSimRpm_PoolDirectoryImpl>(), 0ULL);
    }

private:
    VUKSimRpm_DocumentImpl mDocument{"TEST"};
    VUKSimRpm_FileImpl mFile{mDocument};
};

/// Writes down how many bytes each request for zeroed memory asks for, for as long as it lives: in
/// a pool map these are its caches' words, 8 bytes for a row, once for each growth. One at a time.
class CacheRequests
{
public:
    CacheRequests() : mFunctions(mem_CurrentFunctions())
    {
        sAllocateZeroed = mFunctions.allocateZeroed;
        sSizes.clear();
        mem_CurrentFunctions().allocateZeroed = [](std::size_t size) {
            sSizes.push_back(size);
            return sAllocateZeroed(size);
        };
    }
    CacheRequests(const CacheRequests&) = delete;
    CacheRequests& operator=(const CacheRequests&) = delete;
    ~CacheRequests() { mem_CurrentFunctions() = mFunctions; }

    [[nodiscard]] static const std::vector<std::size_t>& Sizes() noexcept { return sSizes; }

private:
    static inline void* (*sAllocateZeroed)(std::size_t) = nullptr;
    static inline std::vector<std::size_t> sSizes;

    mem_Functions mFunctions; // the table to put back
};

/// Remembers the last block of `size` bytes that was allocated while it lives, so that a test can
/// write astray in it. One at a time.
class LastBlockOf
{
public:
    explicit LastBlockOf(std::size_t size) : mFunctions(mem_CurrentFunctions())
    {
        sAllocate = mFunctions.allocate;
        sSize = size;
        sBlock = nullptr;
        mem_CurrentFunctions().allocate = [](std::size_t asked) {
            void* block = sAllocate(asked);
            if (asked == sSize) {
                sBlock = static_cast<char*>(block);
            }
            return block;
        };
    }
    LastBlockOf(const LastBlockOf&) = delete;
    LastBlockOf& operator=(const LastBlockOf&) = delete;
    ~LastBlockOf() { mem_CurrentFunctions() = mFunctions; }

    /// Puts the four bytes of `value` over the block's number `index`.
    static void Overwrite(int index, int value)
    {
        ASSERT_NE(sBlock, nullptr);
        std::memcpy(sBlock + index * 4, &value, 4);
    }

private:
    static inline void* (*sAllocate)(std::size_t) = nullptr;
    static inline std::size_t sSize = 0;
    static inline char* sBlock = nullptr; // null until there was one

    mem_Functions mFunctions; // the table to put back
};

/// The UUID number `n`: its digits, padded with zeros to 32.
inline std::string NumberedUuid(int n)
{
    const std::string digits = std::to_string(n);
    return std::string(32 - digits.size(), '0') + digits;
}

/// The 32 characters of a slot's UUID.
inline std::string UuidOf(const VUKSimRpm_PoolMap& map, int slot)
{
    return std::string(map.UUID(slot), 32);
}

/// A new slot for `uuid`, which is 32 characters long.
inline int NewSlot(VUKSimRpm_PoolMap& map, const std::string& uuid)
{
    return map.NewSlot(uuid.c_str());
}

/// `count` new slots, for the UUIDs numbered from the first free slot on.
inline void AddSlots(VUKSimRpm_PoolMap& map, int count)
{
    for (int i = 0; i < count; ++i) {
        NewSlot(map, NumberedUuid(map.Length()));
    }
}
