#include "VUKSimRpm_FileImpl.h"

#include "VUKSimExcAllocReadOnly.h"
#include "VUKSimExcNewPoolReadOnly.h"
#include "VUKSimExcPoolAlreadyInDoc.h"
#include "VUKSimExcShortPool.h"
#include "VUKSimExcWriteReadOnly.h"
#include "VUKSimRpm_Assert.h"
#include "VUKSimRpm_Buffer.h"
#include "VUKSimRpm_DocumentImpl.h"
#include "VUKSimRpm_PoolDirectoryImpl.h"
#include "VUKSimRpm_PoolImpl.h"
#include "VUKSimRpm_PoolMap.h"
#include "VUKSimRpm_ReadWindow.h"

#include <algorithm>
#include <limits>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_FileImpl";

namespace at {
constexpr int kNewPoolReadOnly = 101;
constexpr int kAppendPoolReadOnly = 150;
constexpr int kAppendPoolDuplicate = 153;
constexpr int kAppendPoolShort = 190;
constexpr int kExtendReadOnly = 231;
constexpr int kWriteReadOnly = 255;
constexpr int kPoolNone = 270;
constexpr int kPoolBeyondEnd = 277;
} // namespace at

[[noreturn, gnu::cold]] void ThrowReadOnly()
{
    VUKSimExcWriteReadOnly().Throw(kSource, at::kWriteReadOnly);
}

constexpr unsigned long long kCopyChunk = 262144; // bytes
} // namespace

VUKSimRpm_FileImpl::VUKSimRpm_FileImpl(VUKSimRpm_DocumentImpl& document) : mDocument(document) {}

VUKSimRpm_FileImpl::~VUKSimRpm_FileImpl() = default;

const unsigned int& VUKSimRpm_FileImpl::Sig() const noexcept
{
    return mDocument.Sig();
}

unsigned int VUKSimRpm_FileImpl::PoolCount() const noexcept
{
    return static_cast<unsigned int>(mPools.size());
}

VUKBasWeakPtr<VUKSimRpm_PoolImpl> VUKSimRpm_FileImpl::Pool(unsigned int index) const
{
    VUKSIMRPM_VALIDATE(index < mPools.size(), kSource, at::kPoolBeyondEnd);
    return mPools[index];
}

VUKBasWeakPtr<VUKSimRpm_PoolImpl> VUKSimRpm_FileImpl::Pool() const
{
    VUKSIMRPM_ASSERT(mCurrentPoolIndex >= 0, kSource, at::kPoolNone);
    return mPools[mCurrentPoolIndex];
}

VUKSimRpm_DirectLocator VUKSimRpm_FileImpl::DirectLocator(unsigned long long position)
{
    VUKSimRpm_DirectLocator locator;
    locator.mFile = &mFile;
    locator.mPosition = position;
    return locator;
}

void VUKSimRpm_FileImpl::OpenRead(const VUKString& name)
{
    mFile.OpenRead(name);
    mLogicalEnd = mFile.FileSize();
    mWrittenEnd = mLogicalEnd;
    Load();
}

void VUKSimRpm_FileImpl::OpenUpdate(const VUKString& name)
{
    mFile.OpenUpdate(name);
    mLogicalEnd = mFile.FileSize();
    mWrittenEnd = mLogicalEnd;
    Load();
}

void VUKSimRpm_FileImpl::OpenWrite(const VUKString& name, bool ownEntryOnly)
{
    mFile.OpenWrite(name);
    NewPool(ownEntryOnly, nullptr);
}

void VUKSimRpm_FileImpl::CreateTemporary(const VUKString& name, bool ownEntryOnly)
{
    mFile.CreateTemporary(name);
    NewPool(ownEntryOnly, nullptr);
}

void VUKSimRpm_FileImpl::CreateGenerated(const VUKString& name, const VUKString& second,
                                         bool ownEntryOnly)
{
    // The file's own flag is always false; the caller's is for the pool alone.
    mFile.CreateGenerated(name, second, false);
    NewPool(ownEntryOnly, nullptr);
}

