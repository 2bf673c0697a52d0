#pragma once

#include "VUKSimRpm_BStreamWrite.h"
#include "VUKSimRpm_Chunk.h"
#include "VUKSimRpm_Export.h"
#include "VUKSimRpm_Locator.h"
#include "VUKSimRpm_Pool.h"

#include <cstring>
#include <utility>

/// An output stream that adds bytes at the end of its file's current pool, growing the pool.
///
/// Bytes wait in a chunk and become part of the pool at a Flush, a Write or PrepWrite that does not
/// fit, and in the destructor. While the stream is open nothing else may grow the pool: the next
/// flush notices and throws VUKSimExcBrokenStream. Lengths are in bytes.
class VUKSIMRPM_EXPORT VUKSimRpm_BStreamAppendToPool final : public VUKSimRpm_BStreamWrite
{
public:
    /// Appends from the end of `pool` on; `chunkSize` is raised to 16 at least.
    /// \throws VUKSimExcCantDerefLocator when `pool` is gone; std::bad_alloc.
    VUKSimRpm_BStreamAppendToPool(const VUKSimRpm_Pool& pool, unsigned long chunkSize);

    VUKSimRpm_BStreamAppendToPool(const VUKSimRpm_BStreamAppendToPool&) = delete;
    VUKSimRpm_BStreamAppendToPool& operator=(const VUKSimRpm_BStreamAppendToPool&) = delete;

    /// Flushes. A failure leaves the destructor as an exception and the waiting bytes are lost;
    /// while another exception unwinds it is swallowed, so that the process lives on. A stream with
    /// nothing waiting dies quietly when its pool is gone already.
    ~VUKSimRpm_BStreamAppendToPool() noexcept(false) override;

    /// The bytes given to the stream so far, waiting ones included. After a failed flush those that
    /// still wait are counted twice.
    [[nodiscard]] unsigned long Length() const noexcept { return mAppended + Fill(); }

    /// \throws VUKBasAssertException "requestedLength > 0"; VUKSimExcRequestTooBig(requested, chunk
    /// size) after flushing what waited; what Flush throws. No room is counted then.
    [[nodiscard]] char* PrepWrite(unsigned long requestedLength) override
    {
        if (requestedLength - 1 < Room()) [[likely]] { // and not 0
            return std::exchange(mNext, mNext + requestedLength);
        }
        return PrepWriteElsewhere(requestedLength);
    }

    /// A length of 0 does nothing. \throws what Flush throws.
    void Write(const char* source, unsigned int length) override
    {
        if (length - 1UL < Room()) [[likely]] {
            std::memcpy(std::exchange(mNext, mNext + length), source, length);
        } else {
            WriteElsewhere(source, length);
        }
    }
    using VUKSimRpm_BStreamWrite::Write;

    /// Moves the waiting bytes into the pool. Does not make them durable, see
    /// VUKSimRpm_File::Flush. \throws VUKSimExcBrokenStream when the pool's end has moved or bytes
    /// wait and the pool is gone; VUKSimExcImmutablePool, the platform's file errors: the pool may
    /// have grown then, and the stream can append no more.
    void Flush();

    /// The pool's directory. \throws VUKSimExcCantDerefLocator when the pool is gone.
    [[nodiscard]] VUKSimRpm_PoolDirectoryImpl* SourceDir() const override;

    /// Always null.
    [[nodiscard]] VUKSimRpm_MemoryPool* IMPool() const override;

private:
    [[nodiscard]] unsigned long Room() const noexcept
    {
        return static_cast<unsigned long>(mChunk.Begin() + mChunk.Size() - mNext);
    }
    [[nodiscard]] unsigned long Fill() const noexcept
    {
        return static_cast<unsigned long>(mNext - mChunk.Begin());
    }
    char* PrepWriteElsewhere(unsigned long requestedLength);
    void WriteElsewhere(const char* source, unsigned int length);
    void ExtendAndWrite(const char* source, unsigned long length);
    void BeginChunk();

    VUKSimRpm_Pool mPool;
    VUKSimRpm_Locator mStart;       // where the first byte goes
    unsigned long mAppended = 0;    // bytes allocated and written so far
    VUKSimRpm_Locator mExpectedEnd; // where this stream left the pool's end
    int mExceptionsAtBirth;         // already unwinding when the stream was made
    VUKSimRpm_Chunk mChunk;         // of bytes that wait
    char* mNext = nullptr;          // where the next byte waits in the chunk
};
