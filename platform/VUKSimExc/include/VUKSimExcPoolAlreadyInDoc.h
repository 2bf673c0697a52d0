#pragma once

#include "VUKBasException.h"

/// A pool with the same UUID is open in the document.
class VUKBAS_EXPORT VUKSimExcPoolAlreadyInDoc final : public VUKBasException
{
public:
    [[nodiscard]] const char* ClassName() const noexcept override;
    [[noreturn]] void Throw(const char* path, int line) override;

private:
    void AppendReason(VUKBasExceptionText& text) const noexcept override;
};