unsigned long VUKSimRpm_FileImpl::Read(unsigned long long position, unsigned long length,
                                       char* buffer)
{
    return mFile.ReadAtomic(position, buffer, length);
}

unsigned long VUKSimRpm_FileImpl::Write(unsigned long long position, unsigned long length,
                                        const char* buffer)
{
    if (ReadOnly()) [[unlikely]] {
        ThrowReadOnly();
    }
    const unsigned long written = mFile.WriteAtomic(position, buffer, length);
    if (written > 0) { // nothing, written behind the end, leaves the file as it is
        mWrittenEnd = std::max(mWrittenEnd, position + written);
    }
    return written;
}

void VUKSimRpm_FileImpl::Extend(unsigned long long newEnd)
{
    if (newEnd > mLogicalEnd) {
        if (ReadOnly()) {
            VUKSimExcAllocReadOnly().Throw(kSource, at::kExtendReadOnly);
        }
        mLogicalEnd = newEnd;
    }
}

void VUKSimRpm_FileImpl::Truncate(const unsigned long long& size)
{
    mFile.Truncate(size);
    mLogicalEnd = size;
    mWrittenEnd = size;
}

void VUKSimRpm_FileImpl::Flush()
{
    if (!ReadOnly() && mCurrentPoolIndex >= 0) {
        mPools[mCurrentPoolIndex]->Dump();
    }
    mFile.Flush();
}

void VUKSimRpm_FileImpl::Close()
{
    if (!mFile.IsOpen()) {
        return; // the system failed to close it the last time, but closed it is
    }
    Flush();
    const auto map = mDocument.PoolMap().lock();
    for (const auto& pool : mPools) {
        map->Remove(pool->OwnSlot());
    }
    mFile.Close();
}

VUKBasWeakPtr<VUKSimRpm_PoolImpl> VUKSimRpm_FileImpl::NewPool(bool ownEntryOnly, const char* uuid)
{
    if (ReadOnly()) {
        VUKSimExcNewPoolReadOnly().Throw(kSource, at::kNewPoolReadOnly);
    }
    // The new slot comes first, so that the new directory still names a pool dropped here.
    const auto directory = NewDirectory();
    directory->Init(ownEntryOnly, uuid);
    DropEmptyCurrentPool();

    const auto pool = VUKBasMakeShared<VUKSimRpm_PoolImpl>(*this, directory, mLogicalEnd);
    pool->Init();
    FreezeCurrentPool();
    AddPool(pool);
    MakeCurrent(pool);
    return pool;
}

VUKBasWeakPtr<VUKSimRpm_PoolImpl> VUKSimRpm_FileImpl::AppendPool(VUKSimRpm_PoolImpl& source)
{
    if (ReadOnly()) {
        VUKSimExcNewPoolReadOnly().Throw(kSource, at::kAppendPoolReadOnly);
    }
    const auto sourceMap = source.Directory()->Map().lock();
    const char* uuid = sourceMap->UUID(source.OwnSlot());
    if (mDocument.PoolMap().lock()->IsDuplicate(uuid)) {
        VUKSimExcPoolAlreadyInDoc().Throw(kSource, at::kAppendPoolDuplicate);
    }
    DropEmptyCurrentPool();
    const unsigned long long destination = mLogicalEnd;
    CopyFrom(source, destination);

    mDirectoryBytes = mLogicalEnd;
    VUKSimRpm_ReadWindow window(*this);
    const auto pool = LoadPool(destination, window);
    FreezeCurrentPool();
    AddPool(pool);
    MakeCurrent(pool);
    return pool;
}

bool VUKSimRpm_FileImpl::ClaimDirectoryBytes(unsigned long long size) noexcept
{
    if (size > mDirectoryBytes) {
        return false;
    }
    mDirectoryBytes -= size;
    return true;
}

