#pragma once

#include "VUKBasException.h"

/// A pool was written under another user signature than the document's.
class VUKBAS_EXPORT VUKSimExcUserSigMismatch final : public VUKBasException
{
public:
    [[nodiscard]] const char* ClassName() const noexcept override;
    [[noreturn]] void Throw(const char* path, int line) override;

private:
    void AppendReason(VUKBasExceptionText& text) const noexcept override;
};
