#pragma once

#include "VUKBasStdAllocator.h"

#include <string>

/// Text in UTF-8. Lengths are in bytes; the bytes are kept as given and not checked.
///
/// A value. At most 4,294,967,295 bytes long: longer text is refused with a VUKBasRangeException
/// (its length, the longest length).
class VUKBAS_EXPORT VUKString
{
public:
    VUKString() = default;

    /// The text up to the first zero byte; null gives the empty string. Implicit, so that a
    /// literal serves wherever a string is asked for.
    VUKString(const char* utf8); // NOLINT(google-explicit-constructor)

    /// The same, said out loud.
    [[nodiscard]] static VUKString BuildFromUTF8(const char* utf8) { return VUKString(utf8); }

    /// Becomes the text up to the first zero byte, null being the empty one, in the memory that it
    /// has where that is enough. Left as it was when there is no memory for more.
    VUKString& operator=(const char* utf8);

    [[nodiscard]] unsigned int GetLengthInByte() const noexcept
    {
        return static_cast<unsigned int>(mText.size());
    }

    /// The bytes, with a zero byte behind them. Valid until the string changes or dies.
    [[nodiscard]] const char* UTF8() const noexcept { return mText.c_str(); }

    [[nodiscard]] bool IsEmpty() const noexcept { return mText.empty(); }

    /// Both texts, one behind the other.
    [[nodiscard]] VUKString operator+(const VUKString& tail) const;

    [[nodiscard]] bool operator==(const VUKString& that) const noexcept
    {
        return mText == that.mText;
    }

    /// By unsigned bytes; the shorter of two that agree comes first.
    [[nodiscard]] bool operator<(const VUKString& that) const noexcept
    {
        return mText < that.mText;
    }

private:
    std::basic_string<char, std::char_traits<char>, VUKBasStdAllocator<char>> mText;
};
