#pragma once

#include "ModelPool.h"

#include <cstdint>
#include <memory>
#include <string>

namespace model {

/// A stream of stored bytes to decode.
class StreamRead
{
public:
    StreamRead() = default;
    StreamRead(const StreamRead&) = delete;
    StreamRead& operator=(const StreamRead&) = delete;
    virtual ~StreamRead() = default;

    virtual char* PrepRead(std::uint64_t requestedLength) = 0;
    virtual void Read(char* destination, std::uint32_t length) = 0;
    [[nodiscard]] virtual const Directory* SourceDir() const = 0;
    [[nodiscard]] virtual MemoryPool* IMPool() const = 0;

    void Read(std::string& text);
};

/// A stream of bytes to store.
class StreamWrite
{
public:
    StreamWrite() = default;
    StreamWrite(const StreamWrite&) = delete;
    StreamWrite& operator=(const StreamWrite&) = delete;
    virtual ~StreamWrite() noexcept(false) = default;

    virtual char* PrepWrite(std::uint64_t requestedLength) = 0;
    virtual void Write(const char* source, std::uint32_t length) = 0;
    [[nodiscard]] virtual const Directory* SourceDir() const = 0;
    [[nodiscard]] virtual MemoryPool* IMPool() const = 0;

    void Write(const std::string& text);
};

/// The caller's memory, with a position that only grows.
class BufferCursor
{
public:
    BufferCursor(const char* source, std::uint64_t length) : mSource(source), mLength(length) {}
    BufferCursor(const char* source, std::uint64_t length, const Pool& pool);

    /// Where the next `requested` bytes begin in the memory.
    std::uint64_t Take(std::uint64_t requested);

    [[nodiscard]] const Directory* Dir() const noexcept { return mDirectory.get(); }

private:
    const char* mSource; // the stream's class, which failures name
    std::uint64_t mLength;
    std::uint64_t mPosition = 0;
    std::shared_ptr<Directory> mDirectory; // null for an unbound stream
};

class ReadBuffer final : public StreamRead
{
public:
    ReadBuffer(const char* buffer, std::uint64_t length);
    ReadBuffer(const char* buffer, std::uint64_t length, const Pool& pool);

    char* PrepRead(std::uint64_t requestedLength) override;
    void Read(char* destination, std::uint32_t length) override;
    using StreamRead::Read;
    [[nodiscard]] const Directory* SourceDir() const override { return mCursor.Dir(); }
    [[nodiscard]] MemoryPool* IMPool() const override { return nullptr; }

private:
    std::string mBytes;
    BufferCursor mCursor;
};

class WriteBuffer final : public StreamWrite
{
public:
    WriteBuffer(char* buffer, std::uint64_t length);
    WriteBuffer(char* buffer, std::uint64_t length, const Pool& pool);

    char* PrepWrite(std::uint64_t requestedLength) override;
    void Write(const char* source, std::uint32_t length) override;
    using StreamWrite::Write;
    [[nodiscard]] const Directory* SourceDir() const override { return mCursor.Dir(); }
    [[nodiscard]] MemoryPool* IMPool() const override { return nullptr; }

private:
    char* mBuffer;
    BufferCursor mCursor;
};
} // namespace model
