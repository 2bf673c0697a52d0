#include "VUKSimRpm_Chunk.h"

#include <cstdint>
#include <cstring>

void VUKSimRpm_Chunk::AllocateOnce()
{
    if (mBegin == nullptr) {
        mMemory.Allocate(mSize + (mSize < kSmallestThatMoves ? 0 : kPage));
        mBegin = mMemory.Bytes();
    }
}

void VUKSimRpm_Chunk::BeginAs(unsigned long long position, const char* from,
                              unsigned long kept) noexcept
{
    if (mSize >= kSmallestThatMoves) {
        const auto memory = reinterpret_cast<std::uintptr_t>(mMemory.Bytes());
        mBegin = mMemory.Bytes() + (position - memory) % kPage;
    }
    if (kept > 0) {
        std::memmove(mBegin, from, kept);
    }
}
