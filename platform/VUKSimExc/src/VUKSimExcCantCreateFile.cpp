#include "VUKSimExcCantCreateFile.h"

const char* VUKSimExcCantCreateFile::ClassName() const noexcept
{
    return "VUKSimExcCantCreateFile";
}

const char* VUKSimExcCantCreateFile::what() const noexcept
{
    return mSentence[0] != '\0' ? mSentence : ClassName();
}

void VUKSimExcCantCreateFile::Throw(const char* path, int line)
{
    Record(path, line);
    throw *this;
}

void VUKSimExcCantCreateFile::AppendValues(VUKBasExceptionText& text) const noexcept
{
    text.AppendQuoted(FileName(), 1100);
}

void VUKSimExcCantCreateFile::AppendReason(VUKBasExceptionText& text) const noexcept
{
    text.Append("a file of this name is open in the document");
}

VUKBasExceptionText VUKSimExcCantCreateFile::Sentence() noexcept
{
    return {mSentence, sizeof(mSentence)};
}
