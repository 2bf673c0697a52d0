#pragma once

#include "ModelFile.h"

#include <memory>
#include <string>
#include <vector>

namespace model {

/// The files that are open together, and the pool map that they share.
class DocumentImpl
{
public:
    explicit DocumentImpl(const char* signature) : mSignature(signature, 4) {}

    std::weak_ptr<FileImpl> AddFile(const std::string& name, int mode);
    std::weak_ptr<FileImpl> Create(const std::string& name, bool temporary, bool ownEntryOnly);
    void Flush();
    void Close();
    void Close(const std::weak_ptr<FileImpl>& file);

    [[nodiscard]] const std::shared_ptr<PoolMap>& Map() const noexcept { return mMap; }
    [[nodiscard]] const std::string& Signature() const noexcept { return mSignature; }

private:
    [[nodiscard]] std::shared_ptr<FileImpl> Added(const std::string& name) const;

    std::shared_ptr<PoolMap> mMap = std::make_shared<PoolMap>();
    std::vector<std::shared_ptr<FileImpl>> mFiles; // null where one was closed
    std::string mSignature;
};

/// The next file that is created gets this name: its unique part is known to the real library
/// alone.
void TellName(const std::string& name);

/// What the caller holds. One that was moved from has nothing behind it.
class Document
{
public:
    enum AccessMode
    {
        Write = 0,
        Update = 1,
        Read = 2
    };

    explicit Document(const char* signature) : mImpl(std::make_unique<DocumentImpl>(signature)) {}

    File AddFile(const std::string& name, AccessMode mode);
    File CreateTemporary(const std::string& name, bool flag);
    File CreateGenerated(const std::string& name, const std::string& second, bool flag);
    void Flush() { Checked(49).Flush(); }
    void Close() { Checked(58).Close(); }
    void Close(const File& file) { Checked(67).Close(file.Impl()); }

    static int GetFileType(const std::string& name);
    static bool UpgradeRequired(const std::string& name);
    static bool DowngradeRequired(const std::string& name);
    static bool BinaryUpgradeRequired(const std::string& name);

private:
    [[nodiscard]] DocumentImpl& Checked(int line) const;

    std::unique_ptr<DocumentImpl> mImpl;
};
} // namespace model
