#include "FindingCode.h"

#include <array>

namespace simpool {
namespace {

using enum FindingCode;

constexpr const char* kSalvage = "Use 'simpool salvage' to save what can be read.";
constexpr const char* kTogether = "Open these files in documents of their own.";
constexpr const char* kRecomputed = "'simpool salvage' computes the length anew.";

constexpr std::array<FindingText, 18> kTexts = {{
    {ShortHeader, "E01", "short-header", "fewer than 48 bytes of header are there", kSalvage},
    {NoSignature, "E02", "no-signature", "no pool begins here", kSalvage},
    {OtherVersion, "E03", "other-version", "the format version is not 6",
     "Convert the file with the release that wrote it; when it is one damaged byte, 'simpool "
     "salvage' mends it."},
    {OtherUserSignature, "E04", "other-user-signature",
     "the user signature is not that of the first pool", kTogether},
    {CutDirectory, "E05", "cut-directory", "the directory is longer than the file", kSalvage},
    {NoOwnEntry, "E06", "no-own-entry", "the directory is empty, the pool has no UUID", kSalvage},
    {DuplicatePool, "E07", "duplicate-pool", "a pool with this UUID was there before", kTogether},
    {LengthBelowHeader, "E08", "length-below-header",
     "the length is smaller than header and directory", kRecomputed},
    {LengthNotDecimal, "E09", "length-not-decimal", "the length has bytes that are no digits",
     kRecomputed},
    {LengthPastEnd, "E10", "length-past-end", "the length leads behind the end of the file",
     "The file was cut: look for a longer copy. 'simpool salvage' computes the length anew."},
    {UuidNotHex, "W01", "uuid-not-hex", "a UUID is not made of lowercase hexadecimal digits",
     "Check who wrote it; a UUID is compared byte by byte, so another spelling is another pool."},
    {UuidNotVersion4, "W02", "uuid-not-version-4", "a UUID is not marked as a random one",
     "Check that whoever gave it gives it to one pool only."},
    {ReservedBytes, "W03", "reserved-bytes", "reserved bytes are not what this library writes",
     "Harmless by itself; with other findings a trace of damage."},
    {PoolInsideData, "W04", "pool-inside-data", "a whole pool header lies inside a pool's data",
     "When a crash came while the later pool was made, 'simpool salvage --split' takes it out."},
    {TrailingZeros, "W05", "trailing-zeros", "the data ends in a long run of zeros",
     "When a power loss came before, these bytes may never have been written."},
    {UnresolvedReference, "W06", "unresolved-reference",
     "references lead to pools that are not in these files",
     "Name the files that hold these pools as well."},
    {CacheMemory, "W07", "cache-memory", "opening reserves much memory for its cache",
     "Open fewer files in one document, or give pools smaller directories."},
    {LeftoverDirectory, "W08", "leftover-directory", "the data begins with directory entries",
     "An empty pool with a larger directory may have been replaced: skip these bytes."},
}};
} // namespace

std::span<const FindingText> AllFindingTexts() noexcept
{
    return kTexts;
}

const FindingText& TextOf(FindingCode code) noexcept
{
    return kTexts[static_cast<std::size_t>(code)];
}

FindingCode CodeOf(Stop stop) noexcept
{
    switch (stop) {
    case Stop::ShortHeader:
        return ShortHeader;
    case Stop::OtherVersion:
        return OtherVersion;
    case Stop::OtherUserSignature:
        return OtherUserSignature;
    case Stop::CutDirectory:
        return CutDirectory;
    case Stop::DuplicatePool:
        return DuplicatePool;
    case Stop::NoOwnEntry:
        return NoOwnEntry;
    default:
        return NoSignature;
    }
}
} // namespace simpool
