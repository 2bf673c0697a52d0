#include "Salvage.h"

#include "CommandFailure.h"
#include "SalvagePlanner.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <numeric>

namespace simpool {

const char* NameOf(Repair repair) noexcept
{
    constexpr std::array<const char*, 7> kNames = {"signature",       "version", "user signature",
                                                   "directory count", "length",  "duplicate UUID",
                                                   "made header"};
    return kNames[static_cast<std::size_t>(repair)];
}

bool SalvagedPool::IsMade() const noexcept
{
    return std::ranges::find(repairs, Repair::MadeHeader) != repairs.end();
}

std::uint64_t Salvage::BytesInPools() const noexcept
{
    return std::accumulate(pools.begin(), pools.end(), std::uint64_t{0},
                           [](std::uint64_t sum, const SalvagedPool& pool) {
                               return sum + (pool.IsMade() ? 0 : pool.length - pool.tailLength);
                           });
}

std::uint64_t Salvage::BytesInGaps() const noexcept
{
    return std::accumulate(
        gaps.begin(), gaps.end(), std::uint64_t{0},
        [](std::uint64_t sum, const SalvagedGap& gap) { return sum + gap.length; });
}

std::uint64_t Salvage::BytesLost() const noexcept
{
    return std::accumulate(
        pools.begin(), pools.end(), std::uint64_t{0},
        [](std::uint64_t sum, const SalvagedPool& pool) { return sum + pool.lost; });
}

bool Salvage::WasWhole() const noexcept
{
    return gaps.empty() && std::ranges::all_of(pools, [](const SalvagedPool& pool) {
               return pool.repairs.empty();
           });
}

Salvage PlanSalvage(const FileBytes& file, const SalvageOptions& options,
                    const std::function<void(std::uint64_t)>& progress)
{
    return SalvagePlanner(file, options, progress).Plan();
}

void WriteSalvage(const FileBytes& file, const Salvage& salvage, NewFile& out,
                  const std::function<void(std::uint64_t)>& progress)
{
    for (const SalvagedPool& pool : salvage.pools) {
        char header[kHeaderSize];
        EncodeHeader(pool.header, header);
        out.Append({header, kHeaderSize});
        out.Append({pool.uuid.data(), kEntrySize});
        // A made pool has no header of its own in the damaged file.
        const std::uint64_t skipped = pool.IsMade() ? 0 : kHeaderSize + kEntrySize;
        out.CopyFrom(file, pool.position + skipped, pool.length - skipped);
        if (progress) {
            progress(pool.position + pool.length);
        }
    }
}

Salvage SalvageFile(const std::string& input, const std::string& output,
                    const SalvageOptions& options, NewFile::Existing existing)
{
    FileBytes file;
    if (const int failure = file.Open(input.c_str()); failure != 0) {
        throw SystemFailure("cannot open", input,
                            failure == FileBytes::kNotRegular ? EINVAL : failure);
    }
    Salvage salvage = PlanSalvage(file, options);
    if (file.Error() != 0) {
        throw SystemFailure("cannot read", input, file.Error());
    }
    if (!salvage.pools.empty()) {
        NewFile out(output, existing);
        WriteSalvage(file, salvage, out);
        out.Commit();
    }
    return salvage;
}
} // namespace simpool
