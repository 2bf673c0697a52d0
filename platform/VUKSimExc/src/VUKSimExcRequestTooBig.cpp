#include "VUKSimExcRequestTooBig.h"

const char* VUKSimExcRequestTooBig::ClassName() const noexcept
{
    return "VUKSimExcRequestTooBig";
}

void VUKSimExcRequestTooBig::Throw(const char* path, int line)
{
    Record(path, line);
    throw *this;
}

void VUKSimExcRequestTooBig::AppendValues(VUKBasExceptionText& text) const noexcept
{
    text.AppendUnsigned(mRequested).Append(", ").AppendUnsigned(mAvailable);
}

void VUKSimExcRequestTooBig::AppendReason(VUKBasExceptionText& text) const noexcept
{
    text.Append("the stream was asked for more bytes at once than it can hold ready");
}
