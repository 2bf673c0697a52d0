#pragma once

#include "VUKBasAssertException.h"
#include "VUKSimUttAssert.h"

#include <cstdlib>

// The two checks of the library: VUKSIMRPM_ASSERT for its own consistency, VUKSIMRPM_VALIDATE for
// values that come from a caller or a file. Each quotes the condition that it tests, in the
// outermost macro: further down it would be expanded first. Conditions must be free of side
// effects, for they are looked at twice.

// What a failed condition comes to after its report. Still false: throws. True now: the object
// changed under our feet, nothing it says can be trusted, and the process ends.
[[noreturn]] inline void VUKSimRpm_EndCheck(bool holdsNow, const char* text, const char* source,
                                            int line)
{
    if (!holdsNow) {
        VUKBasAssertException(text).Throw(source, line);
    }
    std::exit(1);
}

// Reports a failed condition and looks again.
#define VUKSIMRPM_CHECK_(Report, condition, text, source, line)                                    \
    do {                                                                                           \
        if (!condition) [[unlikely]] {                                                             \
            VUKSimUttAssert::Report(text, source, line);                                           \
            VUKSimRpm_EndCheck(condition, text, source, line);                                     \
        }                                                                                          \
    } while (false)

// For a condition that was found false already, where what follows must not be reached.
#define VUKSIMRPM_FAIL_ASSERTION(condition, source, line)                                          \
    do {                                                                                           \
        VUKSimUttAssert::ReportAssertionFailure(#condition, source, line);                         \
        VUKSimRpm_EndCheck((condition), #condition, source, line);                                 \
    } while (false)

#define VUKSIMRPM_ASSERT(condition, source, line)                                                  \
    VUKSIMRPM_CHECK_(ReportAssertionFailure, (condition), #condition, source, line)

#define VUKSIMRPM_VALIDATE(condition, source, line)                                                \
    VUKSIMRPM_CHECK_(ReportValidationFailure, (condition), #condition, source, line)
