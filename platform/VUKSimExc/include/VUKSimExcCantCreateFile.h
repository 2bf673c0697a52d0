#pragma once

#include "VUKBasException.h"
#include "VUKSimUttExceptionString.h"

/// A file was to be created over one that is open in the document.
class VUKBAS_EXPORT VUKSimExcCantCreateFile final : public VUKBasException
{
public:
    VUKSimExcCantCreateFile() noexcept = default;
    explicit VUKSimExcCantCreateFile(const VUKSimUttExceptionString<1024>& fileName) noexcept
        : mFileName(fileName)
    {}

    /// The name as it was given, cut to 1023 bytes.
    [[nodiscard]] const char* FileName() const noexcept { return mFileName.Text(); }

    [[nodiscard]] const char* ClassName() const noexcept override;
    [[nodiscard]] const char* what() const noexcept override;
    [[noreturn]] void Throw(const char* path, int line) override;

private:
    void AppendValues(VUKBasExceptionText& text) const noexcept override;
    void AppendReason(VUKBasExceptionText& text) const noexcept override;
    [[nodiscard]] VUKBasExceptionText Sentence() noexcept override;

    VUKSimUttExceptionString<1024> mFileName;
    char mSentence[1536] = {}; // has room for the whole name; empty before Throw
};
