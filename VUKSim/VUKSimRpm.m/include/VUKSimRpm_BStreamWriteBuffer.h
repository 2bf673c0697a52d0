#pragma once

#include "VUKBasSharedPtr.h"
#include "VUKSimRpm_BStreamWrite.h"
#include "VUKSimRpm_Export.h"

#include <cstring>
#include <utility>

class VUKSimRpm_Pool;

/// An output stream over the caller's memory, which must outlive it.
///
/// Bound to a pool it translates references through that pool's directory, which it keeps alive;
/// the pool itself it does not. There is never a memory pool. Lengths are in bytes.
class VUKSIMRPM_EXPORT VUKSimRpm_BStreamWriteBuffer final : public VUKSimRpm_BStreamWrite
{
public:
    VUKSimRpm_BStreamWriteBuffer(char* buffer, unsigned long length) noexcept;

    /// \throws VUKSimExcCantDerefLocator when `pool` is gone.
    VUKSimRpm_BStreamWriteBuffer(char* buffer, unsigned long length, const VUKSimRpm_Pool& pool);

    VUKSimRpm_BStreamWriteBuffer(const VUKSimRpm_BStreamWriteBuffer&) = delete;
    VUKSimRpm_BStreamWriteBuffer& operator=(const VUKSimRpm_BStreamWriteBuffer&) = delete;
    ~VUKSimRpm_BStreamWriteBuffer() override;

    /// \throws VUKBasAssertException "requestedLength > 0"; VUKSimExcShortBuffer(requested,
    /// remaining) past the buffer's end. The stream is unchanged then.
    [[nodiscard]] char* PrepWrite(unsigned long requestedLength) override
    {
        if (requestedLength - 1 >= mLength - mPosition) [[unlikely]] { // too many, or 0
            Refuse(requestedLength);
        }
        return mBuffer + std::exchange(mPosition, mPosition + requestedLength);
    }

    /// \throws as PrepWrite, for a length of 0 too: an empty text cannot be written here.
    void Write(const char* source, unsigned int length) override
    {
        std::memcpy(PrepWrite(length), source, length);
    }
    using VUKSimRpm_BStreamWrite::Write;

    [[nodiscard]] VUKSimRpm_PoolDirectoryImpl* SourceDir() const override;
    [[nodiscard]] VUKSimRpm_MemoryPool* IMPool() const override;

private:
    [[noreturn]] void Refuse(unsigned long requestedLength) const;

    char* mBuffer;                                           // not owned
    unsigned long mLength;                                   // of mBuffer, in bytes
    unsigned long mPosition = 0;                             // bytes produced so far
    VUKBasSharedPtr<VUKSimRpm_PoolDirectoryImpl> mSourceDir; // empty when unbound
};
