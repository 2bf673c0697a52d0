#include "FrdLineReader.h"

#include "FrdError.h"

#include <cstring>
#include <filesystem>
#include <system_error>

namespace fe {

namespace {

constexpr std::size_t kBufferBytes = 1 << 18;
constexpr std::size_t kLongestLine = 4096; // the format's own records have some 100 bytes

} // namespace

FrdLineReader::FrdLineReader(const std::string& path) : mPath(path), mBuffer(kBufferBytes)
{
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status)) {
        throw FrdError(path, 0, "there is no such file");
    }
    if (!std::filesystem::is_regular_file(status)) {
        throw FrdError(path, 0, "is no regular file");
    }
    mStream.open(path, std::ios::binary);
    if (!mStream) {
        throw FrdError(path, 0, "cannot be opened for reading");
    }
}

bool FrdLineReader::Next()
{
    for (;;) {
        const char* begin = mBuffer.data() + mBegin;
        const std::size_t held = mEnd - mBegin;
        if (const void* end = held > 0 ? std::memchr(begin, '\n', held) : nullptr) {
            const auto size = static_cast<std::size_t>(static_cast<const char*>(end) - begin);
            mBegin += size + 1;
            TakeLine({begin, size});
            return true;
        }
        if (held > kLongestLine) {
            ++mNumber;
            Fail("the line is longer than any record of a result file");
        }
        if (!FillBuffer()) {
            break;
        }
    }
    if (mBegin < mEnd) {
        ++mNumber;
        Fail("the file ends in the middle of this line: it is cut");
    }
    return false;
}

void FrdLineReader::Fail(const std::string& what) const
{
    throw FrdError(mPath, mNumber, what);
}

// False at the end of the file; else at least one more byte is held.
bool FrdLineReader::FillBuffer()
{
    std::memmove(mBuffer.data(), mBuffer.data() + mBegin, mEnd - mBegin);
    mEnd -= mBegin;
    mBegin = 0;
    mStream.read(mBuffer.data() + mEnd, static_cast<std::streamsize>(mBuffer.size() - mEnd));
    const auto delivered = static_cast<std::size_t>(mStream.gcount());
    if (mStream.bad()) {
        Fail("the file cannot be read further");
    }
    mEnd += delivered;
    return delivered > 0;
}

void FrdLineReader::TakeLine(std::string_view text)
{
    ++mNumber;
    mBytesRead += text.size() + 1;
    const std::string_view end = !text.empty() && text.back() == '\r' ? "\r\n" : "\n";
    text.remove_suffix(end.size() - 1);
    if (mLineEnd.empty()) {
        mLineEnd = end;
    } else if (mLineEnd != end) {
        Fail("the line ends in another way than those before it");
    }
    if (text.size() > kLongestLine) {
        Fail("the line is longer than any record of a result file");
    }
    if (text.find('\0') != std::string_view::npos) {
        Fail("the line holds a zero byte: this is no text");
    }
    mLine = text;
}

} // namespace fe
