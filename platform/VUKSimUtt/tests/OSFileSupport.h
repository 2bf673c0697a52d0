// What the tests of OS files share.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "Failures.h"
#include "VUKSimUttOSFile.h"
#include "VUKSimUttOSFileException.h"

inline constexpr char kFileSource[] = "VUKSim/VUKSimUtt.m/src/VUKSimUttOSFile";
inline constexpr char kOpenSource[] = "VUKSim/VUKSimUtt.m/src/VUKSimUttOSFileOpen";

/// Where a failure must come from.
struct Site
{
    const char* path;
    int line;
};

/// `call` throws the exception of OS files with exactly these values, and no check is reported.
template <class Call>
testing::AssertionResult RaisesAt(Site site, Call&& call, const std::string& operation,
                                  int errorNumber, const std::string& fileName,
                                  unsigned long long position = 0, unsigned long long length = 0)
{
    return failures::Raises<VUKSimUttOSFileException>(
        std::forward<Call>(call), {}, [&](const auto& raised) {
            return failures::Says(raised, site.path, site.line,
                                  raised.Operation() == operation &&
                                      raised.ErrorNumber() == errorNumber &&
                                      raised.FileName() == fileName &&
                                      raised.Position() == position && raised.Length() == length);
        });
}

/// Descriptors that this process has open.
inline int OpenDescriptors()
{
    const std::filesystem::directory_iterator folder("/proc/self/fd");
    return static_cast<int>(std::distance(folder, std::filesystem::directory_iterator()));
}

/// Byte i is i / 4096 * 7 + i, so that neither neighbouring bytes nor neighbouring pages are alike.
inline std::string Pattern(std::size_t size)
{
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<char>(i / 4096 * 7 + i);
    }
    return bytes;
}

/// Up to `length` bytes from `position`, as they came.
inline std::string ReadAt(VUKSimUttOSFile& file, unsigned long long position, unsigned long length)
{
    std::string text(length, '?');
    text.resize(file.ReadAtomic(position, text.data(), length));
    return text;
}

/// Makes `path` the working folder for as long as it lives.
class WorkingFolder
{
public:
    explicit WorkingFolder(const std::filesystem::path& path)
        : mBefore(std::filesystem::current_path())
    {
        std::filesystem::current_path(path);
    }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;
    ~WorkingFolder()
    {
        std::error_code ignored; // a destructor has nobody to tell
        std::filesystem::current_path(mBefore, ignored);
    }

private:
    std::filesystem::path mBefore;
};
