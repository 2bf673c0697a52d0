#include "VUKBasAssertException.h"

#include <cstring>

VUKBasAssertException::VUKBasAssertException(const char* text) noexcept
{
    if (text == nullptr) {
        return;
    }
    std::size_t length = strnlen(text, sizeof(mText));
    if (length == sizeof(mText)) {
        // Cut in front of the UTF-8 character that does not fit whole.
        length = sizeof(mText) - 1;
        while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U) {
            --length;
        }
    }
    std::memcpy(mText, text, length);
}

const char* VUKBasAssertException::ClassName() const noexcept
{
    return "VUKBasAssertException";
}

void VUKBasAssertException::Throw(const char* path, int line)
{
    Record(path, line);
    throw *this;
}

void VUKBasAssertException::AppendValues(VUKBasExceptionText& text) const noexcept
{
    text.Append(mText);
}

void VUKBasAssertException::AppendReason(VUKBasExceptionText& text) const noexcept
{
    text.Append("this check does not hold");
}
