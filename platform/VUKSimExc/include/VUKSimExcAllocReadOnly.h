#pragma once

#include "VUKBasException.h"

/// A file that was opened for reading was to grow.
class VUKBAS_EXPORT VUKSimExcAllocReadOnly final : public VUKBasException
{
public:
    [[nodiscard]] const char* ClassName() const noexcept override;
    [[noreturn]] void Throw(const char* path, int line) override;

private:
    void AppendReason(VUKBasExceptionText& text) const noexcept override;
};
