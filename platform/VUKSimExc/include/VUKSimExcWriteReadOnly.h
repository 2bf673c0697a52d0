#pragma once

#include "VUKBasException.h"

/// Bytes were to be written into a file that was opened for reading.
class VUKBAS_EXPORT VUKSimExcWriteReadOnly final : public VUKBasException
{
public:
    [[nodiscard]] const char* ClassName() const noexcept override;
    [[noreturn]] void Throw(const char* path, int line) override;

private:
    void AppendReason(VUKBasExceptionText& text) const noexcept override;
};
