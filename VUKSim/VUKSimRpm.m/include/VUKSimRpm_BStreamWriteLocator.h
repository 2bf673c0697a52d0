#pragma once

#include "VUKSimRpm_BStreamWrite.h"
#include "VUKSimRpm_Chunk.h"
#include "VUKSimRpm_Export.h"
#include "VUKSimRpm_Locator.h"

#include <cstring>
#include <utility>

/// An output stream over the pool bytes that start at a locator, written a chunk at a time.
///
/// The bytes must exist already: the stream never grows a pool. They reach the pool at a Flush, a
/// Write or PrepWrite that does not fit the chunk, and in the destructor. With a memory pool at the
/// start locator every transfer goes through it. Lengths are in bytes.
class VUKSIMRPM_EXPORT VUKSimRpm_BStreamWriteLocator final : public VUKSimRpm_BStreamWrite
{
public:
    /// At most `limit` bytes from `start` on, 0 for no limit; `chunkSize` is raised to 16 at least.
    /// Touches neither pool nor memory yet.
    VUKSimRpm_BStreamWriteLocator(const VUKSimRpm_Locator& start, const unsigned long long& limit,
                                  unsigned long chunkSize);

    VUKSimRpm_BStreamWriteLocator(const VUKSimRpm_BStreamWriteLocator&) = delete;
    VUKSimRpm_BStreamWriteLocator& operator=(const VUKSimRpm_BStreamWriteLocator&) = delete;

    /// Flushes. A failure leaves the destructor as an exception and the waiting bytes are lost;
    /// while another exception unwinds it is swallowed, so that the process lives on.
    ~VUKSimRpm_BStreamWriteLocator() noexcept(false) override;

    /// \throws VUKBasAssertException "requestedLength > 0"; VUKSimExcShortBuffer(position reached,
    /// limit); VUKSimExcRequestTooBig(requested, chunk size); what Flush throws. No room is counted
    /// then, but waiting bytes may have been flushed.
    [[nodiscard]] char* PrepWrite(unsigned long requestedLength) override
    {
        if (requestedLength - 1 < Room()) [[likely]] { // and not 0
            return std::exchange(mNext, mNext + requestedLength);
        }
        return PrepWriteElsewhere(requestedLength);
    }

    /// A length of 0 does nothing. \throws as PrepWrite, but any length may be written. What could
    /// not be written is not counted.
    void Write(const char* source, unsigned int length) override
    {
        if (length - 1UL < Room()) [[likely]] {
            std::memcpy(std::exchange(mNext, mNext + length), source, length);
        } else {
            WriteElsewhere(source, length);
        }
    }
    using VUKSimRpm_BStreamWrite::Write;

    /// Writes the waiting bytes to the pool; they go on waiting when that fails. Does not make them
    /// durable, see VUKSimRpm_File::Flush. \throws what VUKSimRpm_Locator::Write throws.
    void Flush();

    /// \throws VUKSimExcCantDerefLocator when the start locator's pool is not open.
    [[nodiscard]] VUKSimRpm_PoolDirectoryImpl* SourceDir() const override;
    [[nodiscard]] VUKSimRpm_MemoryPool* IMPool() const override;

private:
    [[nodiscard]] unsigned long Room() const noexcept
    {
        return static_cast<unsigned long>(mStop - mNext);
    }
    [[nodiscard]] unsigned long Fill() const noexcept
    {
        return static_cast<unsigned long>(mNext - mChunk.Begin());
    }
    char* PrepWriteElsewhere(unsigned long requestedLength);
    void WriteElsewhere(const char* source, unsigned int length);
    void BeginChunk();
    void CheckLimit(unsigned long from, unsigned long length, int line) const;

    VUKSimRpm_Locator mStart;  // keeps its memory pool
    unsigned long long mLimit; // bytes from mStart; 0 means unlimited
    int mExceptionsAtBirth;    // already unwinding when the stream was made
    unsigned long mBase = 0;   // where the chunk will be written, in bytes from mStart
    VUKSimRpm_Chunk mChunk;    // made on first use
    char* mNext = nullptr;     // where the next byte waits in the chunk; null without one
    char* mStop = nullptr;     // where the chunk ends, or the limit before it
};
