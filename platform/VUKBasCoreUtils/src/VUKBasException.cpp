#include "VUKBasException.h"

const char* VUKBasException::ClassName() const noexcept
{
    return "VUKBasException";
}

const char* VUKBasException::what() const noexcept
{
    return mSentence[0] != '\0' ? mSentence : ClassName();
}

void VUKBasException::Throw(const char* path, int line)
{
    Record(path, line);
    throw *this;
}

void VUKBasException::Record(const char* path, int line) noexcept
{
    mPath = path != nullptr ? path : "";
    mLine = line;

    char values[1280]; // the longest file name, escaped or cut, and a few numbers
    VUKBasExceptionText valuesText(values, sizeof(values));
    AppendValues(valuesText);

    VUKBasExceptionText sentence = Sentence();
    sentence.Append(ClassName());
    if (values[0] != '\0') {
        sentence.Append("(").Append(values).Append(")");
    }
    sentence.Append(" at ").Append(mPath).Append(":").AppendSigned(mLine).Append(": ");
    AppendReason(sentence);
}

void VUKBasException::AppendValues(VUKBasExceptionText&) const noexcept {}

void VUKBasException::AppendReason(VUKBasExceptionText& text) const noexcept
{
    text.Append("an operation failed");
}

VUKBasExceptionText VUKBasException::Sentence() noexcept
{
    return {mSentence, sizeof(mSentence)};
}
