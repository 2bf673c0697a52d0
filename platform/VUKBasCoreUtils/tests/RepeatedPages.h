#pragma once

#include <cstddef>
#include <cstring>
#include <system_error>

#include <sys/mman.h>
#include <unistd.h>

/// A stretch of addresses that shows the same few pages over and over: gigabytes to read and write
/// that cost 16 MiB. What is written in one place appears in all.
class RepeatedPages
{
public:
    /// `size` is rounded up to whole repeats; every byte is `fill` at first.
    RepeatedPages(std::size_t size, char fill) : mSize((size + kRepeat - 1) / kRepeat * kRepeat)
    {
        void* room =
            mmap(nullptr, mSize, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        Require(room != MAP_FAILED);
        mBytes = static_cast<char*>(room);
        const int file = memfd_create("repeated", MFD_CLOEXEC);
        Require(file >= 0 && ftruncate(file, static_cast<off_t>(kRepeat)) == 0);
        for (std::size_t at = 0; at < mSize; at += kRepeat) {
            Require(mmap(mBytes + at, kRepeat, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, file,
                         0) != MAP_FAILED);
        }
        close(file);
        std::memset(mBytes, fill, kRepeat);
    }

    RepeatedPages(const RepeatedPages&) = delete;
    RepeatedPages& operator=(const RepeatedPages&) = delete;
    ~RepeatedPages() { munmap(mBytes, mSize); }

    [[nodiscard]] char* Bytes() const { return mBytes; }

    /// Gives the last repeat pages of its own, all zero: a text that fills the rest ends there.
    void ZeroLastRepeat()
    {
        Require(mmap(mBytes + mSize - kRepeat, kRepeat, PROT_READ | PROT_WRITE,
                     MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0) != MAP_FAILED);
    }

    static constexpr std::size_t kRepeat = 16'777'216; // bytes

private:
    static void Require(bool done)
    {
        if (!done) {
            throw std::system_error(errno, std::generic_category(), "RepeatedPages");
        }
    }

    std::size_t mSize;
    char* mBytes = nullptr;
};
