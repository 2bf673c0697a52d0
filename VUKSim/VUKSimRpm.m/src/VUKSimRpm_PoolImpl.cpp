#include "VUKSimRpm_PoolImpl.h"

#include "VUKSimExcCorruptDirectory.h"
#include "VUKSimExcCorruptHeader.h"
#include "VUKSimExcIOBounds.h"
#include "VUKSimExcImmutablePool.h"
#include "VUKSimExcNeedUpgrade.h"
#include "VUKSimExcNotSimFile.h"
#include "VUKSimExcUserSigMismatch.h"
#include "VUKSimRpm_Buffer.h"
#include "VUKSimRpm_FileImpl.h"
#include "VUKSimRpm_PoolDirectoryImpl.h"
#include "VUKSimRpm_PoolHeader.h"
#include "VUKSimRpm_ReadWindow.h"
#include "VUKSimUttUtils.h"

#include <limits>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolImpl";

namespace at {
constexpr int kLoadShortHeader = 78;
constexpr int kLoadNoSignature = 81;
constexpr int kLoadOtherVersion = 86;
constexpr int kLoadOtherUser = 89;
constexpr int kLoadShortDirectory = 106;
constexpr int kAllocateImmutable = 163;
constexpr int kAllocateWraps = 168;
constexpr int kWriteOutside = 186;
} // namespace at

constexpr unsigned long long kHeaderSize = VUKSimRpm_PoolHeader::kSize;
constexpr unsigned long long kEntrySize = VUKSimRpm_PoolHeader::kEntrySize;

[[noreturn, gnu::cold]] void ThrowOutside(unsigned long long offset, unsigned long length,
                                          unsigned long long dataLength)
{
    VUKSimExcIOBounds(offset, offset + length, dataLength).Throw(kSource, at::kWriteOutside);
}

// More entries than this have no header size of 32 bits.
constexpr unsigned long long kMaxDirectoryCount =
    (std::numeric_limits<unsigned int>::max() - kHeaderSize) / kEntrySize;
} // namespace

VUKSimRpm_PoolImpl::VUKSimRpm_PoolImpl(
    VUKSimRpm_FileImpl& file, const VUKBasSharedPtr<VUKSimRpm_PoolDirectoryImpl>& directory,
    unsigned long long position)
    : mFile(file), mDirectory(directory), mPosition(position)
{}

VUKSimRpm_PoolImpl::~VUKSimRpm_PoolImpl() = default;

int VUKSimRpm_PoolImpl::OwnSlot() const
{
    return mDirectory->OwnSlot();
}

VUKSimRpm_Locator VUKSimRpm_PoolImpl::Start() const
{
    return {mDirectory->Map(), OwnSlot(), 0, nullptr};
}

VUKSimRpm_Locator VUKSimRpm_PoolImpl::End() const
{
    return {mDirectory->Map(), OwnSlot(), DataLength(), nullptr};
}

bool VUKSimRpm_PoolImpl::ReadOnly() const noexcept
{
    return mFile.ReadOnly();
}

void VUKSimRpm_PoolImpl::Init()
{
    const auto entries = static_cast<unsigned long long>(mDirectory->Length());
    mHeaderSize = static_cast<unsigned int>(kHeaderSize + kEntrySize * entries);
    mLength = mHeaderSize;
}

void VUKSimRpm_PoolImpl::Load(unsigned long long end)
{
    VUKSimRpm_ReadWindow window(mFile);
    Load(end, window);
}

