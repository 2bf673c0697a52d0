#pragma once

#include "VUKBas_Export.h"

#include <cstddef>

/// Writes an exception's sentence into the exception's own buffer, without allocating.
///
/// The buffer always holds a terminated text. What does not fit is cut between two UTF-8 characters
/// and marked with "..."; everything appended after that is dropped.
class VUKBAS_EXPORT VUKBasExceptionText
{
public:
    /// Empties `buffer`, which holds `size` characters (4 or more) and outlives the writer.
    VUKBasExceptionText(char* buffer, std::size_t size) noexcept;

    VUKBasExceptionText& Append(const char* text) noexcept;
    VUKBasExceptionText& AppendSigned(long long number) noexcept;
    VUKBasExceptionText& AppendUnsigned(unsigned long long number) noexcept;

    /// `text` between double quotes, on one line whatever it holds: quotes and backslashes are
    /// escaped, control characters become \xNN. Of more than `limit` characters, escapes counted,
    /// only the first are written, then "...".
    VUKBasExceptionText& AppendQuoted(const char* text, std::size_t limit) noexcept;

private:
    void AppendBytes(const char* bytes, std::size_t count) noexcept;

    char* mBuffer;         // not owned
    std::size_t mSize;     // of mBuffer, terminator included
    std::size_t mUsed = 0; // characters written, terminator not counted
    bool mCut = false;     // something did not fit
};
