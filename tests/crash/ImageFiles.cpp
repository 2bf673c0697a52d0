#include "ImageFiles.h"

#include <stdexcept>

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

ImageFiles::~ImageFiles()
{
    for (const int descriptor : mDescriptors) {
        ::close(descriptor);
    }
}

VUKString ImageFiles::Write(std::size_t number, const std::string& content)
{
    while (mDescriptors.size() <= number) {
        const int descriptor = ::memfd_create("crash image", MFD_CLOEXEC);
        if (descriptor == -1) {
            throw std::runtime_error("no file in memory");
        }
        mDescriptors.push_back(descriptor);
    }
    const auto size = static_cast<ssize_t>(content.size());
    if (::pwrite(mDescriptors[number], content.data(), content.size(), 0) != size ||
        ::ftruncate(mDescriptors[number], size) != 0) {
        throw std::runtime_error("cannot write a file in memory");
    }
    return Name(number);
}

VUKString ImageFiles::Name(std::size_t number) const
{
    return ("/proc/self/fd/" + std::to_string(mDescriptors.at(number))).c_str();
}

std::string ImageFiles::Read(std::size_t number) const
{
    struct stat status = {};
    if (::fstat(mDescriptors.at(number), &status) != 0) {
        throw std::runtime_error("cannot measure a file in memory");
    }
    std::string content(static_cast<std::size_t>(status.st_size), '\0');
    if (::pread(mDescriptors.at(number), content.data(), content.size(), 0) != status.st_size) {
        throw std::runtime_error("cannot read a file in memory");
    }
    return content;
}
