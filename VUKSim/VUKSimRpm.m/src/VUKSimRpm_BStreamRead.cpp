#include "VUKSimRpm_BStreamRead.h"

#include "VUKSimRpm_Buffer.h"
#include "VUKSimRpm_StringRecord.h"
#include "VUKSimRpm_Swapper.h"

#include <algorithm>
#include <cstring>

namespace {

// A text of up to this size is read in one go; beyond, memory doubles with what was delivered, so
// that a damaged length costs nothing.
constexpr unsigned long long kFirstPiece = 1024ULL * 1024; // bytes

VUKString BuildText(char* bytes, unsigned int length)
{
    bytes[length] = '\0';
    return VUKString::BuildFromUTF8(bytes);
}

VUKString ReadLongText(VUKSimRpm_BStreamRead& stream, unsigned int length,
                       unsigned long long padded)
{
    unsigned long long capacity = std::min(padded, kFirstPiece);
    VUKSimRpm_Buffer bytes(capacity + 1);
    unsigned long long held = 0;
    for (;;) {
        stream.Read(bytes.Bytes() + held, static_cast<unsigned int>(capacity - held));
        held = capacity;
        if (held == padded) {
            return BuildText(bytes.Bytes(), length);
        }
        capacity = std::min(padded, 2 * capacity);
        VUKSimRpm_Buffer larger(capacity + 1);
        std::memcpy(larger.Bytes(), bytes.Bytes(), held);
        bytes.Swap(larger);
    }
}
} // namespace

VUKSimRpm_BStreamRead::~VUKSimRpm_BStreamRead() noexcept(false) = default;

void VUKSimRpm_BStreamRead::Read(VUKString& text)
{
    unsigned int length = 0;
    VUKSimRpm_Swapper::InternalizeScalarUnsafe(PrepRead(VUKSimRpm_StringRecord::kLengthSize),
                                               &length, VUKSimRpm_StringRecord::kLengthSize);
    const unsigned long long padded = VUKSimRpm_StringRecord::PaddedLength(length);
    if (padded < VUKSimRpm_StringRecord::kSmall) {
        char bytes[VUKSimRpm_StringRecord::kSmall];
        Read(bytes, static_cast<unsigned int>(padded));
        bytes[length] = '\0';
        text = bytes; // in the memory that it has, where it fits
    } else {
        text = ReadLongText(*this, length, padded);
    }
}
