#pragma once

#include "VUKBasException.h"

/// A text given as a pool's UUID is shorter than 32 characters.
class VUKBAS_EXPORT VUKSimExcInvalidGUID final : public VUKBasException
{
public:
    [[nodiscard]] const char* ClassName() const noexcept override;
    [[noreturn]] void Throw(const char* path, int line) override;

private:
    void AppendReason(VUKBasExceptionText& text) const noexcept override;
};
