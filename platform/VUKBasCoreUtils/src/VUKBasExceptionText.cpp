#include "VUKBasExceptionText.h"

#include <charconv>
#include <cstring>

namespace {

constexpr char kMark[] = "..."; // stands where something was cut
constexpr std::size_t kMarkLength = sizeof(kMark) - 1;

constexpr char kHexDigits[] = "0123456789ABCDEF";

bool IsContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

bool IsControl(char byte)
{
    return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F;
}

// Writes one byte as it appears between quotes and returns how many characters that took.
std::size_t Escape(char byte, char (&out)[4])
{
    if (IsControl(byte)) {
        const auto value = static_cast<unsigned char>(byte);
        out[0] = '\\';
        out[1] = 'x';
        out[2] = kHexDigits[value >> 4];
        out[3] = kHexDigits[value & 0xFU];
        return 4;
    }
    if (byte == '"' || byte == '\\') {
        out[0] = '\\';
        out[1] = byte;
        return 2;
    }
    out[0] = byte;
    return 1;
}

// Bytes of the UTF-8 character at `text`, whose first byte is not zero.
std::size_t CharacterLength(const char* text)
{
    std::size_t length = 1;
    while (IsContinuation(text[length])) {
        ++length;
    }
    return length;
}

} // namespace

VUKBasExceptionText::VUKBasExceptionText(char* buffer, std::size_t size) noexcept
    : mBuffer(buffer), mSize(size)
{
    mBuffer[0] = '\0';
}

VUKBasExceptionText& VUKBasExceptionText::Append(const char* text) noexcept
{
    AppendBytes(text, std::strlen(text));
    return *this;
}

VUKBasExceptionText& VUKBasExceptionText::AppendSigned(long long number) noexcept
{
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof(digits), number).ptr;
    AppendBytes(digits, static_cast<std::size_t>(end - digits));
    return *this;
}

VUKBasExceptionText& VUKBasExceptionText::AppendUnsigned(unsigned long long number) noexcept
{
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof(digits), number).ptr;
    AppendBytes(digits, static_cast<std::size_t>(end - digits));
    return *this;
}

VUKBasExceptionText& VUKBasExceptionText::AppendQuoted(const char* text, std::size_t limit) noexcept
{
    Append("\"");
    std::size_t written = 0;
    while (*text != '\0') {
        const std::size_t bytes = CharacterLength(text);
        char escaped[4];
        const std::size_t needed = bytes == 1 ? Escape(*text, escaped) : bytes;
        if (written + needed > limit) {
            Append(kMark);
            break;
        }
        AppendBytes(bytes == 1 ? escaped : text, needed);
        written += needed;
        text += bytes;
    }
    return Append("\"");
}

void VUKBasExceptionText::AppendBytes(const char* bytes, std::size_t count) noexcept
{
    if (mCut) {
        return;
    }
    if (count < mSize - mUsed) {
        std::memcpy(mBuffer + mUsed, bytes, count);
        mUsed += count;
        mBuffer[mUsed] = '\0';
        return;
    }

    // Fill what is left, then step back to make room for the mark.
    mCut = true;
    const std::size_t room = mSize - 1 - mUsed;
    std::memcpy(mBuffer + mUsed, bytes, room);
    std::size_t kept = mSize - 1 - kMarkLength;
    while (kept > 0 && IsContinuation(mBuffer[kept])) {
        --kept;
    }
    std::memcpy(mBuffer + kept, kMark, sizeof(kMark));
}
