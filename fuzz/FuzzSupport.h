#pragma once

#include "VUKBasException.h"
#include "VUKSimRpm_Document.h"
#include "VUKString.h"

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>

// What the fuzz targets share: files in memory, a walk over everything that a file offers, and the
// one rule that each of them checks: bytes from a file lead to a good answer or to a documented
// exception, never to anything else.

/// The user signature of every fuzzed document; the seeds carry it.
inline constexpr char kFuzzSignature[] = "FUZZ";

/// A regular file that lives in memory and has a name as long as this object lives.
class MemoryFile
{
public:
    MemoryFile(const std::uint8_t* bytes, std::size_t size);
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile();

    [[nodiscard]] VUKString Name() const { return mName.c_str(); }

private:
    int mDescriptor; // owned
    std::string mName;
};

/// Calls `action` and takes what a caller must be ready for: the platform's and the library's own
/// exceptions, and no memory left. Anything else escapes and ends the run. True when nothing was
/// thrown.
template <class Action>
bool Survives(Action action)
{
    try {
        action();
        return true;
    } catch (const VUKBasException&) {
        return false;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

/// Keeps failed checks, which are expected here, from filling standard error.
void SilenceAssertions();

/// Asks a file everything, and reads every pool: lengths, directory, and its data as bytes, as
/// locators that are followed, and as strings.
void WalkFile(const VUKSimRpm_File& file);

/// Copies pool `index` of `from` behind the pools of `to`, unless it claims more than a MiB: a copy
/// takes as long as the length says, and a damaged one may say anything.
void CopyPool(const VUKSimRpm_File& from, unsigned int index, VUKSimRpm_File& to);

/// The target: each of the fuzz_ sources defines one.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
