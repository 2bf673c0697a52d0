#include "VUKSimRpm_UUID.h"

#include "VUKSimUttShortCopy.h"
#include "omi_gettimeofday.h"

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

// The generator's own state for the random() family, switched in and out for each draw so that the
// host's sequence goes on undisturbed.
char sRandomState[256];
char sSeeded = 0;

long Draw()
{
    char* previous = nullptr;
    if (sSeeded == 0) {
        sSeeded = 1;
        const auto microseconds = static_cast<std::uint64_t>(omi_gettimeofday().microseconds);
        const auto t = static_cast<std::int32_t>(static_cast<std::uint32_t>(microseconds));
        const std::int32_t seed = t % 2147483640;
        previous = initstate(static_cast<unsigned>(seed), sRandomState, sizeof sRandomState);
    } else {
        previous = setstate(sRandomState);
    }
    const long value = random();
    setstate(previous);
    return value;
}

// Eight characters as a number that orders as they do, on every host: the first weighs most.
std::uint64_t Weight(const char* text) noexcept
{
    const auto weight = VUKSimUttShortCopy::Load<std::uint64_t>(text);
    return std::endian::native == std::endian::little ? __builtin_bswap64(weight) : weight;
}
} // namespace

const char* VUKSimRpm_UUID::mTestForceUUID = nullptr;

VUKSimRpm_UUID::VUKSimRpm_UUID(const char* text) noexcept
{
    std::memcpy(mText, text, kLength);
}

bool VUKSimRpm_UUID::Less(const VUKSimRpm_UUID& that) const noexcept
{
    // Eight at a time; the first eight nearly always tell.
    static_assert(kLength % 8 == 0);
    for (int i = 0; i < kLength; i += 8) {
        const std::uint64_t mine = Weight(mText + i);
        const std::uint64_t other = Weight(that.mText + i);
        if (mine != other) {
            return mine < other;
        }
    }
    return false;
}

void VUKSimRpm_UUID::CreateUUID(char* text)
{
    if (mTestForceUUID != nullptr) {
        std::memcpy(text, mTestForceUUID, kLength);
        mTestForceUUID = nullptr;
        return;
    }
    // Each draw has 31 bits, so that every eighth digit is 0 to 7. Kept as it is.
    unsigned nibbles[kLength];
    for (int group = 0; group < 4; ++group) {
        const auto value = static_cast<std::uint32_t>(Draw());
        for (int k = 0; k < 8; ++k) {
            nibbles[8 * group + k] = (value >> (4 * k)) & 0xFU;
        }
    }
    nibbles[12] = 4;                       // version
    nibbles[16] = 8U | (nibbles[16] & 3U); // variant
    for (int i = 0; i < kLength; ++i) {
        text[i] = "0123456789abcdef"[nibbles[i]];
    }
}

void VUKSimRpm_UUID::TestForceUUID(const char* text) noexcept
{
    mTestForceUUID = text;
}
