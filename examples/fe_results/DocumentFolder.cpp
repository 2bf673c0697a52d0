#include "DocumentFolder.h"

#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <system_error>
#include <unistd.h>

namespace fe {

namespace {

std::filesystem::path MakeTemporary()
{
    std::string path = (std::filesystem::temp_directory_path() / "fe_results-XXXXXX").string();
    if (::mkdtemp(path.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), "cannot make the folder " + path);
    }
    return path;
}

std::filesystem::path MakeBeside(const std::filesystem::path& name)
{
    if (std::filesystem::exists(name) &&
        !(std::filesystem::is_directory(name) && std::filesystem::is_empty(name))) {
        throw std::runtime_error(name.string() + " exists and is not an empty folder");
    }
    std::filesystem::path path = name.string() + ".part-" + std::to_string(::getpid());
    if (!std::filesystem::create_directory(path)) {
        throw std::runtime_error(path.string() + " exists already");
    }
    return path;
}

// Without the slash that a person may have typed behind a folder's name.
std::filesystem::path Named(const std::string& name)
{
    const std::filesystem::path path = std::filesystem::path(name).lexically_normal();
    return path.has_filename() ? path : path.parent_path();
}

} // namespace

DocumentFolder::DocumentFolder(const std::string& name)
    : mName(Named(name)), mPath(name.empty() ? MakeTemporary() : MakeBeside(mName))
{}

DocumentFolder::~DocumentFolder()
{
    std::error_code ignored; // nothing better can be done with it here
    if (!mPath.empty()) {
        std::filesystem::remove_all(mPath, ignored);
    }
}

std::string DocumentFolder::PathOf(const std::string& file) const
{
    return ((mPath.empty() ? mName : mPath) / file).string();
}

void DocumentFolder::Publish()
{
    std::filesystem::rename(mPath, mName);
    mPath.clear();
}

} // namespace fe
