// Finding the pools of a file that is damaged, and writing them to one that opens. Nothing is ever
// written to the damaged file.
#pragma once

#include "FileBytes.h"
#include "NewFile.h"
#include "StoredHeader.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace simpool {

/// What was not as it should be in a pool's header and is mended.
enum class Repair
{
    Signature,
    Version,
    OtherUserSignature,
    DirectoryCount,
    Length,
    DuplicateUuid, // the pool gets a UUID made from its own and its position
    MadeHeader     // bytes in front of the first pool got a pool of their own
};

/// "length", "signature", ...: as in documents.
[[nodiscard]] const char* NameOf(Repair repair) noexcept;

/// A stretch of the damaged file that becomes one pool. Positions and lengths are in bytes of the
/// damaged file, which the stretches and the gaps that are cut cover without overlap.
struct SalvagedPool
{
    std::uint64_t position = 0;
    std::uint64_t length = 0;     // header, directory, data and tail; of a made pool data alone
    std::uint64_t tailLength = 0; // of these, bytes of the gap behind the pool, now its last data
    std::uint64_t lost = 0;       // data that the header claims and the file does not have
    StoredHeader header = {};     // as it is written
    Uuid uuid = {};               // its own, as it is written
    std::vector<Repair> repairs = {};

    [[nodiscard]] bool IsMade() const noexcept;
};

/// Bytes that belong to no pool.
struct SalvagedGap
{
    std::uint64_t position = 0;
    std::uint64_t length = 0;
};

struct SalvageOptions
{
    bool split = false;   // also takes out pools inside a last pool that reaches to the file's end
    bool cutGaps = false; // leaves gaps out instead of saving them as tails
};

struct Salvage
{
    std::uint64_t fileSize = 0;
    std::vector<SalvagedPool> pools = {}; // in the order of positions; empty: nothing to recover
    std::vector<SalvagedGap> gaps = {};   // also those that became tails or a pool

    [[nodiscard]] std::uint64_t BytesInPools() const noexcept; // without those of gaps
    [[nodiscard]] std::uint64_t BytesInGaps() const noexcept;
    [[nodiscard]] std::uint64_t BytesLost() const noexcept;
    /// Whether the new file is the old one, byte for byte.
    [[nodiscard]] bool WasWhole() const noexcept;
};

/// Decides what is kept of `file`. A pool ends where its length says when the next one begins there
/// or the file ends; otherwise at the next header that is found. A header with one wrong field at a
/// place where a pool must begin is mended. `progress` is told positions.
[[nodiscard]] Salvage PlanSalvage(const FileBytes& file, const SalvageOptions& options,
                                  const std::function<void(std::uint64_t)>& progress = nullptr);

/// Appends the pools of `salvage` to `out`: a file that opens, when there is a pool.
/// \throws CommandFailure when reading or writing fails.
void WriteSalvage(const FileBytes& file, const Salvage& salvage, NewFile& out,
                  const std::function<void(std::uint64_t)>& progress = nullptr);

/// Salvages the file `input` into the new file `output`, and returns what was kept. Writes nothing
/// when no pool is found.
/// \throws CommandFailure when reading or writing fails, or `output` is there and must not be
/// replaced.
Salvage SalvageFile(const std::string& input, const std::string& output,
                    const SalvageOptions& options, NewFile::Existing existing);
} // namespace simpool
