#include "VUKSimRpm_BStreamReadBuffer.h"

#include "VUKSimExcShortBuffer.h"
#include "VUKSimRpm_Assert.h"
#include "VUKSimRpm_BoundDirectory.h"
#include "VUKSimRpm_PoolDirectoryImpl.h"

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_BStreamReadBuffer";

namespace at {
constexpr int kBindPoolGone = 22;
constexpr int kPrepNothing = 36;
constexpr int kPrepBeyondEnd = 40;
} // namespace at
} // namespace

VUKSimRpm_BStreamReadBuffer::VUKSimRpm_BStreamReadBuffer(const char* buffer,
                                                         unsigned long length) noexcept
    : mBuffer(buffer), mLength(length)
{}

VUKSimRpm_BStreamReadBuffer::VUKSimRpm_BStreamReadBuffer(const char* buffer, unsigned long length,
                                                         const VUKSimRpm_Pool& pool)
    : mBuffer(buffer), mLength(length),
      mSourceDir(VUKSimRpm_BoundDirectory(pool, kSource, at::kBindPoolGone))
{}

VUKSimRpm_BStreamReadBuffer::~VUKSimRpm_BStreamReadBuffer() = default;

VUKSimRpm_PoolDirectoryImpl* VUKSimRpm_BStreamReadBuffer::SourceDir() const
{
    return mSourceDir.get();
}

VUKSimRpm_MemoryPool* VUKSimRpm_BStreamReadBuffer::IMPool() const
{
    return nullptr;
}

// Says why there are no such bytes.
void VUKSimRpm_BStreamReadBuffer::Refuse(unsigned long requestedLength) const
{
    VUKSIMRPM_ASSERT(requestedLength > 0, kSource, at::kPrepNothing);
    VUKSimExcShortBuffer(static_cast<unsigned>(requestedLength),
                         static_cast<unsigned>(mLength - mPosition))
        .Throw(kSource, at::kPrepBeyondEnd);
}
