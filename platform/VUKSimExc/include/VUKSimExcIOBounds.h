#pragma once

#include "VUKBasException.h"

/// A stretch of bytes lies outside its pool, or cannot be counted in 64 bits.
class VUKBAS_EXPORT VUKSimExcIOBounds final : public VUKBasException
{
public:
    VUKSimExcIOBounds() noexcept = default;
    VUKSimExcIOBounds(unsigned long long offset, unsigned long long end,
                      unsigned long long dataLength) noexcept
        : mOffset(offset), mEnd(end), mDataLength(dataLength)
    {}

    /// The first byte of the stretch, counted from the pool's first data byte.
    [[nodiscard]] unsigned long long Offset() const noexcept { return mOffset; }

    /// One past the last byte of the stretch.
    [[nodiscard]] unsigned long long End() const noexcept { return mEnd; }

    /// The data bytes that the pool has.
    [[nodiscard]] unsigned long long DataLength() const noexcept { return mDataLength; }

    [[nodiscard]] const char* ClassName() const noexcept override;
    [[noreturn]] void Throw(const char* path, int line) override;

private:
    void AppendValues(VUKBasExceptionText& text) const noexcept override;
    void AppendReason(VUKBasExceptionText& text) const noexcept override;

    unsigned long long mOffset = 0;
    unsigned long long mEnd = 0;
    unsigned long long mDataLength = 0;
};
