#pragma once

#include "VUKBasException.h"

/// The pool that a locator names is not open.
class VUKBAS_EXPORT VUKSimExcCantDerefLocator final : public VUKBasException
{
public:
    [[nodiscard]] const char* ClassName() const noexcept override;
    [[noreturn]] void Throw(const char* path, int line) override;

private:
    void AppendReason(VUKBasExceptionText& text) const noexcept override;
};
