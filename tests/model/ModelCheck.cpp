#include "ModelCheck.h"

#include <algorithm>

namespace model {
namespace {

std::string PathOf(const char* source)
{
    return std::string("VUKSim/VUKSimRpm.m/src/") + source;
}

void ReportAndRaise(bool validation, const char* text, const char* source, int line)
{
    Reports().push_back({validation, text, PathOf(source), line});
    Raise("VUKBasAssertException", source, line, {}, text);
}
} // namespace

void Raise(const char* exception, const char* source, int line,
           std::initializer_list<std::uint64_t> values, const std::string& text)
{
    Failure failure{.exception = exception, .text = text, .path = PathOf(source), .line = line};
    std::copy(values.begin(), values.end(), failure.values.begin());
    throw failure;
}

void RaiseFileError(const char* operation, const std::string& name, int errorNumber)
{
    throw Failure{.exception = "VUKSimUttOSFileException",
                  .values = {static_cast<std::uint64_t>(errorNumber)},
                  .text = std::string(operation) + ' ' + name,
                  .path = {}};
}

void RaiseEmptyList()
{
    throw Failure{.exception = "VUKBasRangeException",
                  .text = {},
                  .path = "VUKSim/VUKSimContainers.m/src/cow_List",
                  .line = 1};
}

void Check(bool holds, const char* text, const char* source, int line)
{
    if (!holds) {
        ReportAndRaise(false, text, source, line);
    }
}

void Validate(bool holds, const char* text, const char* source, int line)
{
    if (!holds) {
        ReportAndRaise(true, text, source, line);
    }
}

std::vector<Report>& Reports()
{
    static std::vector<Report> reports;
    return reports;
}
} // namespace model
