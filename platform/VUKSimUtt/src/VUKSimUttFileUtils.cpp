#include "VUKSimUttFileUtils.h"

#include <cerrno>

#include "VUKSimUttRetry.h"
#include "VUKSimUttSystemCalls.h"

namespace {

bool LookUp(const VUKString& name, VUKSimUttFileStatus& status)
{
    return VUKSimUttRetry(
               [&] { return VUKSimUttSystemCalls::Current().stat(name.UTF8(), &status); }) == 0;
}

} // namespace

bool VUKSimUttFileUtils::FileExists(const VUKString& name)
{
    VUKSimUttFileStatus status;
    return LookUp(name, status) || (errno != ENOENT && errno != ENOTDIR);
}

bool VUKSimUttFileUtils::SameFile(const VUKString& first, const VUKString& second)
{
    if (first == second) {
        return FileExists(first);
    }
    VUKSimUttFileStatus one;
    VUKSimUttFileStatus other;
    return LookUp(first, one) && LookUp(second, other) && one.st_dev == other.st_dev &&
           one.st_ino == other.st_ino;
}
