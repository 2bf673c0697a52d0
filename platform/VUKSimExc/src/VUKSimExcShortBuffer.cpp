#include "VUKSimExcShortBuffer.h"

const char* VUKSimExcShortBuffer::ClassName() const noexcept
{
    return "VUKSimExcShortBuffer";
}

void VUKSimExcShortBuffer::Throw(const char* path, int line)
{
    Record(path, line);
    throw *this;
}

void VUKSimExcShortBuffer::AppendValues(VUKBasExceptionText& text) const noexcept
{
    text.AppendUnsigned(mRequested).Append(", ").AppendUnsigned(mAvailable);
}

void VUKSimExcShortBuffer::AppendReason(VUKBasExceptionText& text) const noexcept
{
    text.Append("the stream was asked for more than its buffer or its limit allows");
}
