#pragma once

#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace fe {

/// Reads a text file line by line and knows where it is.
///
/// Strict, for a cut file must not pass for a whole one: every line has to end, in the same way as
/// the first ("\n" or "\r\n"), and none may hold a zero byte or be longer than 4096 bytes.
class FrdLineReader
{
public:
    /// \throws FrdError when `path` is no regular file or cannot be opened.
    explicit FrdLineReader(const std::string& path);

    /// Goes to the next line; false at the end of the file. \throws FrdError.
    [[nodiscard]] bool Next();

    /// The line without its end, valid until the next call of Next; empty before the first.
    [[nodiscard]] std::string_view Line() const noexcept { return mLine; }

    /// Counts from 1; behind the last line it stays with that one.
    [[nodiscard]] std::uint64_t Number() const noexcept { return mNumber; }

    [[nodiscard]] std::uint64_t BytesRead() const noexcept { return mBytesRead; }
    [[nodiscard]] const std::string& LineEnd() const noexcept { return mLineEnd; }

    /// Throws the FrdError that `what` is wrong with this line.
    [[noreturn]] void Fail(const std::string& what) const;

private:
    [[nodiscard]] bool FillBuffer();
    void TakeLine(std::string_view text);

    std::string mPath;
    std::ifstream mStream;
    std::vector<char> mBuffer;
    std::size_t mBegin = 0; // bytes of mBuffer that were handed out
    std::size_t mEnd = 0;   // bytes of mBuffer that were read
    std::string_view mLine; // in mBuffer
    std::string mLineEnd;   // empty before the first line
    std::uint64_t mNumber = 0;
    std::uint64_t mBytesRead = 0; // of the lines so far
};

} // namespace fe
