#pragma once

#include "VUKBasException.h"

/// A pool that is not its file's last one was to grow.
class VUKBAS_EXPORT VUKSimExcImmutablePool final : public VUKBasException
{
public:
    [[nodiscard]] const char* ClassName() const noexcept override;
    [[noreturn]] void Throw(const char* path, int line) override;

private:
    void AppendReason(VUKBasExceptionText& text) const noexcept override;
};
