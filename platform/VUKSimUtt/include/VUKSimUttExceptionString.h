#pragma once

#include <cstddef>
#include <cstring>

/// A text of fixed room that an exception can carry: copying it allocates nothing and cannot fail.
///
/// Holds up to N - 1 bytes of UTF-8 and a zero byte behind them; unused bytes are zero. This header
/// stands alone and needs no library.
template <unsigned int N>
class VUKSimUttExceptionString
{
    static_assert(N > 0);

public:
    /// The empty text.
    VUKSimUttExceptionString() = default;

    /// `text` up to its first zero byte. A longer one is cut, not inside a character: between two.
    /// Null gives the empty text.
    explicit VUKSimUttExceptionString(const char* text) noexcept
    {
        if (text == nullptr) {
            return;
        }
        // Not strnlen: compilers warn of its bound where the text is a shorter literal.
        std::size_t length = 0;
        while (length < N && text[length] != '\0') {
            ++length;
        }
        if (length == N) {
            length = N - 1;
            while (length > 0 && IsContinuation(text[length])) {
                --length;
            }
        }
        std::memcpy(mText, text, length);
    }

    /// The bytes, with a zero byte behind them.
    [[nodiscard]] const char* Text() const noexcept { return mText; }

private:
    // True for every byte of a UTF-8 character but its first.
    [[nodiscard]] static bool IsContinuation(char byte) noexcept
    {
        return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
    }

    char mText[N] = {};
};
