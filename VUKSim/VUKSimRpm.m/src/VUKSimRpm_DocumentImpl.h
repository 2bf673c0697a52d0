#pragma once

#include "VUKBasSharedPtr.h"
#include "VUKBasVectorGeneric.h"
#include "VUKBasWeakPtr.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_Export.h"
#include "VUKString.h"
#include "mem_Alloc.h"

class VUKSimRpm_FileImpl;
class VUKSimRpm_PoolDirectoryImpl;
class VUKSimRpm_PoolMap;

/// What VUKSimRpm_Document stands for: the open files and the pool map that they share.
///
/// Holds the only lasting strong references to both. See VUKSimRpm_Document for what the members
/// promise. Destroying it writes nothing.
class VUKSIMRPM_EXPORT VUKSimRpm_DocumentImpl : public mem_AllocationOperators
{
public:
    /// Takes four bytes of `signature` as they lie in memory; missing ones are zero.
    explicit VUKSimRpm_DocumentImpl(const char* signature);
    VUKSimRpm_DocumentImpl(const VUKSimRpm_DocumentImpl&) = delete;
    VUKSimRpm_DocumentImpl& operator=(const VUKSimRpm_DocumentImpl&) = delete;
    ~VUKSimRpm_DocumentImpl();

    [[nodiscard]] const unsigned int& Sig() const noexcept { return mSignature; }
    [[nodiscard]] VUKBasWeakPtr<VUKSimRpm_PoolMap> PoolMap() const;

    VUKBasWeakPtr<VUKSimRpm_FileImpl> AddFile(const VUKString& name,
                                              VUKSimRpm_Document::AccessMode mode);
    VUKBasWeakPtr<VUKSimRpm_FileImpl> CreateTemporary(const VUKString& name, bool flag);
    VUKBasWeakPtr<VUKSimRpm_FileImpl> CreateGenerated(const VUKString& name,
                                                      const VUKString& second, bool flag);

    void Flush();
    void Close();
    void Close(const VUKBasWeakPtr<VUKSimRpm_FileImpl>& file);

    /// A directory on this document's pool map with a new slot and every slot before it.
    [[nodiscard]] VUKBasSharedPtr<VUKSimRpm_PoolDirectoryImpl> NewDirectory();

    [[nodiscard]] static int GetFileType(const VUKString& name);
    [[nodiscard]] static bool UpgradeRequired(const VUKString& name);
    [[nodiscard]] static bool DowngradeRequired(const VUKString& name);
    [[nodiscard]] static bool BinaryUpgradeRequired(const VUKString& name);

private:
    [[nodiscard]] VUKBasSharedPtr<VUKSimRpm_FileImpl> FindFile(const VUKString& name) const;
    [[nodiscard]] VUKBasSharedPtr<VUKSimRpm_FileImpl> NewFile();

    VUKBasSharedPtr<VUKSimRpm_PoolMap> mPoolMap;
    VUKBasVectorGeneric<VUKBasSharedPtr<VUKSimRpm_FileImpl>> mFiles; // as added; null once closed
    unsigned int mSignature = 0;                                     // four bytes, not a number
};
