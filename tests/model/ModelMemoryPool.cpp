#include "ModelMemoryPool.h"

#include "ModelCheck.h"

#include <algorithm>

namespace model {
namespace {
constexpr char kSource[] = "VUKSimRpm_MemoryPool";
} // namespace

MemoryPool::MemoryPool(const Locator& locator, std::uint64_t size)
    : mLocator(locator, std::uint64_t{0}), mImage(size, '\0')
{
    const std::uint64_t r = mLocator.Read(size, mImage.data());
    Check(r == size, "r == mSize", kSource, 30);
}

bool MemoryPool::Within(const Locator& location, std::uint64_t length) const
{
    if (!mLocator.SamePool(location) || !(mLocator <= location)) {
        return false;
    }
    const std::uint64_t from = location - mLocator;
    return from <= mImage.size() && length <= mImage.size() - from;
}

bool MemoryPool::Startin(const Locator& location) const
{
    // An image that runs over the last offset has its end at the first ones: the sum wraps.
    return mLocator <= location && location < mLocator + mImage.size();
}

std::uint64_t MemoryPool::Read(const Locator& location, std::uint64_t length, char* buffer) const
{
    Check(mLocator.SamePool(location), "mLocator.SamePool(location)", kSource, 41);
    Check(mLocator <= location, "mLocator <= location", kSource, 44);
    Check(location < mLocator + mImage.size(), "location < mLocator + mSize", kSource, 45);
    return mImage.copy(buffer, length, location - mLocator);
}

void MemoryPool::Write(const Locator& location, std::uint64_t length, const char* buffer)
{
    Check(Within(location, length), "Within(location, length)", kSource, 57);
    std::copy_n(buffer, length, mImage.begin() + static_cast<std::ptrdiff_t>(location - mLocator));
}
} // namespace model
