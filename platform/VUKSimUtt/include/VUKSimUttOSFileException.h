#pragma once

#include <optional>

#include "VUKBasException.h"
#include "VUKSimUttExceptionString.h"
#include "VUKString.h"

/// The operating system, or the state of an OS file, refused an operation on a file.
///
/// Its sentence tells the whole story on one line, such as
/// `write 112 bytes at 671613152 of run42.sim: No space left on device (ENOSPC)`.
class VUKBAS_EXPORT VUKSimUttOSFileException final : public VUKBasException
{
public:
    /// What was asked of the file, as the caller asked it.
    struct Request
    {
        const char* operation;                                     // a literal, such as "write"
        std::optional<unsigned long long> position = std::nullopt; // in bytes from the file's start
        std::optional<unsigned long long> length = std::nullopt;   // in bytes
    };

    /// `errorNumber` is an `errno` value. `reason`, a literal, stands in the sentence instead of
    /// the system's text where that would not say what is wrong. Of `file` up to 1023 bytes are
    /// kept.
    VUKSimUttOSFileException(const Request& request, const VUKString& file, int errorNumber,
                             const char* reason = nullptr) noexcept;

    /// "open", "create", "read", "write", "truncate", "measure", "flush", "close" or "remove".
    [[nodiscard]] const char* Operation() const noexcept { return mRequest.operation; }

    [[nodiscard]] const char* FileName() const noexcept { return mFile.Text(); }

    /// Where the request began; the size asked for in "truncate"; 0 where there is none.
    [[nodiscard]] unsigned long long Position() const noexcept
    {
        return mRequest.position.value_or(0);
    }

    /// How many bytes were asked for in "read" and "write"; else 0.
    [[nodiscard]] unsigned long long Length() const noexcept { return mRequest.length.value_or(0); }

    [[nodiscard]] int ErrorNumber() const noexcept { return mErrorNumber; }

    [[nodiscard]] const char* ClassName() const noexcept override;
    [[nodiscard]] const char* what() const noexcept override;
    [[noreturn]] void Throw(const char* path, int line) override;

private:
    void AppendReason(VUKBasExceptionText& text) const noexcept override;
    [[nodiscard]] VUKBasExceptionText Sentence() noexcept override;

    Request mRequest;
    VUKSimUttExceptionString<1024> mFile;
    int mErrorNumber;
    const char* mReason;       // not owned; null for the system's own text
    char mSentence[1536] = {}; // the longest name and all that stands around it
};
