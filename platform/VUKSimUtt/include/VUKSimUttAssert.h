#pragma once

#include "VUKBas_Export.h"

/// Where failed checks are reported, before the code that made the check throws.
class VUKBAS_EXPORT VUKSimUttAssert
{
public:
    enum class Kind
    {
        Assertion,  // the code contradicts itself
        Validation, // a value from a caller or a file is not what it must be
    };

    /// Told of every failed check: the check as it stands in the code, and where that is. The texts
    /// live at least until the handler returns. What a handler throws passes through the report.
    using Handler = void (*)(Kind kind, const char* text, const char* path, int line);

    VUKSimUttAssert() = delete;

    static void ReportAssertionFailure(const char* text, const char* path, int line);
    static void ReportValidationFailure(const char* text, const char* path, int line);

    /// Sends the reports to `handler` from now on and returns the one before. Null stands for the
    /// default, which writes one line to standard error.
    static Handler SetHandler(Handler handler) noexcept;
};