void VUKSimRpm_PoolImpl::Load(unsigned long long end, VUKSimRpm_ReadWindow& window)
{
    const char* const header = window.Bytes(mPosition, kHeaderSize);
    if (header == nullptr) {
        VUKSimExcCorruptHeader().Throw(kSource, at::kLoadShortHeader);
    }
    if (!VUKSimRpm_PoolHeader::HasSignature(header)) {
        VUKSimExcNotSimFile().Throw(kSource, at::kLoadNoSignature);
    }
    const signed char version = VUKSimRpm_PoolHeader::Version(header);
    if (version != VUKSimRpm_PoolHeader::kCurrentVersion) {
        VUKSimExcNeedUpgrade(static_cast<unsigned>(VUKSimRpm_PoolHeader::kCurrentVersion),
                             static_cast<unsigned>(static_cast<int>(version)),
                             VUKSimUttUtils::Copy(mFile.FileName()))
            .Throw(kSource, at::kLoadOtherVersion);
    }
    const auto values = VUKSimRpm_PoolHeader::Decode(header);
    if (values.userSignature != mFile.Sig()) {
        VUKSimExcUserSigMismatch().Throw(kSource, at::kLoadOtherUser);
    }
    mLength = values.length == 0 ? end - mPosition : values.length;
    mReserved1 = values.reserved1;
    mReserved2 = values.reserved2;
    LoadDirectory(values.directoryCount, end, window);
    mHeaderSize = static_cast<unsigned int>(kHeaderSize + kEntrySize * values.directoryCount);
}

void VUKSimRpm_PoolImpl::LoadDirectory(unsigned int count, unsigned long long end,
                                       VUKSimRpm_ReadWindow& window)
{
    // Held against what the file has before anything is allocated: the count may be anything.
    const unsigned long long size = kEntrySize * count;
    const unsigned long long begin = mPosition + kHeaderSize;
    if (count > kMaxDirectoryCount || begin > end || size > end - begin ||
        !mFile.ClaimDirectoryBytes(size)) {
        VUKSimExcCorruptDirectory().Throw(kSource, at::kLoadShortDirectory);
    }
    const char* const records = window.Bytes(begin, size);
    if (records == nullptr) {
        VUKSimExcCorruptDirectory().Throw(kSource, at::kLoadShortDirectory);
    }
    mDirectory->Load(records, static_cast<int>(count));
}

void VUKSimRpm_PoolImpl::Dump()
{
    const auto entries = static_cast<unsigned long long>(mDirectory->Length());
    const unsigned long long size = kHeaderSize + kEntrySize * entries;
    const VUKSimRpm_Buffer bytes(size);
    VUKSimRpm_PoolHeader::Encode({mFile.Sig(), mImmutable ? mLength : 0, mReserved1, mReserved2,
                                  static_cast<unsigned int>(entries)},
                                 bytes.Bytes());
    mDirectory->Dump(bytes.Bytes() + kHeaderSize);
    mFile.Extend(mPosition + size);
    mFile.Write(mPosition, size, bytes.Bytes());
}

VUKSimRpm_Locator VUKSimRpm_PoolImpl::Allocate(unsigned long long n)
{
    if (mImmutable) {
        VUKSimExcImmutablePool().Throw(kSource, at::kAllocateImmutable);
    }
    const unsigned long long oldDataLength = DataLength();
    // A length that was read from a damaged header may end behind 2^64 already, and counts from 0.
    const unsigned long long end = mPosition + mLength;
    if (n > std::numeric_limits<unsigned long long>::max() - end) {
        VUKSimExcIOBounds(oldDataLength, oldDataLength + n, oldDataLength)
            .Throw(kSource, at::kAllocateWraps);
    }
    // The length first: should the file refuse to grow, it stays raised.
    mLength += n;
    mFile.Extend(mPosition + mLength);
    return {mDirectory->Map(), OwnSlot(), oldDataLength, nullptr};
}

unsigned long VUKSimRpm_PoolImpl::Read(unsigned long long offset, unsigned long length,
                                       char* buffer) const
{
    return mFile.Read(FilePosition(offset), length, buffer);
}

unsigned long VUKSimRpm_PoolImpl::Write(unsigned long long offset, unsigned long length,
                                        const char* buffer) const
{
    // The sum may wrap: a locator moved back before the data then reaches the pool's own beginning.
    const unsigned long long dataLength = DataLength();
    if (offset + length > dataLength) [[unlikely]] {
        ThrowOutside(offset, length, dataLength);
    }
    return mFile.Write(FilePosition(offset), length, buffer);
}

VUKSimRpm_DirectLocator VUKSimRpm_PoolImpl::DirectLocator(unsigned long long offset) const
{
    return mFile.DirectLocator(FilePosition(offset));
}
