// What copy, merge, repack and new have in common: pools, byte for byte, in a new file.
#pragma once

#include "Json.h"
#include "LoadedFile.h"
#include "NewFile.h"
#include "Output.h"
#include "ProgressLine.h"

#include <cstdint>
#include <string>
#include <vector>

namespace simpool {

/// A pool of a loaded file, which must outlive this.
struct CopiedPool
{
    const LoadedFile* file;
    std::size_t number;
    PoolInfo info; // as it was found; a smaller length leaves out the end of the data
};

[[nodiscard]] CopiedPool PoolOf(const LoadedFile& file, std::size_t number);

/// All pools of `file`, in order.
[[nodiscard]] std::vector<CopiedPool> AllPools(const LoadedFile& file);

/// Header, directory and data of all `pools`, in bytes.
[[nodiscard]] std::uint64_t TotalLength(const std::vector<CopiedPool>& pools);

/// How many entries of the pools' directories name a pool of `pools` and how many do not; a pool's
/// own first entry does not count.
struct ReferenceCount
{
    std::uint64_t resolved = 0;
    std::uint64_t unresolved = 0;
};
[[nodiscard]] ReferenceCount CountReferences(const std::vector<CopiedPool>& pools);

/// Refuses what could not be one file: no pool at all, other user signatures, one UUID twice, pools
/// that are not whole, no room where `output` is to lie.
/// \throws CommandFailure that says which pool of which file, and why.
void CheckPools(const std::vector<CopiedPool>& pools, const std::string& output);

/// Appends `pools` to `out`, which is empty. Directories and data are copied as they are, and so
/// stored references go on naming the same pools. Of the headers the length alone is set: the last
/// pool may grow, the others may not.
void WritePools(const std::vector<CopiedPool>& pools, NewFile& out, Output& err);

/// Appends `length` bytes of `source` to `out` in steps, each of which `progress` is told.
void CopyInSteps(const FileBytes& source, std::uint64_t position, std::uint64_t length,
                 NewFile& out, ProgressLine& progress);

/// `output` can be written: it is none of the files that are read.
/// \throws CommandFailure
void RefuseInput(const LoadedFiles& inputs, const std::string& output);

/// A file with a damage: says where and what to do.
/// \throws CommandFailure when `file` was not walked to its end.
void RefuseDamage(const LoadedFile& file);

/// "output", "size", "references" and a list "pools" of what was written.
void DescribeCopies(Json& document, const std::vector<CopiedPool>& pools,
                    const std::string& output);
} // namespace simpool
