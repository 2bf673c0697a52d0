#include "VUKSimRpm_File.h"

#include "VUKSimExcCantDerefLocator.h"
#include "VUKSimExcCantGetFile.h"
#include "VUKSimRpm_FileImpl.h"
#include "VUKSimRpm_PoolImpl.h"

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_File";

namespace at {
constexpr int kFileGone = 20;
constexpr int kAppendPoolGone = 97;
} // namespace at
} // namespace

VUKSimRpm_File::VUKSimRpm_File(const VUKBasWeakPtr<VUKSimRpm_FileImpl>& file) : mFile(file) {}

bool VUKSimRpm_File::Null() const noexcept
{
    return mFile.expired();
}

VUKString VUKSimRpm_File::FileName() const
{
    return Live()->FileName();
}

bool VUKSimRpm_File::ReadOnly() const
{
    return Live()->ReadOnly();
}

unsigned int VUKSimRpm_File::PoolCount() const
{
    return Live()->PoolCount();
}

VUKSimRpm_Pool VUKSimRpm_File::Pool(unsigned int index) const
{
    return VUKSimRpm_Pool(Live()->Pool(index));
}

VUKSimRpm_Pool VUKSimRpm_File::Pool() const
{
    return VUKSimRpm_Pool(Live()->Pool());
}

VUKSimRpm_Locator VUKSimRpm_File::Start() const
{
    return Pool().Start();
}

VUKSimRpm_Locator VUKSimRpm_File::End() const
{
    return Pool().End();
}

VUKSimRpm_Locator VUKSimRpm_File::Allocate(unsigned long long length)
{
    return Pool().Allocate(length);
}

void VUKSimRpm_File::NewPool(bool ownEntryOnly, const char* uuid)
{
    Live()->NewPool(ownEntryOnly, uuid);
}

void VUKSimRpm_File::AppendPool(const VUKSimRpm_Pool& pool)
{
    const auto file = Live();
    const auto source = pool.Impl().lock();
    if (!source) {
        VUKSimExcCantDerefLocator().Throw(kSource, at::kAppendPoolGone);
    }
    file->AppendPool(*source);
}

void VUKSimRpm_File::Flush()
{
    Live()->Flush();
}

VUKBasSharedPtr<VUKSimRpm_FileImpl> VUKSimRpm_File::Live() const
{
    auto file = mFile.lock();
    if (!file) {
        VUKSimExcCantGetFile().Throw(kSource, at::kFileGone);
    }
    return file;
}
