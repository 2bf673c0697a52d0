#pragma once

#include "ModelStream.h"

#include <cstdint>
#include <string>

namespace model {

/// Reads a run of pool bytes, a chunk ahead.
class ReadLocator final : public StreamRead
{
public:
    ReadLocator(const Locator& start, std::uint64_t limit, std::uint64_t chunkSize);

    char* PrepRead(std::uint64_t requestedLength) override;
    void Read(char* destination, std::uint32_t length) override;
    using StreamRead::Read;
    [[nodiscard]] const Directory* SourceDir() const override;
    [[nodiscard]] MemoryPool* IMPool() const override { return mStart.IMPool(); }

private:
    void ReadAhead();
    void CheckLimit(std::uint64_t length, int line) const;

    Locator mStart;
    std::uint64_t mLimit; // 0 for none
    std::uint64_t mChunk;
    std::uint64_t mBase = 0;   // of mHeld, from mStart
    std::string mHeld;         // read ahead; at most a chunk
    std::uint64_t mCursor = 0; // bytes of mHeld that were consumed
    std::string mPrepared;     // what the last request gave out
};

/// Writes a run of pool bytes, a chunk at a time.
class WriteLocator final : public StreamWrite
{
public:
    WriteLocator(const Locator& start, std::uint64_t limit, std::uint64_t chunkSize);
    ~WriteLocator() noexcept(false) override;

    char* PrepWrite(std::uint64_t requestedLength) override;
    void Write(const char* source, std::uint32_t length) override;
    using StreamWrite::Write;
    void Flush();
    [[nodiscard]] const Directory* SourceDir() const override;
    [[nodiscard]] MemoryPool* IMPool() const override { return mStart.IMPool(); }

private:
    void CheckLimit(std::uint64_t from, std::uint64_t length, int line) const;

    Locator mStart;
    std::uint64_t mLimit; // 0 for none
    std::string mBuffer;  // one chunk; keeps its old bytes after a flush
    std::uint64_t mBase = 0;
    std::uint64_t mFill = 0;
};

/// Adds bytes at the end of a pool.
class AppendToPool final : public StreamWrite
{
public:
    AppendToPool(const Pool& pool, std::uint64_t chunkSize);
    ~AppendToPool() noexcept(false) override;

    [[nodiscard]] std::uint64_t Length() const noexcept { return mAppended + mFill; }
    char* PrepWrite(std::uint64_t requestedLength) override;
    void Write(const char* source, std::uint32_t length) override;
    using StreamWrite::Write;
    void Flush();
    [[nodiscard]] const Directory* SourceDir() const override;
    [[nodiscard]] MemoryPool* IMPool() const override { return nullptr; }

private:
    void ExtendAndWrite(const char* source, std::uint64_t length);

    Pool mPool;
    Locator mStart;
    Locator mExpectedEnd;
    std::string mBuffer; // one chunk
    std::uint64_t mAppended = 0;
    std::uint64_t mFill = 0;
};
} // namespace model
