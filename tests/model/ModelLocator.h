#pragma once

#include "ModelPoolMap.h"

#include <cstdint>
#include <memory>
#include <string>

namespace model {

class Directory;
class MemoryPool;
class StreamRead;
class StreamWrite;

/// A byte resolved to its place in an open file.
class DirectLocator
{
public:
    DirectLocator() = default;
    DirectLocator(std::shared_ptr<PoolImpl> pool, std::uint64_t offset);

    std::uint64_t Read(std::uint64_t length, char* buffer) const;
    std::uint64_t Write(std::uint64_t length, const char* buffer) const;

private:
    std::shared_ptr<PoolImpl> mPool; // its file is open as long as this is used
    std::uint64_t mOffset = 0;
};

/// A byte of a pool, by slot and offset.
class Locator
{
public:
    Locator() = default;
    Locator(const std::weak_ptr<PoolMap>& map, int slot, std::uint64_t offset, MemoryPool* memory);
    Locator(const Locator& base, std::uint64_t delta);
    Locator(const Locator& other, MemoryPool& memory);

    [[nodiscard]] bool Null() const noexcept { return mSlot < 0 || mMap.expired(); }
    [[nodiscard]] bool SamePool(const Locator& that) const noexcept;
    [[nodiscard]] bool operator==(const Locator& that) const noexcept;
    [[nodiscard]] bool operator<(const Locator& that) const;
    [[nodiscard]] bool operator<=(const Locator& that) const;
    [[nodiscard]] Locator operator+(std::uint64_t n) const;
    [[nodiscard]] Locator operator-(std::uint64_t n) const;
    Locator& operator+=(std::uint64_t n) noexcept;
    [[nodiscard]] std::uint64_t operator-(const Locator& that) const;

    [[nodiscard]] MemoryPool* IMPool() const noexcept { return mMemory; }
    [[nodiscard]] std::uint64_t Offset() const noexcept { return mOffset; }
    [[nodiscard]] std::string GetGUID() const;
    [[nodiscard]] std::shared_ptr<model::Directory> Directory() const;
    [[nodiscard]] bool ReadOnly() const;
    [[nodiscard]] model::DirectLocator DirectLocator() const;

    [[nodiscard]] std::uint64_t Read(std::uint64_t length, char* buffer) const;
    std::uint64_t Write(std::uint64_t length, const char* buffer) const;
    void ExternalizeImpl(StreamWrite& stream) const;
    void InternalizeImpl(StreamRead& stream);

private:
    [[nodiscard]] std::shared_ptr<PoolImpl> Resolve(int line) const;

    std::weak_ptr<PoolMap> mMap;
    int mSlot = -1;
    std::uint64_t mOffset = 0;
    MemoryPool* mMemory = nullptr;
};
} // namespace model
