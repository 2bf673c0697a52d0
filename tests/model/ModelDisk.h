#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace model {

/// The files of the model's world, as byte arrays under their names. A file whose name was removed
/// lives on for those who have it open.
class Disk
{
public:
    using Content = std::shared_ptr<std::string>;

    /// The one that all documents of the model share.
    static Disk& Current()
    {
        static Disk disk;
        return disk;
    }

    /// Null when there is no such file. A path through "/./" names the same file as one without.
    [[nodiscard]] Content Find(const std::string& name) const;

    /// A new, empty file; what `name` meant before is another file from now on.
    Content Make(const std::string& name);

    void Remove(const std::string& name) { mFiles.erase(Key(name)); }
    void Clear() { mFiles.clear(); }

    /// Whether somebody has the file open.
    [[nodiscard]] bool Open(const std::string& name) const;

    [[nodiscard]] const std::map<std::string, Content>& Files() const noexcept { return mFiles; }

private:
    static std::string Key(std::string name);

    std::map<std::string, Content> mFiles;
};

/// An open file as the operating system gives it to one user.
class OpenFile
{
public:
    OpenFile() = default;
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() { Close(); }

    void OpenExisting(const std::string& name, bool readOnly);
    void OpenWrite(const std::string& name);

    /// A file that is new under `name`, which was made unique before.
    void Create(const std::string& name, bool temporary);

    [[nodiscard]] const std::string& Name() const noexcept { return mName; }
    [[nodiscard]] bool ReadOnly() const noexcept { return mReadOnly; }
    [[nodiscard]] std::uint64_t Size() const;

    /// Returns how many bytes there were; the rest of `buffer` is left alone.
    std::uint64_t Read(std::uint64_t position, std::uint64_t length, char* buffer) const;
    std::uint64_t Write(std::uint64_t position, std::uint64_t length, const char* buffer);
    void Truncate(std::uint64_t size);
    void Flush() const;
    void Close();

private:
    Disk::Content mContent; // null when closed
    std::string mName;
    bool mReadOnly = false;
    bool mTemporary = false;
};
} // namespace model
