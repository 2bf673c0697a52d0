#pragma once

#include "VUKBasException.h"

/// A file, or a pool inside one, does not begin as it must: too short, or another signature.
class VUKBAS_EXPORT VUKSimExcNotSimFile final : public VUKBasException
{
public:
    [[nodiscard]] const char* ClassName() const noexcept override;
    [[noreturn]] void Throw(const char* path, int line) override;

private:
    void AppendReason(VUKBasExceptionText& text) const noexcept override;
};
