#pragma once

#include "VUKBasException.h"

/// The file asked for is not among the document's files, or is closed.
class VUKBAS_EXPORT VUKSimExcCantGetFile final : public VUKBasException
{
public:
    [[nodiscard]] const char* ClassName() const noexcept override;
    [[noreturn]] void Throw(const char* path, int line) override;

private:
    void AppendReason(VUKBasExceptionText& text) const noexcept override;
};
