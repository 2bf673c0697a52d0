#pragma once

#include "VUKBasException.h"

/// The pool that a stream appends to was extended by someone else meanwhile.
class VUKBAS_EXPORT VUKSimExcBrokenStream final : public VUKBasException
{
public:
    [[nodiscard]] const char* ClassName() const noexcept override;
    [[noreturn]] void Throw(const char* path, int line) override;

private:
    void AppendReason(VUKBasExceptionText& text) const noexcept override;
};