void VUKSimRpm_FileImpl::Load()
{
    mDirectoryBytes = mLogicalEnd;
    VUKSimRpm_ReadWindow window(*this);
    // Ends whatever lengths the pools claim: one that leads back meets its own open UUID.
    for (unsigned long long position = 0; position < mLogicalEnd;) {
        const auto pool = LoadPool(position, window);
        AddPool(pool);
        position += pool->Length();
    }
    if (!ReadOnly() && mCurrentPoolIndex >= 0) {
        const auto& current = mPools[mCurrentPoolIndex];
        current->SetImmutable(false);
        current->Dump();
    }
}

VUKBasSharedPtr<VUKSimRpm_PoolDirectoryImpl> VUKSimRpm_FileImpl::NewDirectory() const
{
    return VUKBasMakeShared<VUKSimRpm_PoolDirectoryImpl>(mDocument.PoolMap());
}

VUKBasSharedPtr<VUKSimRpm_PoolImpl> VUKSimRpm_FileImpl::LoadPool(unsigned long long position,
                                                                 VUKSimRpm_ReadWindow& window)
{
    auto pool = VUKBasMakeShared<VUKSimRpm_PoolImpl>(*this, NewDirectory(), position);
    pool->Load(mLogicalEnd, window);
    return pool;
}

// A pool in which nothing was ever allocated gives its place to the next one. The file is not
// shortened: what lies behind stays there until it is overwritten.
void VUKSimRpm_FileImpl::DropEmptyCurrentPool()
{
    if (mCurrentPoolIndex < 0) {
        return;
    }
    const auto current = mPools[mCurrentPoolIndex];
    if (current->Length() != current->HeaderSize()) {
        return;
    }
    mDocument.PoolMap().lock()->Remove(current->OwnSlot());
    mPools.resize_down(mCurrentPoolIndex);
    --mCurrentPoolIndex;
    mLogicalEnd = current->Position();
}

// A pool whose last bytes were never written would get a length that leads behind the file's end,
// and be left so by a crash before the next pool's header is there: the file first gets that long.
// Its size is asked for only where it is in doubt: to ask between writes costs as much as a write.
void VUKSimRpm_FileImpl::FreezeCurrentPool()
{
    if (mCurrentPoolIndex >= 0) {
        if (mWrittenEnd < mLogicalEnd && mFile.FileSize() < mLogicalEnd) {
            Truncate(mLogicalEnd);
        }
        const auto& current = mPools[mCurrentPoolIndex];
        current->SetImmutable(true);
        current->Dump();
    }
}

void VUKSimRpm_FileImpl::AddPool(const VUKBasSharedPtr<VUKSimRpm_PoolImpl>& pool)
{
    mPools.push_back(pool);
    mCurrentPoolIndex = static_cast<int>(mPools.size() - 1);
    mDocument.PoolMap().lock()->SetPool(pool->OwnSlot(), pool);
}

void VUKSimRpm_FileImpl::MakeCurrent(const VUKBasSharedPtr<VUKSimRpm_PoolImpl>& pool)
{
    pool->SetImmutable(false);
    pool->Dump();
}

void VUKSimRpm_FileImpl::CopyFrom(VUKSimRpm_PoolImpl& source, unsigned long long destination)
{
    const unsigned long long length = source.Length();
    if (length > std::numeric_limits<unsigned long long>::max() - destination) {
        VUKSimExcShortPool().Throw(kSource, at::kAppendPoolShort);
    }
    Truncate(destination + length);
    const VUKSimRpm_Buffer buffer(kCopyChunk);
    for (unsigned long long done = 0; done < length;) {
        const unsigned long long wanted = std::min(length - done, kCopyChunk);
        const unsigned long long from = source.Position() + done;
        if (mFile.WriteFrom(destination + done, source.File().mFile, from, wanted)) {
            done += wanted;
            continue;
        }
        const unsigned long got = source.File().Read(from, wanted, buffer.Bytes());
        if (got == 0) {
            VUKSimExcShortPool().Throw(kSource, at::kAppendPoolShort);
        }
        Write(destination + done, got, buffer.Bytes());
        done += got;
    }
}
