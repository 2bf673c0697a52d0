#pragma once

#include "VUKBasException.h"

/// A pool's header is damaged or cut off.
class VUKBAS_EXPORT VUKSimExcCorruptHeader final : public VUKBasException
{
public:
    [[nodiscard]] const char* ClassName() const noexcept override;
    [[noreturn]] void Throw(const char* path, int line) override;

private:
    void AppendReason(VUKBasExceptionText& text) const noexcept override;
};
