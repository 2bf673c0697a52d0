// A small store for tests of locators, memory pools and streams, and bytes to fill it with.
#pragma once

#include "TemporaryFolder.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"
#include "VUKSimRpm_Locator.h"
#include "VUKSimRpm_Pool.h"

#include <cstdint>
#include <stdexcept>
#include <string>

/// `count` letters, abc...xyzabc...
inline std::string Letters(std::size_t count)
{
    std::string letters;
    for (std::size_t i = 0; i < count; ++i) {
        letters += static_cast<char>('a' + i % 26);
    }
    return letters;
}

/// Where in its page of 4,096 bytes it lies.
inline unsigned PlaceInPage(const char* byte)
{
    return reinterpret_cast<std::uintptr_t>(byte) % 4096;
}

/// What a read of `length` bytes delivers.
inline std::string ReadFrom(const VUKSimRpm_Locator& place, unsigned long length)
{
    std::string bytes(length, '?');
    bytes.resize(place.Read(length, bytes.data()));
    return bytes;
}

inline void WriteTo(const VUKSimRpm_Locator& place, const std::string& bytes)
{
    if (place.Write(bytes.size(), bytes.data()) != bytes.size()) {
        throw std::runtime_error("a write came back short");
    }
}

/// A document with one file, `a.sim`, whose only pool holds `data`, in a folder of its own.
///
/// The pool's directory names itself alone, so that the data begins at byte 80 of the file.
class OnePool
{
public:
    explicit OnePool(const std::string& data = "")
        : mFile(mDocument.AddFile(mFolder.File("a.sim"), VUKSimRpm_Document::Write))
    {
        WriteTo(mFile.Allocate(data.size()), data);
    }

    [[nodiscard]] const TemporaryFolder& Folder() const noexcept { return mFolder; }
    [[nodiscard]] VUKSimRpm_Document& Document() noexcept { return mDocument; }
    [[nodiscard]] VUKSimRpm_File& File() noexcept { return mFile; }
    [[nodiscard]] VUKSimRpm_Pool Pool() const { return mFile.Pool(0); }
    [[nodiscard]] VUKSimRpm_Locator Start() const { return Pool().Start(); }

    /// The pool's data as it lies in the file at this moment.
    [[nodiscard]] std::string Stored() const { return mFolder.Read("a.sim").substr(80); }

    /// Closes the file: the pool is gone, the document and its pool map live on.
    void CloseFile() { mDocument.Close(mFile); }

    /// Closes and adds the file again, for reading only.
    void ReopenReadOnly()
    {
        CloseFile();
        mFile = mDocument.AddFile(mFolder.File("a.sim"), VUKSimRpm_Document::Read);
    }

private:
    TemporaryFolder mFolder;
    VUKSimRpm_Document mDocument{"TEST"};
    VUKSimRpm_File mFile;
};
