#include "VUKSimUttFileUtils.h"

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
    return LookUp(name, status);
}

bool VUKSimUttFileUtils::SameFile(const VUKString& first, const VUKString& second)
{
    VUKSimUttFileStatus one;
    VUKSimUttFileStatus other;
    return LookUp(first, one) && LookUp(second, other) && one.st_dev == other.st_dev &&
           one.st_ino == other.st_ino;
}
