#pragma once

#include "ModelDisk.h"
#include "ModelPool.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace model {

class DocumentImpl;

/// One open file of a document: pools in file order, and the logical end behind them.
class FileImpl
{
public:
    explicit FileImpl(DocumentImpl& document) : mDocument(document) {}

    void OpenExisting(const std::string& name, bool readOnly);
    void OpenWrite(const std::string& name, bool ownEntryOnly);
    void Create(const std::string& name, bool temporary, bool ownEntryOnly);

    void NewPool(bool ownEntryOnly, const char* uuid);
    void AppendPool(PoolImpl& source);
    void Flush();
    void Close();

    [[nodiscard]] std::weak_ptr<PoolImpl> PoolAt(unsigned int index) const;
    [[nodiscard]] std::weak_ptr<PoolImpl> CurrentPool() const;
    [[nodiscard]] unsigned int PoolCount() const;

    std::uint64_t Read(std::uint64_t position, std::uint64_t length, char* buffer) const;
    std::uint64_t Write(std::uint64_t position, std::uint64_t length, const char* buffer);
    void Extend(std::uint64_t newEnd);

    /// What a direct locator does: no look at the file's mode, none at its end.
    std::uint64_t WriteAnywhere(std::uint64_t position, std::uint64_t length, const char* buffer);

    [[nodiscard]] const std::string& Name() const noexcept { return mFile.Name(); }
    [[nodiscard]] bool ReadOnly() const noexcept { return mFile.ReadOnly(); }
    [[nodiscard]] std::uint64_t Size() const { return mFile.Size(); } // on disk
    [[nodiscard]] const std::string& Signature() const;

private:
    void Load();
    std::uint64_t DropEmptyPool(); // returns where the next pool goes
    void FreezeCurrentPool();
    void MakeCurrent(const std::shared_ptr<PoolImpl>& pool);
    [[nodiscard]] PoolMap& Map() const;
    [[nodiscard]] bool HasPool() const noexcept { return mCurrent >= 0; }
    [[nodiscard]] const std::shared_ptr<PoolImpl>& Current() const;

    DocumentImpl& mDocument;
    OpenFile mFile;
    std::vector<std::shared_ptr<PoolImpl>> mPools;
    int mCurrent = -1; // index of the pool that grows
    std::uint64_t mEnd = 0;
    std::uint64_t mWritten = 0; // up to where this object knows that there are bytes
};

/// A handle on a file that may be closed.
class File
{
public:
    explicit File(std::weak_ptr<FileImpl> file) : mFile(std::move(file)) {}

    [[nodiscard]] bool Null() const noexcept { return mFile.expired(); }
    [[nodiscard]] std::string FileName() const { return Live()->Name(); }
    [[nodiscard]] bool ReadOnly() const { return Live()->ReadOnly(); }
    [[nodiscard]] unsigned int PoolCount() const { return Live()->PoolCount(); }
    [[nodiscard]] model::Pool Pool(unsigned int index) const;
    [[nodiscard]] model::Pool Pool() const;
    [[nodiscard]] Locator Start() const;
    [[nodiscard]] Locator End() const;
    Locator Allocate(std::uint64_t length);
    void NewPool(bool ownEntryOnly, const char* uuid) { Live()->NewPool(ownEntryOnly, uuid); }
    void AppendPool(const model::Pool& pool);
    void Flush() { Live()->Flush(); }

    [[nodiscard]] const std::weak_ptr<FileImpl>& Impl() const noexcept { return mFile; }

private:
    [[nodiscard]] std::shared_ptr<FileImpl> Live() const;

    std::weak_ptr<FileImpl> mFile;
};
} // namespace model
