#pragma once

#include "VUKBasException.h"

/// A check of the code did not hold.
class VUKBAS_EXPORT VUKBasAssertException final : public VUKBasException
{
public:
    /// `text` is the check as it stands in the code; it is copied, up to 255 bytes of it.
    explicit VUKBasAssertException(const char* text) noexcept;

    [[nodiscard]] const char* Text() const noexcept { return mText; }

    [[nodiscard]] const char* ClassName() const noexcept override;
    [[noreturn]] void Throw(const char* path, int line) override;

private:
    void AppendValues(VUKBasExceptionText& text) const noexcept override;
    void AppendReason(VUKBasExceptionText& text) const noexcept override;

    char mText[256] = {};
};
