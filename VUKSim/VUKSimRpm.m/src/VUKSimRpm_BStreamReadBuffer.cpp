#include "VUKSimRpm_BStreamReadBuffer.h"

#include "VUKSimExcShortBuffer.h"
#include "VUKSimRpm_Assert.h"
#include "VUKSimRpm_BoundDirectory.h"
#include "VUKSimRpm_PoolDirectoryImpl.h"

#include <cstring>
#include <utility>

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

char* VUKSimRpm_BStreamReadBuffer::PrepRead(unsigned long requestedLength)
{
    VUKSIMRPM_ASSERT(requestedLength > 0, kSource, at::kPrepNothing);
    const unsigned long remaining = mLength - mPosition;
    if (requestedLength > remaining) {
        VUKSimExcShortBuffer(static_cast<unsigned>(requestedLength),
                             static_cast<unsigned>(remaining))
            .Throw(kSource, at::kPrepBeyondEnd);
    }
    // Handed out as char* by the interface that all streams share; the caller only decodes it.
    return const_cast<char*>(mBuffer + std::exchange(mPosition, mPosition + requestedLength));
}

void VUKSimRpm_BStreamReadBuffer::Read(char* destination, unsigned int length)
{
    std::memcpy(destination, PrepRead(length), length);
}

VUKSimRpm_PoolDirectoryImpl* VUKSimRpm_BStreamReadBuffer::SourceDir() const
{
    return mSourceDir.get();
}

VUKSimRpm_MemoryPool* VUKSimRpm_BStreamReadBuffer::IMPool() const
{
    return nullptr;
}
