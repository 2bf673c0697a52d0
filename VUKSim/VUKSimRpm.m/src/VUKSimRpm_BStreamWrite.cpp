#include "VUKSimRpm_BStreamWrite.h"

#include "VUKSimRpm_Buffer.h"
#include "VUKSimRpm_StringRecord.h"
#include "VUKSimRpm_Swapper.h"

#include <algorithm>
#include <cstring>

namespace {

// The most that one Write of a stream takes: a multiple of 4 below 2^32.
constexpr unsigned long long kMaxWrite = 0xFFFFFFFC; // bytes

// `scratch` holds `padded` zero bytes. A text without bytes is one Write of 0 bytes, which a buffer
// stream refuses.
void WriteRecord(VUKSimRpm_BStreamWrite& stream, const VUKString& text, char* scratch,
                 unsigned long long padded)
{
    const unsigned int length = text.GetLengthInByte();
    std::memcpy(scratch, text.UTF8(), length);
    char* prefix = stream.PrepWrite(VUKSimRpm_StringRecord::kLengthSize);
    VUKSimRpm_Swapper::ExternalizeScalarUnsafe(prefix, &length,
                                               VUKSimRpm_StringRecord::kLengthSize);
    unsigned long long done = 0;
    do {
        const unsigned long long piece = std::min(padded - done, kMaxWrite);
        stream.Write(scratch + done, static_cast<unsigned int>(piece));
        done += piece;
    } while (done < padded);
}
} // namespace

VUKSimRpm_BStreamWrite::~VUKSimRpm_BStreamWrite() noexcept(false) = default;

void VUKSimRpm_BStreamWrite::Write(const VUKString& text)
{
    const unsigned long long padded = VUKSimRpm_StringRecord::PaddedLength(text.GetLengthInByte());
    if (padded < VUKSimRpm_StringRecord::kSmall) {
        char scratch[VUKSimRpm_StringRecord::kSmall] = {};
        WriteRecord(*this, text, scratch, padded);
    } else {
        VUKSimRpm_Buffer scratch;
        scratch.Allocate(padded);
        WriteRecord(*this, text, scratch.Bytes(), padded);
    }
}
