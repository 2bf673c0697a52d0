#pragma once

#include "VUKSimRpm_BStreamRead.h"
#include "VUKSimRpm_Chunk.h"
#include "VUKSimRpm_Export.h"
#include "VUKSimRpm_Locator.h"

#include <cstring>
#include <utility>

/// An input stream over the pool bytes that start at a locator, read ahead a chunk at a time.
///
/// Short records are decoded in place in the chunk; longer runs go straight to the caller. With a
/// memory pool at the start locator every transfer goes through it. Lengths are in bytes.
class VUKSIMRPM_EXPORT VUKSimRpm_BStreamReadLocator final : public VUKSimRpm_BStreamRead
{
public:
    /// At most `limit` bytes from `start` on, 0 for no limit; `chunkSize` is raised to 16 at least.
    /// Touches neither pool nor memory yet.
    VUKSimRpm_BStreamReadLocator(const VUKSimRpm_Locator& start, const unsigned long long& limit,
                                 unsigned long chunkSize);

    VUKSimRpm_BStreamReadLocator(const VUKSimRpm_BStreamReadLocator&) = delete;
    VUKSimRpm_BStreamReadLocator& operator=(const VUKSimRpm_BStreamReadLocator&) = delete;
    ~VUKSimRpm_BStreamReadLocator() override;

    /// \throws VUKBasAssertException "requestedLength > 0"; VUKSimExcShortBuffer(position reached,
    /// limit); VUKSimExcRequestTooBig(requested, held) for more than a chunk, or when the pool had
    /// too few bytes; VUKSimExcCantDerefLocator. No byte is consumed then.
    [[nodiscard]] char* PrepRead(unsigned long requestedLength) override
    {
        if (requestedLength - 1 < Ready()) [[likely]] { // and not 0
            return std::exchange(mNext, mNext + requestedLength);
        }
        return PrepReadElsewhere(requestedLength);
    }

    /// A length of 0 does nothing. \throws as PrepRead up to a chunk; beyond, VUKSimExcShortBuffer
    /// or VUKSimExcRequestTooBig(requested, delivered), the delivered bytes being consumed. When
    /// the pool fails beyond a chunk, the bytes that were held are consumed.
    void Read(char* destination, unsigned int length) override
    {
        if (length - 1UL < Ready()) [[likely]] {
            std::memcpy(destination, std::exchange(mNext, mNext + length), length);
        } else {
            ReadElsewhere(destination, length);
        }
    }
    using VUKSimRpm_BStreamRead::Read;

    /// \throws VUKSimExcCantDerefLocator when the start locator's pool is not open.
    [[nodiscard]] VUKSimRpm_PoolDirectoryImpl* SourceDir() const override;
    [[nodiscard]] VUKSimRpm_MemoryPool* IMPool() const override;

private:
    [[nodiscard]] unsigned long Ready() const noexcept
    {
        return static_cast<unsigned long>(mStop - mNext);
    }
    [[nodiscard]] unsigned long Consumed() const noexcept
    {
        return static_cast<unsigned long>(mNext - mChunk.Begin());
    }
    [[nodiscard]] unsigned long Held() const noexcept { return mFill - Consumed(); }

    char* PrepReadElsewhere(unsigned long requestedLength);
    void ReadElsewhere(char* destination, unsigned int length);
    void CheckLimit(unsigned long length, int line) const;
    void ReadAhead();
    void ReadPastChunk(char* destination, unsigned int length);
    void Hold(unsigned long fill) noexcept;

    VUKSimRpm_Locator mStart;    // keeps its memory pool
    unsigned long long mLimit;   // bytes from mStart; 0 means unlimited
    unsigned long mBase = 0;     // where the chunk begins, in bytes from mStart
    unsigned long mFill = 0;     // bytes of the chunk read ahead
    VUKSimRpm_Chunk mChunk;      // made on first use
    char* mNext = nullptr;       // the next byte to consume; null without a chunk
    const char* mStop = nullptr; // where what was read ahead ends, or the limit before it
};
