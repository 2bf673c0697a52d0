#pragma once

#include "VUKBasSharedPtr.h"
#include "VUKSimRpm_BStreamRead.h"
#include "VUKSimRpm_Export.h"

#include <cstring>
#include <utility>

class VUKSimRpm_Pool;

/// An input stream over the caller's memory, which must outlive it.
///
/// Bound to a pool it translates references through that pool's directory, which it keeps alive;
/// the pool itself it does not. There is never a memory pool. Lengths are in bytes.
class VUKSIMRPM_EXPORT VUKSimRpm_BStreamReadBuffer final : public VUKSimRpm_BStreamRead
{
public:
    VUKSimRpm_BStreamReadBuffer(const char* buffer, unsigned long length) noexcept;

    /// \throws VUKSimExcCantDerefLocator when `pool` is gone.
    VUKSimRpm_BStreamReadBuffer(const char* buffer, unsigned long length,
                                const VUKSimRpm_Pool& pool);

    VUKSimRpm_BStreamReadBuffer(const VUKSimRpm_BStreamReadBuffer&) = delete;
    VUKSimRpm_BStreamReadBuffer& operator=(const VUKSimRpm_BStreamReadBuffer&) = delete;
    ~VUKSimRpm_BStreamReadBuffer() override;

    /// \throws VUKBasAssertException "requestedLength > 0"; VUKSimExcShortBuffer(requested,
    /// remaining) past the buffer's end. The stream is unchanged then.
    [[nodiscard]] char* PrepRead(unsigned long requestedLength) override
    {
        if (requestedLength - 1 >= mLength - mPosition) [[unlikely]] { // too many, or 0
            Refuse(requestedLength);
        }
        // Handed out as char* by the interface that all streams share; the caller only decodes it.
        return const_cast<char*>(mBuffer + std::exchange(mPosition, mPosition + requestedLength));
    }

    /// \throws as PrepRead, for a length of 0 too: an empty text cannot be read here.
    void Read(char* destination, unsigned int length) override
    {
        std::memcpy(destination, PrepRead(length), length);
    }
    using VUKSimRpm_BStreamRead::Read;

    [[nodiscard]] VUKSimRpm_PoolDirectoryImpl* SourceDir() const override;
    [[nodiscard]] VUKSimRpm_MemoryPool* IMPool() const override;

private:
    [[noreturn]] void Refuse(unsigned long requestedLength) const;

    const char* mBuffer;                                     // not owned
    unsigned long mLength;                                   // of mBuffer, in bytes
    unsigned long mPosition = 0;                             // bytes consumed so far
    VUKBasSharedPtr<VUKSimRpm_PoolDirectoryImpl> mSourceDir; // empty when unbound
};
