// What a call must raise: plain functions for EXPECT_TRUE that hold class, values, path and line
// against what the test writes out, and see whether the report went through VUKSimUttAssert.
#pragma once

#include "VUKBasAssertException.h"
#include "VUKBasException.h"
#include "VUKBasRangeException.h"
#include "VUKSimExc.h"
#include "VUKSimUttAssert.h"
#include "VUKSimUttOSFileException.h"

#include <gtest/gtest.h>

#include <exception>
#include <new>
#include <sstream>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

/// Keeps the reports of failed checks instead of printing them, for as long as it lives.
class ReportRecorder
{
public:
    struct Report
    {
        VUKSimUttAssert::Kind kind;
        std::string text;
        std::string path;
        int line;

        bool operator==(const Report&) const = default;
    };

    ReportRecorder()
        : mOuter(std::exchange(sActive, this)), mHandler(VUKSimUttAssert::SetHandler(&Keep))
    {}
    ReportRecorder(const ReportRecorder&) = delete;
    ReportRecorder& operator=(const ReportRecorder&) = delete;
    ~ReportRecorder()
    {
        VUKSimUttAssert::SetHandler(mHandler);
        sActive = mOuter;
    }

    /// In the order in which they came.
    [[nodiscard]] const std::vector<Report>& Reports() const noexcept { return mReports; }

private:
    static void Keep(VUKSimUttAssert::Kind kind, const char* text, const char* path, int line)
    {
        sActive->mReports.push_back({kind, text, path, line});
    }

    static inline ReportRecorder* sActive = nullptr;

    std::vector<Report> mReports;
    ReportRecorder* mOuter; // the one in force before; null for none
    VUKSimUttAssert::Handler mHandler;
};

namespace failures {

/// For messages: one report, or one exception that was not the expected one.
inline std::string Describe(const ReportRecorder::Report& report)
{
    std::ostringstream out;
    out << (report.kind == VUKSimUttAssert::Kind::Assertion ? "assertion" : "validation") << " \""
        << report.text << "\" at " << report.path << ':' << report.line;
    return out.str();
}

inline std::string Describe(const std::exception& raised)
{
    return std::string(typeid(raised).name()) + ": " + raised.what();
}

inline testing::AssertionResult Reported(const std::vector<ReportRecorder::Report>& found,
                                         const std::vector<ReportRecorder::Report>& expected)
{
    if (found == expected) {
        return testing::AssertionSuccess();
    }
    auto failure = testing::AssertionFailure() << "reports of failed checks:";
    for (const auto& report : found) {
        failure << "\n  found " << Describe(report);
    }
    for (const auto& report : expected) {
        failure << "\n  expected " << Describe(report);
    }
    return failure;
}

/// Runs `call`, which must throw an Exception and no class derived from it. Then `check` judges
/// what was caught, and the reports must be exactly `reports`.
template <class Exception, class Call, class Check>
testing::AssertionResult Raises(Call&& call, const std::vector<ReportRecorder::Report>& reports,
                                Check&& check)
{
    const ReportRecorder recorder;
    try {
        std::forward<Call>(call)();
    } catch (const Exception& raised) {
        if (typeid(raised) != typeid(Exception)) {
            return testing::AssertionFailure() << "raised " << Describe(raised);
        }
        if (const auto reported = Reported(recorder.Reports(), reports); !reported) {
            return reported;
        }
        return std::forward<Check>(check)(raised);
    } catch (const std::exception& raised) {
        return testing::AssertionFailure() << "raised " << Describe(raised);
    }
    return testing::AssertionFailure() << "raised nothing";
}

/// Whether the exception says where it was raised, and `values` holds. The message is its sentence.
inline testing::AssertionResult Says(const VUKBasException& raised, const std::string& path,
                                     int line, bool values = true)
{
    if (!values) {
        return testing::AssertionFailure() << "other values: " << raised.what();
    }
    if (raised.Path() != path || raised.Line() != line) {
        return testing::AssertionFailure()
               << "other place than " << path << ':' << line << ": " << raised.what();
    }
    return testing::AssertionSuccess();
}

template <class Call>
testing::AssertionResult RaisesCheck(VUKSimUttAssert::Kind kind, Call&& call,
                                     const std::string& text, const std::string& path, int line)
{
    return Raises<VUKBasAssertException>(
        std::forward<Call>(call), {{kind, text, path, line}},
        [&](const auto& raised) { return Says(raised, path, line, raised.Text() == text); });
}
} // namespace failures

