#pragma once

#include "VUKString.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

/// A fresh, empty folder of this test alone, removed with all it holds when the object dies.
///
/// Files in it are named relative to it, as in `Read("a.sim")`. What cannot be read or written is a
/// std::runtime_error, so that a test never goes on with bytes it does not have.
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "vuksim-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("cannot make the folder " + name);
        }
        mPath = name;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder()
    {
        std::error_code ignored; // what is left behind is the system's to sweep
        std::filesystem::remove_all(mPath, ignored);
    }

    /// The full name of the file `name`, there or not; and the same as the library takes it.
    [[nodiscard]] std::string Path(const std::string& name) const
    {
        return (mPath / name).string();
    }
    [[nodiscard]] VUKString File(const std::string& name) const { return {Path(name).c_str()}; }

    [[nodiscard]] bool Has(const std::string& name) const
    {
        return std::filesystem::exists(mPath / name);
    }

    /// In bytes, as the file system has it now.
    [[nodiscard]] std::uintmax_t Size(const std::string& name) const
    {
        return std::filesystem::file_size(mPath / name);
    }

    [[nodiscard]] std::string Read(const std::string& name) const
    {
        std::ifstream in(mPath / name, std::ios::binary);
        std::string content(std::istreambuf_iterator<char>(in), {});
        if (!in.good() && !in.eof()) {
            throw std::runtime_error("cannot read " + Path(name));
        }
        return content;
    }

    /// Makes the file, or replaces what it holds, and returns its full name for the library.
    VUKString Write(const std::string& name, const std::string& content) const
    {
        std::ofstream out(mPath / name, std::ios::binary | std::ios::trunc);
        out << content << std::flush;
        if (!out) {
            throw std::runtime_error("cannot write " + Path(name));
        }
        return File(name);
    }

    /// Files and folders directly in it.
    [[nodiscard]] int Count() const
    {
        return static_cast<int>(std::distance(std::filesystem::directory_iterator(mPath),
                                              std::filesystem::directory_iterator()));
    }

private:
    std::filesystem::path mPath;
};
