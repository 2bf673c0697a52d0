#pragma once

#include "ModelLocator.h"

#include <cstdint>
#include <string>

namespace model {

/// An image of a stretch of a pool.
class MemoryPool
{
public:
    MemoryPool(const Locator& locator, std::uint64_t size);

    [[nodiscard]] bool Within(const Locator& location, std::uint64_t length) const;
    [[nodiscard]] bool Startin(const Locator& location) const;
    std::uint64_t Read(const Locator& location, std::uint64_t length, char* buffer) const;
    void Write(const Locator& location, std::uint64_t length, const char* buffer);

private:
    Locator mLocator; // of the first byte, without a memory pool
    std::string mImage;
};
} // namespace model
