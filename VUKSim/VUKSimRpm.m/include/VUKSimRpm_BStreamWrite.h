#pragma once

#include "VUKSimRpm_Export.h"
#include "VUKString.h"
#include "mem_Alloc.h"

class VUKSimRpm_MemoryPool;
class VUKSimRpm_PoolDirectoryImpl;

/// A stream of bytes to store, which record code encodes.
///
/// Lengths are in bytes. A stream belongs to one thread. Streams that buffer flush in their
/// destructor and let an error out of it, unless another exception is already on its way.
class VUKSIMRPM_EXPORT VUKSimRpm_BStreamWrite : public mem_AllocationOperators
{
public:
    virtual ~VUKSimRpm_BStreamWrite() noexcept(false);

    /// Room for the next `requestedLength` bytes, counted as written; valid until the next
    /// operation, and to be filled by then.
    [[nodiscard]] virtual char* PrepWrite(unsigned long requestedLength) = 0;

    /// Appends `length` bytes from `source`.
    virtual void Write(const char* source, unsigned int length) = 0;

    /// The directory of the pool that is written, not owned; null when there is none.
    [[nodiscard]] virtual VUKSimRpm_PoolDirectoryImpl* SourceDir() const = 0;

    /// The memory pool of the place that is written, not owned; null when there is none.
    [[nodiscard]] virtual VUKSimRpm_MemoryPool* IMPool() const = 0;

    /// Writes `text` as a string record: length (4 bytes), text, zeros up to a multiple of 4.
    /// \throws std::bad_alloc, and nothing is written; what PrepWrite and Write of the stream
    /// throw: the length may stand there without its text then.
    void Write(const VUKString& text);
};
