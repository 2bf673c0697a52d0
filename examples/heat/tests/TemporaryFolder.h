#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace heat {

/// A folder of its own for one test, gone with everything in it when the test ends.
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "heat-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("cannot make a folder like " + name);
        }
        mPath = name;
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }

    [[nodiscard]] std::string Path(const std::string& name) const
    {
        return (mPath / name).string();
    }

private:
    std::filesystem::path mPath;
};

inline std::string FileBytes(const std::string& name)
{
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void WriteFileBytes(const std::string& name, const std::string& bytes)
{
    std::ofstream(name, std::ios::binary | std::ios::trunc) << bytes;
}

} // namespace heat
