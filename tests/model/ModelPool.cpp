#include "ModelPool.h"

#include "ModelCheck.h"
#include "ModelFile.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace model {
namespace {

constexpr char kSource[] = "VUKSimRpm_PoolImpl";
constexpr char kSignature[] = "\x89SIM\r\n\x1A\n";

// Each character adds its signed distance from '0', whatever it is.
std::uint64_t LengthFrom(const char* digits)
{
    std::uint64_t length = 0;
    for (int i = 0; i < 16; ++i) {
        const int distance = static_cast<signed char>(digits[i]) - '0';
        length = length * 10 + static_cast<std::uint64_t>(static_cast<std::int64_t>(distance));
    }
    return length;
}

std::string DigitsOf(std::uint64_t length)
{
    std::string digits(16, '0');
    for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit, length /= 10) {
        *digit = static_cast<char>('0' + length % 10);
    }
    return digits;
}

std::uint32_t WordAt(const char* bytes)
{
    std::uint32_t word = 0;
    for (int i = 3; i >= 0; --i) {
        word = word << 8 | static_cast<unsigned char>(bytes[i]);
    }
    return word;
}
} // namespace

PoolImpl::PoolImpl(FileImpl& file, std::shared_ptr<Directory> directory, std::uint64_t place)
    : position(place), mFile(file), mDirectory(std::move(directory))
{}

void PoolImpl::Init()
{
    mHeaderSize = 48 + 32 * static_cast<std::uint32_t>(mDirectory->Length());
    length = mHeaderSize;
}

void PoolImpl::Load(std::uint64_t end, std::uint64_t directoryRoom)
{
    std::array<char, 48> header{};
    if (mFile.Read(position, 48, header.data()) < 48) {
        Raise("VUKSimExcCorruptHeader", kSource, 78);
    }
    if (!std::equal(header.begin(), header.begin() + 8, kSignature)) {
        Raise("VUKSimExcNotSimFile", kSource, 81);
    }
    if (header[8] != 6) {
        const auto found = static_cast<std::uint32_t>(static_cast<signed char>(header[8]));
        Raise("VUKSimExcNeedUpgrade", kSource, 86, {6, found}, mFile.Name());
    }
    if (mFile.Signature().compare(0, 4, &header[16], 4) != 0) {
        Raise("VUKSimExcUserSigMismatch", kSource, 89);
    }
    length = LengthFrom(&header[20]);
    if (length == 0) {
        length = end - position;
    }
    mReserved.assign(&header[36], 8);
    const std::uint64_t size = 32 * static_cast<std::uint64_t>(WordAt(&header[44]));
    // No more than the file has is believed, nor more in all than pools that do not overlap have.
    const std::uint64_t present = mFile.Size() - std::min(mFile.Size(), position + 48);
    if (size > present || size > directoryRoom) {
        Raise("VUKSimExcCorruptDirectory", kSource, 106);
    }
    std::string records(size, '\0');
    mFile.Read(position + 48, size, records.data());
    mDirectory->Load(records, static_cast<int>(size / 32));
    mHeaderSize = 48 + static_cast<std::uint32_t>(size);
}

std::string PoolImpl::Header() const
{
    const auto count = static_cast<std::uint32_t>(mDirectory->Length());
    std::string header = kSignature;
    header += '\6';
    header.append(7, '\0');
    header += mFile.Signature().substr(0, 4);
    header += DigitsOf(immutable ? length : 0);
    header += mReserved;
    for (int shift = 0; shift < 32; shift += 8) {
        header += static_cast<char>(count >> shift & 0xFF);
    }
    return header;
}

void PoolImpl::Dump()
{
    const std::string bytes = Header() + mDirectory->Records();
    mFile.Extend(position + bytes.size());
    mFile.Write(position, bytes.size(), bytes.data());
}

Locator PoolImpl::Start() const
{
    return {mDirectory->Map(), mDirectory->OwnSlot(), 0, nullptr};
}

Locator PoolImpl::End() const
{
    return {mDirectory->Map(), mDirectory->OwnSlot(), DataLength(), nullptr};
}

Locator PoolImpl::Allocate(std::uint64_t n)
{
    if (immutable) {
        Raise("VUKSimExcImmutablePool", kSource, 163);
    }
    const std::uint64_t old = DataLength();
    if (n > std::numeric_limits<std::uint64_t>::max() - position - length) {
        Raise("VUKSimExcIOBounds", kSource, 168, {old, old + n, old});
    }
    length += n;
    mFile.Extend(position + length);
    return {mDirectory->Map(), mDirectory->OwnSlot(), old, nullptr};
}

std::uint64_t PoolImpl::Read(std::uint64_t offset, std::uint64_t size, char* buffer) const
{
    return mFile.Read(DataPosition() + offset, size, buffer);
}

std::uint64_t PoolImpl::Write(std::uint64_t offset, std::uint64_t size, const char* buffer) const
{
    if (offset + size > DataLength()) {
        Raise("VUKSimExcIOBounds", kSource, 186, {offset, offset + size, DataLength()});
    }
    return mFile.Write(DataPosition() + offset, size, buffer);
}

unsigned int Pool::DirectorySizeBytes() const
{
    return mPool.lock()->HeaderSize() - 48;
}

std::string Pool::GetGUID() const
{
    return TextOf(mPool.lock()->Dir()->OwnUuid());
}

bool Pool::ReadOnly() const
{
    return mPool.lock()->File().ReadOnly();
}

std::string TextOf(const Uuid& uuid)
{
    return uuid.c_str();
}
} // namespace model
