#include "VUKSimRpm_Pool.h"

#include "VUKSimRpm_PoolDirectoryImpl.h"
#include "VUKSimRpm_PoolHeader.h"
#include "VUKSimRpm_PoolImpl.h"

// No member but Null asks whether the pool is still there: that is the handle's contract.

VUKSimRpm_Pool::VUKSimRpm_Pool(const VUKBasWeakPtr<VUKSimRpm_PoolImpl>& pool) : mPool(pool) {}

bool VUKSimRpm_Pool::Null() const noexcept
{
    return mPool.expired();
}

VUKSimRpm_Locator VUKSimRpm_Pool::Start() const
{
    return mPool.lock()->Start();
}

VUKSimRpm_Locator VUKSimRpm_Pool::End() const
{
    return mPool.lock()->End();
}

unsigned long long VUKSimRpm_Pool::Length() const
{
    return mPool.lock()->DataLength();
}

unsigned int VUKSimRpm_Pool::HeaderSizeBytes() const noexcept
{
    return VUKSimRpm_PoolHeader::kSize;
}

unsigned int VUKSimRpm_Pool::DirectorySizeBytes() const
{
    return mPool.lock()->HeaderSize() - HeaderSizeBytes();
}

VUKString VUKSimRpm_Pool::GetGUID() const
{
    return mPool.lock()->Directory()->GetGUID();
}

bool VUKSimRpm_Pool::ReadOnly() const
{
    return mPool.lock()->ReadOnly();
}

VUKSimRpm_Locator VUKSimRpm_Pool::Allocate(unsigned long long n)
{
    return mPool.lock()->Allocate(n);
}
