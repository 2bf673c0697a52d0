#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string>

namespace fe {

/// A folder of its own for a test, removed with it.
class ScratchFolder
{
public:
    ScratchFolder()
    {
        std::string path = (std::filesystem::temp_directory_path() / "fe_test-XXXXXX").string();
        if (::mkdtemp(path.data()) == nullptr) {
            throw std::runtime_error("cannot make " + path);
        }
        mPath = path;
    }

    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder() { std::filesystem::remove_all(mPath); }

    [[nodiscard]] std::string PathOf(const std::string& name) const
    {
        return (mPath / name).string();
    }

    /// Makes a file and returns its path.
    std::string Write(const std::string& name, const std::string& content) const
    {
        std::ofstream(PathOf(name), std::ios::binary) << content;
        return PathOf(name);
    }

    [[nodiscard]] std::string Read(const std::string& name) const
    {
        std::ifstream file(PathOf(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    /// The names of all that is in it.
    [[nodiscard]] std::set<std::string> Names() const
    {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(mPath)) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }

private:
    std::filesystem::path mPath;
};

} // namespace fe
