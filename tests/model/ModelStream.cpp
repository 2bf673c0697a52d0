#include "ModelStream.h"

#include "ModelCheck.h"

#include <algorithm>

namespace model {
namespace {

constexpr char kReadBuffer[] = "VUKSimRpm_BStreamReadBuffer";
constexpr char kWriteBuffer[] = "VUKSimRpm_BStreamWriteBuffer";

// A text is read in pieces, so that a damaged length costs nothing: what a refusal says depends on
// their sizes.
constexpr std::uint64_t kFirstPiece = 1 << 20;
} // namespace

void StreamRead::Read(std::string& text)
{
    std::uint64_t length = 0;
    const char* stored = PrepRead(4);
    for (int i = 3; i >= 0; --i) {
        length = length << 8 | static_cast<unsigned char>(stored[i]);
    }
    const std::uint64_t padded = (length + 3) / 4 * 4;
    std::string bytes;
    std::uint64_t capacity = std::min(padded, kFirstPiece);
    for (;;) {
        const std::uint64_t held = bytes.size();
        bytes.resize(capacity);
        Read(bytes.data() + held, static_cast<std::uint32_t>(capacity - held));
        if (capacity == padded) {
            break;
        }
        capacity = std::min(padded, 2 * capacity);
    }
    bytes.resize(length);
    text = bytes.c_str(); // up to the first zero byte
}

void StreamWrite::Write(const std::string& text)
{
    std::string padded = text;
    padded.resize((text.size() + 3) / 4 * 4, '\0');
    char* stored = PrepWrite(4);
    for (int i = 0; i < 4; ++i) {
        stored[i] = static_cast<char>(text.size() >> (8 * i) & 0xFF);
    }
    Write(padded.data(), static_cast<std::uint32_t>(padded.size()));
}

BufferCursor::BufferCursor(const char* source, std::uint64_t length, const Pool& pool)
    : mSource(source), mLength(length)
{
    const auto bound = pool.Impl().lock();
    if (bound == nullptr) {
        Raise("VUKSimExcCantDerefLocator", mSource, 22);
    }
    mDirectory = bound->Dir();
}

std::uint64_t BufferCursor::Take(std::uint64_t requested)
{
    Check(requested > 0, "requestedLength > 0", mSource, 36);
    const std::uint64_t remaining = mLength - mPosition;
    if (requested > remaining) {
        Raise("VUKSimExcShortBuffer", mSource, 40,
              {static_cast<std::uint32_t>(requested), remaining});
    }
    mPosition += requested;
    return mPosition - requested;
}

ReadBuffer::ReadBuffer(const char* buffer, std::uint64_t length)
    : mBytes(buffer, length), mCursor(kReadBuffer, length)
{}

ReadBuffer::ReadBuffer(const char* buffer, std::uint64_t length, const Pool& pool)
    : mBytes(buffer, length), mCursor(kReadBuffer, length, pool)
{}

char* ReadBuffer::PrepRead(std::uint64_t requestedLength)
{
    return mBytes.data() + mCursor.Take(requestedLength);
}

void ReadBuffer::Read(char* destination, std::uint32_t length)
{
    std::copy_n(PrepRead(length), length, destination);
}

WriteBuffer::WriteBuffer(char* buffer, std::uint64_t length)
    : mBuffer(buffer), mCursor(kWriteBuffer, length)
{}

WriteBuffer::WriteBuffer(char* buffer, std::uint64_t length, const Pool& pool)
    : mBuffer(buffer), mCursor(kWriteBuffer, length, pool)
{}

char* WriteBuffer::PrepWrite(std::uint64_t requestedLength)
{
    return mBuffer + mCursor.Take(requestedLength);
}

void WriteBuffer::Write(const char* source, std::uint32_t length)
{
    std::copy_n(source, length, PrepWrite(length));
}
} // namespace model
