#pragma once

#include "VUKBasException.h"

/// An index or a count lies outside what there is.
class VUKBAS_EXPORT VUKBasRangeException final : public VUKBasException
{
public:
    VUKBasRangeException(long long index, long long length) noexcept
        : mIndex(index), mLength(length)
    {}

    /// What was asked for.
    [[nodiscard]] long long Index() const noexcept { return mIndex; }

    /// How many there are, or may be at most.
    [[nodiscard]] long long Length() const noexcept { return mLength; }

    [[nodiscard]] const char* ClassName() const noexcept override;
    [[noreturn]] void Throw(const char* path, int line) override;

private:
    void AppendValues(VUKBasExceptionText& text) const noexcept override;
    void AppendReason(VUKBasExceptionText& text) const noexcept override;

    long long mIndex = 0;
    long long mLength = 0;
};
