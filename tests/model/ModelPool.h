#pragma once

#include "ModelDirectory.h"
#include "ModelLocator.h"

#include <cstdint>
#include <memory>
#include <string>

namespace model {

class FileImpl;

/// One pool of an open file. Positions and lengths are in bytes, arithmetic wraps at 64 bits.
class PoolImpl
{
public:
    PoolImpl(FileImpl& file, std::shared_ptr<Directory> directory, std::uint64_t position);

    /// For a new pool, whose directory is filled already.
    void Init();

    /// From the file, which ends at `end`; of all directories `directoryRoom` bytes may be left.
    void Load(std::uint64_t end, std::uint64_t directoryRoom);

    /// Writes header and directory.
    void Dump();

    [[nodiscard]] Locator Start() const;
    [[nodiscard]] Locator End() const;
    Locator Allocate(std::uint64_t n);
    std::uint64_t Read(std::uint64_t offset, std::uint64_t length, char* buffer) const;
    std::uint64_t Write(std::uint64_t offset, std::uint64_t length, const char* buffer) const;

    [[nodiscard]] FileImpl& File() const noexcept { return mFile; }
    [[nodiscard]] const std::shared_ptr<Directory>& Dir() const noexcept { return mDirectory; }
    [[nodiscard]] std::uint64_t DataLength() const noexcept { return length - mHeaderSize; }
    [[nodiscard]] std::uint32_t HeaderSize() const noexcept { return mHeaderSize; }
    [[nodiscard]] std::uint64_t DataPosition() const noexcept { return position + mHeaderSize; }

    // The file's pool management sets and reads these.
    bool immutable = true;
    std::uint64_t position;
    std::uint64_t length = 0; // of header, directory and data

private:
    [[nodiscard]] std::string Header() const;

    FileImpl& mFile;
    std::shared_ptr<Directory> mDirectory;
    std::uint32_t mHeaderSize = 0; // of header and directory
    std::string mReserved{"\2\0\0\0\0\0\0\0", 8};
};

/// A handle on a pool that may be gone.
class Pool
{
public:
    explicit Pool(std::weak_ptr<PoolImpl> pool) : mPool(std::move(pool)) {}

    [[nodiscard]] bool Null() const noexcept { return mPool.expired(); }
    [[nodiscard]] Locator Start() const { return mPool.lock()->Start(); }
    [[nodiscard]] Locator End() const { return mPool.lock()->End(); }
    [[nodiscard]] std::uint64_t Length() const { return mPool.lock()->DataLength(); }
    [[nodiscard]] unsigned int HeaderSizeBytes() const noexcept { return 48; }
    [[nodiscard]] unsigned int DirectorySizeBytes() const;
    [[nodiscard]] std::string GetGUID() const;
    [[nodiscard]] bool ReadOnly() const;
    Locator Allocate(std::uint64_t n) { return mPool.lock()->Allocate(n); }

    [[nodiscard]] const std::weak_ptr<PoolImpl>& Impl() const noexcept { return mPool; }

private:
    std::weak_ptr<PoolImpl> mPool;
};

/// A UUID as a text, which ends at its first zero byte.
std::string TextOf(const Uuid& uuid);
} // namespace model
