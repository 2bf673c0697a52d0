#pragma once

#include "VUKBasException.h"

/// A pool was to be made in, or copied into, a file that was opened for reading.
class VUKBAS_EXPORT VUKSimExcNewPoolReadOnly final : public VUKBasException
{
public:
    [[nodiscard]] const char* ClassName() const noexcept override;
    [[noreturn]] void Throw(const char* path, int line) override;

private:
    void AppendReason(VUKBasExceptionText& text) const noexcept override;
};
