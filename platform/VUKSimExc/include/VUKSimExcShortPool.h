#pragma once

#include "VUKBasException.h"

/// The pool to be copied ended before its length was reached.
class VUKBAS_EXPORT VUKSimExcShortPool final : public VUKBasException
{
public:
    [[nodiscard]] const char* ClassName() const noexcept override;
    [[noreturn]] void Throw(const char* path, int line) override;

private:
    void AppendReason(VUKBasExceptionText& text) const noexcept override;
};
