#include "VUKSimRpm_DirectLocator.h"

#include "VUKSimRpm_Assert.h"
#include "VUKSimUttOSFile.h"

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_DirectLocator";

namespace at {
constexpr int kWriteNoFile = 9;
constexpr int kReadNoFile = 15;
} // namespace at
} // namespace

unsigned long VUKSimRpm_DirectLocator::Read(unsigned long length, char* buffer) const
{
    VUKSIMRPM_ASSERT(0 != mFile, kSource, at::kReadNoFile);
    return mFile->ReadAtomic(mPosition, buffer, length);
}

unsigned long VUKSimRpm_DirectLocator::Write(unsigned long length, const char* buffer) const
{
    VUKSIMRPM_ASSERT(0 != mFile, kSource, at::kWriteNoFile);
    return mFile->WriteAtomic(mPosition, buffer, length);
}
