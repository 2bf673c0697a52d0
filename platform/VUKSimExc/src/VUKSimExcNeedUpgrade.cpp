#include "VUKSimExcNeedUpgrade.h"

const char* VUKSimExcNeedUpgrade::ClassName() const noexcept
{
    return "VUKSimExcNeedUpgrade";
}

const char* VUKSimExcNeedUpgrade::what() const noexcept
{
    return mSentence[0] != '\0' ? mSentence : ClassName();
}

void VUKSimExcNeedUpgrade::Throw(const char* path, int line)
{
    Record(path, line);
    throw *this;
}

void VUKSimExcNeedUpgrade::AppendValues(VUKBasExceptionText& text) const noexcept
{
    text.AppendUnsigned(mExpected).Append(", ").AppendUnsigned(mFound).Append(", ");
    text.AppendQuoted(FileName(), 1100);
}

void VUKSimExcNeedUpgrade::AppendReason(VUKBasExceptionText& text) const noexcept
{
    text.Append("the pool was written in another format version; the first number is the version "
                "that can be read, the second the pool's");
}

VUKBasExceptionText VUKSimExcNeedUpgrade::Sentence() noexcept
{
    return {mSentence, sizeof(mSentence)};
}