/// `call` fails the check `text` of the code's own consistency: reported once, then thrown.
template <class Call>
testing::AssertionResult RaisesAssertion(Call&& call, const std::string& text,
                                         const std::string& path, int line)
{
    return failures::RaisesCheck(VUKSimUttAssert::Kind::Assertion, std::forward<Call>(call), text,
                                 path, line);
}

/// `call` fails the check `text` of a value from a caller or a file: reported once, then thrown.
template <class Call>
testing::AssertionResult RaisesValidation(Call&& call, const std::string& text,
                                          const std::string& path, int line)
{
    return failures::RaisesCheck(VUKSimUttAssert::Kind::Validation, std::forward<Call>(call), text,
                                 path, line);
}

/// `call` throws exactly an Exception from that place, and no failed check is reported.
template <class Exception, class Call>
testing::AssertionResult Raises(Call&& call, const std::string& path, int line)
{
    return failures::Raises<Exception>(std::forward<Call>(call), {}, [&](const auto& raised) {
        return failures::Says(raised, path, line);
    });
}

template <class Call>
testing::AssertionResult RaisesCantCreateFile(Call&& call, const std::string& name,
                                              const std::string& path, int line)
{
    return failures::Raises<VUKSimExcCantCreateFile>(
        std::forward<Call>(call), {}, [&](const auto& raised) {
            return failures::Says(raised, path, line, raised.FileName() == name);
        });
}

template <class Call>
testing::AssertionResult RaisesNeedUpgrade(Call&& call, unsigned int expected, unsigned int found,
                                           const std::string& name, const std::string& path,
                                           int line)
{
    return failures::Raises<VUKSimExcNeedUpgrade>(
        std::forward<Call>(call), {}, [&](const auto& raised) {
            return failures::Says(raised, path, line,
                                  raised.Expected() == expected && raised.Found() == found &&
                                      raised.FileName() == name);
        });
}

template <class Call>
testing::AssertionResult RaisesIOBounds(Call&& call, unsigned long long offset,
                                        unsigned long long end, unsigned long long dataLength,
                                        const std::string& path, int line)
{
    return failures::Raises<VUKSimExcIOBounds>(
        std::forward<Call>(call), {}, [&](const auto& raised) {
            return failures::Says(raised, path, line,
                                  raised.Offset() == offset && raised.End() == end &&
                                      raised.DataLength() == dataLength);
        });
}

template <class Call>
testing::AssertionResult RaisesShortBuffer(Call&& call, unsigned int requested,
                                           unsigned int available, const std::string& path,
                                           int line)
{
    return failures::Raises<VUKSimExcShortBuffer>(
        std::forward<Call>(call), {}, [&](const auto& raised) {
            return failures::Says(raised, path, line,
                                  raised.Requested() == requested &&
                                      raised.Available() == available);
        });
}

template <class Call>
testing::AssertionResult RaisesRequestTooBig(Call&& call, unsigned int requested,
                                             unsigned int available, const std::string& path,
                                             int line)
{
    return failures::Raises<VUKSimExcRequestTooBig>(
        std::forward<Call>(call), {}, [&](const auto& raised) {
            return failures::Says(raised, path, line,
                                  raised.Requested() == requested &&
                                      raised.Available() == available);
        });
}

/// A container's own out-of-range error; where in the container it was raised plays no part.
template <class Call>
testing::AssertionResult RaisesRange(Call&& call, long long index, long long length)
{
    return failures::Raises<VUKBasRangeException>(
        std::forward<Call>(call), {}, [&](const auto& raised) {
            return failures::Says(raised, raised.Path(), raised.Line(),
                                  raised.Index() == index && raised.Length() == length);
        });
}

/// The platform's file error of that operation and `errno` value, from wherever it was raised.
template <class Call>
testing::AssertionResult RaisesFileError(Call&& call, const std::string& operation, int errorNumber)
{
    return failures::Raises<VUKSimUttOSFileException>(
        std::forward<Call>(call), {}, [&](const auto& raised) {
            return failures::Says(raised, raised.Path(), raised.Line(),
                                  raised.Operation() == operation &&
                                      raised.ErrorNumber() == errorNumber);
        });
}

/// `call` runs out of memory: std::bad_alloc or a class derived from it, and no report.
template <class Call>
testing::AssertionResult RaisesBadAlloc(Call&& call)
{
    const ReportRecorder recorder;
    try {
        std::forward<Call>(call)();
    } catch (const std::bad_alloc&) {
        return failures::Reported(recorder.Reports(), {});
    } catch (const std::exception& raised) {
        return testing::AssertionFailure() << "raised " << failures::Describe(raised);
    }
    return testing::AssertionFailure() << "raised nothing";
}
