#include "ModelLocator.h"

#include "ModelCheck.h"
#include "ModelFile.h"
#include "ModelMemoryPool.h"
#include "ModelStream.h"
#include "Rules.h"

#include <utility>

namespace model {
namespace {

constexpr char kSource[] = "VUKSimRpm_Locator";

void Store(char* to, std::uint64_t value, int size)
{
    for (int i = 0; i < size; ++i) {
        to[i] = static_cast<char>(value >> (8 * i) & 0xFF);
    }
}

std::uint64_t Fetch(const char* from, int size)
{
    std::uint64_t value = 0;
    for (int i = size - 1; i >= 0; --i) {
        value = value << 8 | static_cast<unsigned char>(from[i]);
    }
    return value;
}

// The directory that translates for a stream, when it can.
const Directory& TranslatorOf(const Directory* directory, int without, int closed)
{
    if (directory == nullptr) {
        Raise("VUKSimExcCantExternalizeLoc", kSource, without);
    }
    if (directory->Map().expired()) {
        Raise("VUKSimExcCantDerefLocator", kSource, closed);
    }
    return *directory;
}
} // namespace

DirectLocator::DirectLocator(std::shared_ptr<PoolImpl> pool, std::uint64_t offset)
    : mPool(std::move(pool)), mOffset(offset)
{}

std::uint64_t DirectLocator::Read(std::uint64_t length, char* buffer) const
{
    Check(mPool != nullptr, "0 != mFile", "VUKSimRpm_DirectLocator", 15);
    return mPool->Read(mOffset, length, buffer);
}

std::uint64_t DirectLocator::Write(std::uint64_t length, const char* buffer) const
{
    Check(mPool != nullptr, "0 != mFile", "VUKSimRpm_DirectLocator", 9);
    return mPool->File().WriteAnywhere(mPool->DataPosition() + mOffset, length, buffer);
}

Locator::Locator(const std::weak_ptr<PoolMap>& map, int slot, std::uint64_t offset,
                 MemoryPool* memory)
    : mMap(map), mSlot(slot), mOffset(offset), mMemory(memory)
{}

Locator::Locator(const Locator& base, std::uint64_t delta)
    : mMap(base.mMap), mSlot(base.mSlot), mOffset(base.mOffset + delta),
      mMemory(Rules::Current().deltaDropsTheMemoryPool ? nullptr : base.mMemory)
{}

Locator::Locator(const Locator& other, MemoryPool& memory)
    : mMap(other.mMap), mSlot(other.mSlot), mOffset(other.mOffset), mMemory(&memory)
{}

bool Locator::SamePool(const Locator& that) const noexcept
{
    return !Null() && !that.Null() && mMap.lock() == that.mMap.lock() && mSlot == that.mSlot;
}

bool Locator::operator==(const Locator& that) const noexcept
{
    return mMap.lock() == that.mMap.lock() && mSlot == that.mSlot && mOffset == that.mOffset;
}

bool Locator::operator<(const Locator& that) const
{
    Check(SamePool(that), "SamePool(that)", kSource, 81);
    return mOffset < that.mOffset;
}

bool Locator::operator<=(const Locator& that) const
{
    Check(SamePool(that), "SamePool(that)", kSource, 87);
    return mOffset <= that.mOffset;
}

Locator Locator::operator+(std::uint64_t n) const
{
    return {mMap, mSlot, mOffset + n, mMemory};
}

Locator Locator::operator-(std::uint64_t n) const
{
    return {mMap, mSlot, mOffset - n, mMemory};
}

Locator& Locator::operator+=(std::uint64_t n) noexcept
{
    mOffset += n;
    return *this;
}

std::uint64_t Locator::operator-(const Locator& that) const
{
    Check(SamePool(that), "SamePool(that)", kSource, 93);
    return mOffset - that.mOffset;
}

std::string Locator::GetGUID() const
{
    if (Null()) {
        Raise("VUKSimExcCantDerefLocator", kSource, 141);
    }
    return TextOf(mMap.lock()->UuidOf(mSlot));
}

std::shared_ptr<Directory> Locator::Directory() const
{
    return Resolve(149)->Dir();
}

bool Locator::ReadOnly() const
{
    return Resolve(157)->File().ReadOnly();
}

DirectLocator Locator::DirectLocator() const
{
    Check(mMemory == nullptr, "0 == mIMPool", kSource, 191);
    return {Resolve(195), mOffset};
}

std::uint64_t Locator::Read(std::uint64_t length, char* buffer) const
{
    if (mMemory != nullptr && mMemory->Startin(*this)) {
        return mMemory->Read(*this, length, buffer);
    }
    return Resolve(117)->Read(mOffset, length, buffer);
}

std::uint64_t Locator::Write(std::uint64_t length, const char* buffer) const
{
    if (mMemory != nullptr) {
        mMemory->Write(*this, length, buffer);
    }
    return Resolve(130)->Write(mOffset, length, buffer);
}

void Locator::ExternalizeImpl(StreamWrite& stream) const
{
    char* record = stream.PrepWrite(12);
    int reference = -1;
    if (mSlot >= 0) {
        reference = TranslatorOf(stream.SourceDir(), 166, 169).ExternalizeReference(mSlot);
    }
    Store(record, mOffset, 8);
    Store(record + 8, static_cast<std::uint32_t>(reference), 4);
}

void Locator::InternalizeImpl(StreamRead& stream)
{
    const std::string record(stream.PrepRead(12), 12);
    const auto reference = static_cast<std::int32_t>(Fetch(&record[8], 4));
    if (reference >= 0) {
        const model::Directory& directory = TranslatorOf(stream.SourceDir(), 178, 181);
        mSlot = directory.InternalizeReference(reference);
        mMap = directory.Map();
        mOffset = Fetch(record.data(), 8);
    } else if (Rules::Current().negativeReferenceZeroesTheOffset) {
        mOffset = 0;
    }
    mMemory = stream.IMPool();
}

std::shared_ptr<PoolImpl> Locator::Resolve(int line) const
{
    const auto map = mMap.lock();
    auto pool = map == nullptr || mSlot < 0 ? nullptr : map->LivePool(mSlot);
    if (pool == nullptr) {
        Raise("VUKSimExcCantDerefLocator", kSource, line);
    }
    return pool;
}
} // namespace model
