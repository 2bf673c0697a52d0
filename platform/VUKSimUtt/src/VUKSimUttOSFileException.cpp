#include "VUKSimUttOSFileException.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

// Names stand bare in the sentence, as people write them, unless that would hide where they begin
// and end or send control characters to a terminal.
void AppendName(VUKBasExceptionText& text, std::string_view name)
{
    const auto isControl = [](char byte) {
        return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F;
    };
    if (name.empty() || std::ranges::any_of(name, isControl)) {
        text.AppendQuoted(name.data(), 1024);
    } else {
        text.Append(name.data());
    }
}

void AppendError(VUKBasExceptionText& text, int errorNumber, const char* reason)
{
    const char* const description = strerrordesc_np(errorNumber);
    const char* const name = strerrorname_np(errorNumber);
    if (reason == nullptr) {
        reason = description != nullptr ? description : "unknown error";
    }
    text.Append(reason).Append(" (");
    if (name != nullptr) {
        text.Append(name);
    } else {
        text.AppendSigned(errorNumber);
    }
    text.Append(")");
}

} // namespace

VUKSimUttOSFileException::VUKSimUttOSFileException(const Request& request, const VUKString& file,
                                                   int errorNumber, const char* reason) noexcept
    : mRequest(request), mFile(file.UTF8()), mErrorNumber(errorNumber), mReason(reason)
{}

const char* VUKSimUttOSFileException::ClassName() const noexcept
{
    return "VUKSimUttOSFileException";
}

const char* VUKSimUttOSFileException::what() const noexcept
{
    return mSentence[0] != '\0' ? mSentence : ClassName();
}

void VUKSimUttOSFileException::Throw(const char* path, int line)
{
    Record(path, line);
    throw *this;
}

void VUKSimUttOSFileException::AppendReason(VUKBasExceptionText& text) const noexcept
{
    text.Append(mRequest.operation).Append(" ");
    if (mRequest.length) {
        text.AppendUnsigned(*mRequest.length).Append(" bytes at ");
        text.AppendUnsigned(mRequest.position.value_or(0)).Append(" of ");
    }
    AppendName(text, mFile.Text());
    if (mRequest.position && !mRequest.length) {
        text.Append(" at ").AppendUnsigned(*mRequest.position);
    }
    text.Append(": ");
    AppendError(text, mErrorNumber, mReason);
}

VUKBasExceptionText VUKSimUttOSFileException::Sentence() noexcept
{
    return VUKBasExceptionText(mSentence, sizeof mSentence);
}
