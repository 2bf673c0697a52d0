#pragma once

#include "VUKBasException.h"

/// A handle has no object behind it to work on.
class VUKBAS_EXPORT VUKSimExcValidationFailure final : public VUKBasException
{
public:
    [[nodiscard]] const char* ClassName() const noexcept override;
    [[noreturn]] void Throw(const char* path, int line) override;

private:
    void AppendReason(VUKBasExceptionText& text) const noexcept override;
};
