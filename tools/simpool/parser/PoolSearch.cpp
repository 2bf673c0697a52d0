#include "PoolSearch.h"

#include <algorithm>
#include <string_view>

namespace simpool {
namespace {

constexpr std::size_t kChunk = std::size_t{1} << 20; // bytes read at once
constexpr std::string_view kMark(kSignature.data(), kSignature.size());
} // namespace

PoolSearch::PoolSearch(const FileBytes& file, std::function<void(std::uint64_t)> progress)
    : mFile(file), mProgress(std::move(progress)),
      mChunk(static_cast<std::size_t>(std::min<std::uint64_t>(kChunk, file.Size())))
{}

const PoolInfo* PoolSearch::FirstFrom(std::uint64_t position)
{
    while (!mIsAtEnd && (!mFound || mFound->position < position)) {
        Advance(std::max(mSearched, position));
    }
    return mFound ? &*mFound : nullptr;
}

// Goes to the next plausible pool at `position` or behind it, or to the end of what is read.
void PoolSearch::Advance(std::uint64_t position)
{
    mFound.reset();
    const bool isRead =
        position >= mChunkPosition && position + kMark.size() <= mChunkPosition + mChunkLength;
    if (!isRead && !ReadChunk(mFile.SkipHole(position))) {
        mIsAtEnd = true;
        return;
    }
    const std::string_view bytes(mChunk.data(), mChunkLength);
    const std::size_t begin =
        position > mChunkPosition ? static_cast<std::size_t>(position - mChunkPosition) : 0;
    const std::size_t at = bytes.find(kMark, begin);
    if (at == std::string_view::npos) {
        // A signature may lie across the border.
        mSearched = mChunkPosition + mChunkLength - (kMark.size() - 1);
        if (mProgress) {
            mProgress(mSearched);
        }
        return;
    }
    mSearched = mChunkPosition + at + 1;
    PoolInfo pool;
    if (IsPlausiblePool(mFile, mChunkPosition + at, pool)) {
        mFound = pool;
    }
}

// False when no signature can follow.
bool PoolSearch::ReadChunk(std::uint64_t position)
{
    mChunkPosition = position;
    mChunkLength = mFile.Read(position, mChunk.data(), mChunk.size());
    return mChunkLength >= kMark.size();
}
} // namespace simpool
