#pragma once

#include "VUKSimRpm_BStreamRead.h"
#include "VUKSimRpm_Buffer.h"
#include "VUKSimRpm_Export.h"
#include "VUKSimRpm_Locator.h"

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
    [[nodiscard]] char* PrepRead(unsigned long requestedLength) override;

    /// A length of 0 does nothing. \throws as PrepRead up to a chunk; beyond, VUKSimExcShortBuffer
    /// or VUKSimExcRequestTooBig(requested, delivered), the delivered bytes being consumed. When
    /// the pool fails beyond a chunk, the bytes that were held are consumed.
    void Read(char* destination, unsigned int length) override;
    using VUKSimRpm_BStreamRead::Read;

    /// \throws VUKSimExcCantDerefLocator when the start locator's pool is not open.
    [[nodiscard]] VUKSimRpm_PoolDirectoryImpl* SourceDir() const override;
    [[nodiscard]] VUKSimRpm_MemoryPool* IMPool() const override;

private:
    void CheckLimit(unsigned long length, int line) const;
    void ReadAhead();
    void ReadPastBuffer(char* destination, unsigned int length);

    VUKSimRpm_Locator mStart;  // keeps its memory pool
    unsigned long long mLimit; // bytes from mStart; 0 means unlimited
    unsigned long mChunkSize;  // bytes, at least 16
    unsigned long mBase = 0;   // where mBuffer begins, in bytes from mStart
    unsigned long mCursor = 0; // bytes of mBuffer consumed
    unsigned long mFill = 0;   // bytes of mBuffer read ahead
    VUKSimRpm_Buffer mBuffer;  // mChunkSize bytes, made on first use
};
