// Files and mappings for the hand-written floors and for what the bench itself has to do.
#pragma once

#include <cerrno>
#include <cstddef>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

inline constexpr long long kChunk =
    256LL * 1024; // bytes of each chunked transfer, as for the library

[[noreturn]] inline void FailWithErrno(const std::string& what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

/// An open file, owned.
class Descriptor
{
public:
    Descriptor() = default;
    Descriptor(const std::string& path, int flags) : mNumber(::open(path.c_str(), flags, 0644))
    {
        if (mNumber < 0) {
            FailWithErrno("open " + path);
        }
    }
    Descriptor(Descriptor&& that) noexcept : mNumber(std::exchange(that.mNumber, -1)) {}
    Descriptor& operator=(Descriptor&& that) noexcept
    {
        std::swap(mNumber, that.mNumber);
        return *this;
    }
    ~Descriptor()
    {
        if (mNumber >= 0) {
            ::close(mNumber);
        }
    }

    [[nodiscard]] int Number() const noexcept { return mNumber; }

    [[nodiscard]] long long Size() const
    {
        struct stat status = {};
        if (fstat(mNumber, &status) != 0) {
            FailWithErrno("fstat");
        }
        return status.st_size;
    }

    /// One call, which must move everything.
    void Read(void* to, std::size_t length, long long position) const
    {
        if (pread(mNumber, to, length, position) != static_cast<ssize_t>(length)) {
            FailWithErrno("pread");
        }
    }
    void Write(const void* from, std::size_t length, long long position) const
    {
        if (pwrite(mNumber, from, length, position) != static_cast<ssize_t>(length)) {
            FailWithErrno("pwrite");
        }
    }
    void Resize(long long size) const
    {
        if (ftruncate(mNumber, size) != 0) {
            FailWithErrno("ftruncate");
        }
    }
    void Sync() const
    {
        if (fdatasync(mNumber) != 0) {
            FailWithErrno("fdatasync");
        }
    }

private:
    int mNumber = -1;
};

/// A shared, writable mapping of a whole file.
class Mapping
{
public:
    Mapping() = default;
    explicit Mapping(const Descriptor& file) : mLength(static_cast<std::size_t>(file.Size()))
    {
        void* at = mmap(nullptr, mLength, PROT_READ | PROT_WRITE, MAP_SHARED, file.Number(), 0);
        if (at == MAP_FAILED) {
            FailWithErrno("mmap");
        }
        mBytes = static_cast<char*>(at);
    }
    Mapping(Mapping&& that) noexcept { *this = std::move(that); }
    Mapping& operator=(Mapping&& that) noexcept
    {
        std::swap(mBytes, that.mBytes);
        std::swap(mLength, that.mLength);
        return *this;
    }
    ~Mapping()
    {
        if (mBytes != nullptr) {
            munmap(mBytes, mLength);
        }
    }

    [[nodiscard]] char* Bytes() const noexcept { return mBytes; }

private:
    char* mBytes = nullptr;
    std::size_t mLength = 0;
};

/// `size` bytes that begin at a page, all of them touched.
class PageBuffer
{
public:
    PageBuffer() = default;
    explicit PageBuffer(long long size)
        : mBytes(static_cast<char*>(operator new (static_cast<std::size_t>(size),
                                                  std::align_val_t{4096})))
    {
        for (long long i = 0; i < size; i += 4096) {
            mBytes.get()[i] = 1;
        }
    }

    [[nodiscard]] char* Bytes() const noexcept { return mBytes.get(); }

private:
    struct Delete
    {
        void operator()(char* bytes) const { operator delete (bytes, std::align_val_t{4096}); }
    };
    std::unique_ptr<char, Delete> mBytes;
};

/// The processor must have `value` in memory now, and may not assume what it is afterwards.
inline void Keep(const void* value)
{
    asm volatile("" : : "r"(value) : "memory");
}
