#include "VUKSimUttAssert.h"

#include <cstdio>
#include <utility>

namespace {

void WriteToStandardError(VUKSimUttAssert::Kind kind, const char* text, const char* path, int line)
{
    const char* what = kind == VUKSimUttAssert::Kind::Assertion ? "Assertion" : "Validation";
    std::fprintf(stderr, "%s failed: %s at %s:%d\n", what, text, path, line);
}

VUKSimUttAssert::Handler gHandler = nullptr; // null for the default

void Report(VUKSimUttAssert::Kind kind, const char* text, const char* path, int line)
{
    const VUKSimUttAssert::Handler handler = gHandler != nullptr ? gHandler : WriteToStandardError;
    handler(kind, text, path, line);
}

} // namespace

void VUKSimUttAssert::ReportAssertionFailure(const char* text, const char* path, int line)
{
    Report(Kind::Assertion, text, path, line);
}

void VUKSimUttAssert::ReportValidationFailure(const char* text, const char* path, int line)
{
    Report(Kind::Validation, text, path, line);
}

VUKSimUttAssert::Handler VUKSimUttAssert::SetHandler(Handler handler) noexcept
{
    return std::exchange(gHandler, handler);
}
