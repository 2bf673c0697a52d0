#include "VUKSimExcIOBounds.h"

const char* VUKSimExcIOBounds::ClassName() const noexcept
{
    return "VUKSimExcIOBounds";
}

void VUKSimExcIOBounds::Throw(const char* path, int line)
{
    Record(path, line);
    throw *this;
}

void VUKSimExcIOBounds::AppendValues(VUKBasExceptionText& text) const noexcept
{
    text.AppendUnsigned(mOffset).Append(", ").AppendUnsigned(mEnd).Append(", ");
    text.AppendUnsigned(mDataLength);
}

void VUKSimExcIOBounds::AppendReason(VUKBasExceptionText& text) const noexcept
{
    text.Append("the bytes from the first number to the second do not lie in the pool, whose "
                "data length is the third");
}
