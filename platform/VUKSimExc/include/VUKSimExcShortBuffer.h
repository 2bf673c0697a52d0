#pragma once

#include "VUKBasException.h"

/// A stream was asked for bytes beyond the end of its buffer, or beyond its limit.
class VUKBAS_EXPORT VUKSimExcShortBuffer final : public VUKBasException
{
public:
    VUKSimExcShortBuffer() noexcept = default;
    VUKSimExcShortBuffer(unsigned int requested, unsigned int available) noexcept
        : mRequested(requested), mAvailable(available)
    {}

    /// The bytes asked for; of a stream with a limit, the position that they reach.
    [[nodiscard]] unsigned int Requested() const noexcept { return mRequested; }

    /// The bytes left in the buffer, or the limit.
    [[nodiscard]] unsigned int Available() const noexcept { return mAvailable; }

    [[nodiscard]] const char* ClassName() const noexcept override;
    [[noreturn]] void Throw(const char* path, int line) override;

private:
    void AppendValues(VUKBasExceptionText& text) const noexcept override;
    void AppendReason(VUKBasExceptionText& text) const noexcept override;

    unsigned int mRequested = 0;
    unsigned int mAvailable = 0;
};
