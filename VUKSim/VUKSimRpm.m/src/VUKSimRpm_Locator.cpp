#include "VUKSimRpm_Locator.h"

#include "VUKSimExcCantDerefLocator.h"
#include "VUKSimExcCantExternalizeLoc.h"
#include "VUKSimRpm_Assert.h"
#include "VUKSimRpm_BStreamRead.h"
#include "VUKSimRpm_BStreamWrite.h"
#include "VUKSimRpm_DirectLocator.h"
#include "VUKSimRpm_MemoryPool.h"
#include "VUKSimRpm_PoolDirectoryImpl.h"
#include "VUKSimRpm_PoolImpl.h"
#include "VUKSimRpm_PoolMap.h"
#include "VUKSimRpm_Swapper.h"
#include "VUKSimRpm_UUID.h"

#include <cstring>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Locator";

namespace at {
constexpr int kLessOtherPool = 81;
constexpr int kLessEqualOtherPool = 87;
constexpr int kDifferenceOtherPool = 93;
constexpr int kReadNoPool = 117;
constexpr int kWriteNoPool = 130;
constexpr int kGuidNoMap = 141;
constexpr int kDirectoryNoPool = 149;
constexpr int kReadOnlyNoPool = 157;
constexpr int kExternalizeNoDirectory = 166;
constexpr int kExternalizeNoMap = 169;
constexpr int kInternalizeNoDirectory = 178;
constexpr int kInternalizeNoMap = 181;
constexpr int kDirectMemoryPool = 191;
constexpr int kDirectNoPool = 195;
} // namespace at

// The stored record: offset, then directory reference, both little-endian, in bytes.
constexpr int kOffsetSize = 8;
constexpr int kReferenceSize = 4;
constexpr unsigned long kRecordSize = kOffsetSize + kReferenceSize;

constexpr int kNoReference = -1; // stored for a locator that names no pool

[[noreturn, gnu::cold]] void ThrowNoPool(int line)
{
    VUKSimExcCantDerefLocator().Throw(kSource, line);
}

[[noreturn, gnu::cold]] void Refuse(const VUKSimRpm_PoolDirectoryImpl* directory, int noDirectory,
                                    int noMap)
{
    if (directory == nullptr) {
        VUKSimExcCantExternalizeLoc().Throw(kSource, noDirectory);
    }
    VUKSimExcCantDerefLocator().Throw(kSource, noMap);
}

// A stream's directory with a living pool map. The lines are where a missing one is reported.
const VUKSimRpm_PoolDirectoryImpl& Checked(const VUKSimRpm_PoolDirectoryImpl* directory,
                                           int noDirectory, int noMap)
{
    if (directory == nullptr || directory->Map().expired()) [[unlikely]] {
        Refuse(directory, noDirectory, noMap);
    }
    return *directory;
}
} // namespace

// The open pool behind the locator, whose file keeps it while one operation lasts. `line` is where
// its absence is reported.
[[gnu::always_inline]] inline VUKSimRpm_PoolImpl& VUKSimRpm_Locator::Resolve(int line) const
{
    if (!mMap.expired()) [[likely]] {
        VUKSimRpm_PoolImpl* const pool = mMap.BorrowLiving().OpenPool(mSlot);
        if (pool != nullptr) [[likely]] {
            return *pool;
        }
    }
    ThrowNoPool(line);
}

bool VUKSimRpm_Locator::operator<(const VUKSimRpm_Locator& that) const
{
    VUKSIMRPM_ASSERT(SamePool(that), kSource, at::kLessOtherPool);
    return mOffset < that.mOffset;
}

bool VUKSimRpm_Locator::operator<=(const VUKSimRpm_Locator& that) const
{
    VUKSIMRPM_ASSERT(SamePool(that), kSource, at::kLessEqualOtherPool);
    return mOffset <= that.mOffset;
}

unsigned long long VUKSimRpm_Locator::operator-(const VUKSimRpm_Locator& that) const
{
    VUKSIMRPM_ASSERT(SamePool(that), kSource, at::kDifferenceOtherPool);
    return mOffset - that.mOffset;
}

