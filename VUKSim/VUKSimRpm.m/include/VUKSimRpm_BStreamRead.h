#pragma once

#include "VUKSimRpm_Export.h"
#include "VUKString.h"
#include "mem_Alloc.h"

class VUKSimRpm_MemoryPool;
class VUKSimRpm_PoolDirectoryImpl;

/// A stream of stored bytes that record code decodes.
///
/// Beside the bytes it tells two things of its context: the directory that translates the
/// references among them, and the memory pool, if any, that locators read through it will use.
/// Lengths are in bytes. A stream belongs to one thread.
class VUKSIMRPM_EXPORT VUKSimRpm_BStreamRead : public mem_AllocationOperators
{
public:
    virtual ~VUKSimRpm_BStreamRead() noexcept(false);

    /// The next `requestedLength` bytes, consumed by the call; valid until the next operation.
    [[nodiscard]] virtual char* PrepRead(unsigned long requestedLength) = 0;

    /// Copies the next `length` bytes to `destination`.
    virtual void Read(char* destination, unsigned int length) = 0;

    /// The directory of the pool whose bytes are read, not owned; null when there is none.
    [[nodiscard]] virtual VUKSimRpm_PoolDirectoryImpl* SourceDir() const = 0;

    /// The memory pool for locators read here, not owned; null when there is none.
    [[nodiscard]] virtual VUKSimRpm_MemoryPool* IMPool() const = 0;

    /// Reads a string record: length (4 bytes), text, zeros up to a multiple of 4. The text ends at
    /// its first zero byte. Memory grows with the bytes really delivered, whatever length the
    /// record claims: beyond 1 MiB the text is read in pieces.
    /// \throws what PrepRead and Read of the stream throw, naming the piece that failed;
    /// std::bad_alloc. `text` is left as it was; what came before the failure is consumed.
    void Read(VUKString& text);
};
