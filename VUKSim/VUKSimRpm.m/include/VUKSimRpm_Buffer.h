#pragma once

#include "mem_Alloc.h"

#include <cstddef>
#include <utility>

/// A heap block of bytes that one object owns: made empty, allocated at most once, freed with it.
class VUKSimRpm_Buffer
{
public:
    VUKSimRpm_Buffer() = default;

    /// `size` bytes, not initialised. \throws std::bad_alloc.
    explicit VUKSimRpm_Buffer(std::size_t size)
        : mBytes(static_cast<char*>(mem_OperatorNewThrowBuiltin(size)))
    {}

    VUKSimRpm_Buffer(const VUKSimRpm_Buffer&) = delete;
    VUKSimRpm_Buffer& operator=(const VUKSimRpm_Buffer&) = delete;
    ~VUKSimRpm_Buffer() { mem_Free(mBytes); }

    /// The first byte; null while the buffer is empty.
    [[nodiscard]] char* Bytes() const noexcept { return mBytes; }

    void Swap(VUKSimRpm_Buffer& that) noexcept { std::swap(mBytes, that.mBytes); }

    /// Gives a buffer that must be empty `size` zero bytes, so that no old heap bytes can reach a
    /// file. \throws std::bad_alloc, the buffer is empty then.
    void Allocate(std::size_t size)
    {
        mBytes = static_cast<char*>(mem_OperatorNewZeroedThrow(size));
    }

private:
    char* mBytes = nullptr; // owned
};
