#pragma once

#include "VUKBasException.h"

/// A stream was asked for more bytes at once than it can hold ready.
class VUKBAS_EXPORT VUKSimExcRequestTooBig final : public VUKBasException
{
public:
    VUKSimExcRequestTooBig() noexcept = default;
    VUKSimExcRequestTooBig(unsigned int requested, unsigned int available) noexcept
        : mRequested(requested), mAvailable(available)
    {}

    /// The bytes asked for.
    [[nodiscard]] unsigned int Requested() const noexcept { return mRequested; }

    /// The bytes that the stream holds ready, or can hold.
    [[nodiscard]] unsigned int Available() const noexcept { return mAvailable; }

    [[nodiscard]] const char* ClassName() const noexcept override;
    [[noreturn]] void Throw(const char* path, int line) override;

private:
    void AppendValues(VUKBasExceptionText& text) const noexcept override;
    void AppendReason(VUKBasExceptionText& text) const noexcept override;

    unsigned int mRequested = 0;
    unsigned int mAvailable = 0;
};
