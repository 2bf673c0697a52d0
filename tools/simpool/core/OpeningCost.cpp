#include "OpeningCost.h"

namespace simpool {
namespace {

constexpr std::uint64_t kMostRows = 46336; // whose square is a signed 32-bit number
}

void OpeningCost::BeginDirectory(std::uint32_t count)
{
    Grow(mUuids.size() + count);
}

bool OpeningCost::AddEntry(const Uuid& uuid)
{
    const bool isNew = mUuids.insert(uuid).second;
    Grow(mUuids.size());
    return isNew;
}

// In steps that leave room: by what is there and what is needed, in full 64.
void OpeningCost::Grow(std::uint64_t required)
{
    if (mRows >= required || mIsRefused) {
        return;
    }
    const std::uint64_t rows = (mRows + required + 63) / 64 * 64;
    mIsRefused = rows > kMostRows;
    mRows = rows;
}
} // namespace simpool
