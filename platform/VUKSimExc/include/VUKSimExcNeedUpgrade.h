#pragma once

#include "VUKBasException.h"
#include "VUKSimUttExceptionString.h"

/// A pool was written in another version of the file format.
class VUKBAS_EXPORT VUKSimExcNeedUpgrade final : public VUKBasException
{
public:
    VUKSimExcNeedUpgrade() noexcept = default;
    VUKSimExcNeedUpgrade(unsigned int expected, unsigned int found,
                         const VUKSimUttExceptionString<1024>& fileName) noexcept
        : mExpected(expected), mFound(found), mFileName(fileName)
    {}

    /// The version that can be read.
    [[nodiscard]] unsigned int Expected() const noexcept { return mExpected; }

    /// The version of the pool. Stored in a signed byte: 4294967295 is version -1.
    [[nodiscard]] unsigned int Found() const noexcept { return mFound; }

    /// The name of the pool's file, cut to 1023 bytes.
    [[nodiscard]] const char* FileName() const noexcept { return mFileName.Text(); }

    [[nodiscard]] const char* ClassName() const noexcept override;
    [[nodiscard]] const char* what() const noexcept override;
    [[noreturn]] void Throw(const char* path, int line) override;

private:
    void AppendValues(VUKBasExceptionText& text) const noexcept override;
    void AppendReason(VUKBasExceptionText& text) const noexcept override;
    [[nodiscard]] VUKBasExceptionText Sentence() noexcept override;

    unsigned int mExpected = 0;
    unsigned int mFound = 0;
    VUKSimUttExceptionString<1024> mFileName;
    char mSentence[1536] = {}; // has room for the whole name; empty before Throw
};
