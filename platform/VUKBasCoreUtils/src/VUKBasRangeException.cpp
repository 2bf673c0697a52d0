#include "VUKBasRangeException.h"

const char* VUKBasRangeException::ClassName() const noexcept
{
    return "VUKBasRangeException";
}

void VUKBasRangeException::Throw(const char* path, int line)
{
    Record(path, line);
    throw *this;
}

void VUKBasRangeException::AppendValues(VUKBasExceptionText& text) const noexcept
{
    text.AppendSigned(mIndex).Append(", ").AppendSigned(mLength);
}

void VUKBasRangeException::AppendReason(VUKBasExceptionText& text) const noexcept
{
    text.Append("the first number is negative or more than the second allows");
}
