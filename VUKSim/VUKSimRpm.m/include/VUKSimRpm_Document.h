#pragma once

#include "VUKSimRpm_Export.h"
#include "VUKSimRpm_File.h"
#include "VUKString.h"

class VUKSimRpm_DocumentImpl;

/// The set of files that are open together, so that locators in any pool reach pools in any file.
///
/// Owns its files. Destroying it releases them without writing anything: a host that wants its
/// files complete calls Flush or Close first. One thread at a time, for all documents of a process.
/// A moved-from document can only be destroyed or assigned to; its members throw
/// VUKSimExcValidationFailure.
class VUKSIMRPM_EXPORT VUKSimRpm_Document
{
public:
    /// How AddFile opens a file.
    enum AccessMode
    {
        Write = 0,  // create the file, or empty an existing one, and give it a first pool
        Update = 1, // open an existing file for reading and writing
        Read = 2    // open an existing file for reading
    };

    /// An empty document. The first four characters of `signature`, which are copied, mark every
    /// pool it writes, and it opens only pools that carry them. Missing ones count as zero bytes.
    explicit VUKSimRpm_Document(const char* signature);

    VUKSimRpm_Document(const VUKSimRpm_Document&) = delete;
    VUKSimRpm_Document& operator=(const VUKSimRpm_Document&) = delete;
    VUKSimRpm_Document(VUKSimRpm_Document&& that) noexcept;
    VUKSimRpm_Document& operator=(VUKSimRpm_Document&& that) noexcept;
    ~VUKSimRpm_Document();

    /// Opens `name` and adds it. A file that is in the document already is returned as it is,
    /// whatever `mode` was asked for, except for Write.
    /// \throws VUKSimExcCantCreateFile for Write on a file of the document; the platform's file
    /// errors; the exceptions of loading pools; VUKBasAssertException "!\"Bad mode.\"" for another
    /// mode and a file that is not open. The document keeps its files; slots of pools that were
    /// loaded before the failure stay in the pool map.
    VUKSimRpm_File AddFile(const VUKString& name, AccessMode mode);

    /// A new file `name` plus a unique suffix, with a first pool (`flag`: see
    /// VUKSimRpm_File::NewPool); it is removed when it is closed. \throws the platform's file
    /// errors; the document's files stay as they are.
    VUKSimRpm_File CreateTemporary(const VUKString& name, bool flag);

    /// A new file `name` plus a unique part plus `second`, with a first pool; it is kept, also when
    /// that pool cannot be written. \throws as CreateTemporary.
    VUKSimRpm_File CreateGenerated(const VUKString& name, const VUKString& second, bool flag);

    /// Flushes every file, in the order they were added: see VUKSimRpm_File::Flush. Stops at the
    /// first failure.
    void Flush();

    /// Flushes and closes every file and forgets all slots: every locator is null afterwards. New
    /// files can be added. After a failure the files before it are closed and the others open.
    void Close();

    /// Flushes and closes one file. Locators into it come back to life when it is added again.
    /// \throws VUKSimExcCantGetFile when `file` is not an open file of this document; the
    /// platform's file errors: the document keeps the file then, and closing can be tried again.
    void Close(const VUKSimRpm_File& file);

    /// 1 for a file of format version 3 to 6, 2 for version 1 or 2, else 0. Does not load the file.
    /// \throws the platform's file errors when it cannot be opened or read, as do the other three.
    [[nodiscard]] static int GetFileType(const VUKString& name);

    /// Whether the version is 5 or less, greater than 6, other than 6. The signature plays no part.
    /// \throws VUKSimExcNotSimFile when the file has fewer than 9 bytes.
    [[nodiscard]] static bool UpgradeRequired(const VUKString& name);
    [[nodiscard]] static bool DowngradeRequired(const VUKString& name);
    [[nodiscard]] static bool BinaryUpgradeRequired(const VUKString& name);

private:
    VUKSimRpm_DocumentImpl& Checked(int line) const;

    VUKSimRpm_DocumentImpl* mImpl; // owned; null once moved from
};