VUKString VUKSimRpm_Locator::GetGUID() const
{
    const VUKSimRpm_PoolMap* map = mMap.Borrow();
    if (mSlot < 0 || map == nullptr) {
        VUKSimExcCantDerefLocator().Throw(kSource, at::kGuidNoMap);
    }
    char text[VUKSimRpm_UUID::kLength + 1] = {};
    std::memcpy(text, map->UUID(mSlot), VUKSimRpm_UUID::kLength);
    return VUKString::BuildFromUTF8(text);
}

VUKBasSharedPtr<VUKSimRpm_PoolDirectoryImpl> VUKSimRpm_Locator::Directory() const
{
    return Resolve(at::kDirectoryNoPool).Directory();
}

bool VUKSimRpm_Locator::ReadOnly() const
{
    return Resolve(at::kReadOnlyNoPool).ReadOnly();
}

VUKSimRpm_DirectLocator VUKSimRpm_Locator::DirectLocator() const
{
    VUKSIMRPM_ASSERT(0 == mIMPool, kSource, at::kDirectMemoryPool);
    return Resolve(at::kDirectNoPool).DirectLocator(mOffset);
}

unsigned long VUKSimRpm_Locator::Read(unsigned long length, char* buffer) const
{
    if (mIMPool != nullptr) {
        return ReadThroughImage(length, buffer);
    }
    return Resolve(at::kReadNoPool).Read(mOffset, length, buffer);
}

unsigned long VUKSimRpm_Locator::ReadThroughImage(unsigned long length, char* buffer) const
{
    // The image clips the read at its own end; the pool is deliberately not asked for the rest.
    if (mIMPool->Startin(*this)) {
        return mIMPool->Read(*this, length, buffer);
    }
    return Resolve(at::kReadNoPool).Read(mOffset, length, buffer);
}

unsigned long VUKSimRpm_Locator::Write(unsigned long length, const char* buffer) const
{
    if (mIMPool != nullptr) {
        return WriteThroughImage(length, buffer);
    }
    return Resolve(at::kWriteNoPool).Write(mOffset, length, buffer);
}

unsigned long VUKSimRpm_Locator::WriteThroughImage(unsigned long length, const char* buffer) const
{
    mIMPool->Write(*this, length, buffer);
    return Resolve(at::kWriteNoPool).Write(mOffset, length, buffer);
}

void VUKSimRpm_Locator::ExternalizeImpl(VUKSimRpm_BStreamWrite& stream) const
{
    // The room comes first: a stream too short for the record says so whatever the reference is.
    char* record = stream.PrepWrite(kRecordSize);
    int reference = kNoReference;
    if (mSlot >= 0) {
        reference = Checked(stream.SourceDir(), at::kExternalizeNoDirectory, at::kExternalizeNoMap)
                        .ExternalizeReference(mSlot);
    }
    VUKSimRpm_Swapper::ExternalizeScalarUnsafe(record, &mOffset, kOffsetSize);
    VUKSimRpm_Swapper::ExternalizeScalarUnsafe(record + kOffsetSize, &reference, kReferenceSize);
}

void VUKSimRpm_Locator::InternalizeImpl(VUKSimRpm_BStreamRead& stream)
{
    const char* record = stream.PrepRead(kRecordSize);
    unsigned long long offset = 0;
    int reference = kNoReference;
    VUKSimRpm_Swapper::InternalizeScalarUnsafe(record, &offset, kOffsetSize);
    VUKSimRpm_Swapper::InternalizeScalarUnsafe(record + kOffsetSize, &reference, kReferenceSize);
    VUKSimRpm_MemoryPool* const pool = stream.IMPool();
    if (reference >= 0) {
        const auto& directory =
            Checked(stream.SourceDir(), at::kInternalizeNoDirectory, at::kInternalizeNoMap);
        mSlot = directory.InternalizeReference(reference);
        mMap = directory.Map();
        mOffset = offset;
    } else {
        // Names no pool: what was stored as an offset means nothing, map and slot stay as they are.
        mOffset = 0;
    }
    mIMPool = pool;
}

unsigned long long VUKSimRpm_Locator::FilePosition() const noexcept
{
    const VUKSimRpm_PoolMap* const map = mMap.Borrow();
    const bool known = map != nullptr && mSlot < map->Length();
    const VUKSimRpm_PoolImpl* const pool = known ? map->OpenPool(mSlot) : nullptr;
    return pool != nullptr ? pool->FilePosition(mOffset) : 0;
}
