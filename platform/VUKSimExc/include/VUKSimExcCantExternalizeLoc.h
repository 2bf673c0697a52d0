#pragma once

#include "VUKBasException.h"

/// A reference cannot be stored: the storing pool's directory does not name its target.
class VUKBAS_EXPORT VUKSimExcCantExternalizeLoc final : public VUKBasException
{
public:
    [[nodiscard]] const char* ClassName() const noexcept override;
    [[noreturn]] void Throw(const char* path, int line) override;

private:
    void AppendReason(VUKBasExceptionText& text) const noexcept override;
};
