#include "VUKSimRpm_DocumentImpl.h"

#include "VUKSimExcCantCreateFile.h"
#include "VUKSimExcCantGetFile.h"
#include "VUKSimExcNotSimFile.h"
#include "VUKSimRpm_Assert.h"
#include "VUKSimRpm_FileImpl.h"
#include "VUKSimRpm_PoolDirectoryImpl.h"
#include "VUKSimRpm_PoolHeader.h"
#include "VUKSimRpm_PoolImpl.h"
#include "VUKSimRpm_PoolMap.h"
#include "VUKSimUttFileUtils.h"
#include "VUKSimUttOSFile.h"
#include "VUKSimUttUtils.h"

#include <cstring>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_DocumentImpl";

namespace at {
constexpr int kAddFileInDocument = 44;
constexpr int kAddFileBadMode = 73;
constexpr int kCloseUnknownFile = 138;
constexpr int kBinaryUpgradeShort = 176;
constexpr int kUpgradeShort = 189;
constexpr int kDowngradeShort = 202;
} // namespace at

// The first bytes of a file on disk, up to the version.
struct FileStart
{
    char bytes[VUKSimRpm_PoolHeader::kVersionEnd];
    bool complete;
};

FileStart ReadStart(const VUKString& name)
{
    VUKSimUttOSFile file;
    file.OpenRead(name);
    FileStart start = {};
    start.complete = file.Read(start.bytes, sizeof start.bytes) == sizeof start.bytes;
    file.Close();
    return start;
}

// The version, whatever the signature says. `line` is where a file too short for it is reported.
signed char ReadVersion(const VUKString& name, int line)
{
    const FileStart start = ReadStart(name);
    if (!start.complete) {
        VUKSimExcNotSimFile().Throw(kSource, line);
    }
    return VUKSimRpm_PoolHeader::Version(start.bytes);
}

// The text is the condition, and a text is never false: clang is told that this is meant.
#ifdef __clang__
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wstring-conversion"
#endif
void RefuseMode()
{
    VUKSIMRPM_ASSERT(!"Bad mode.", kSource, at::kAddFileBadMode);
}
#ifdef __clang__
#pragma clang diagnostic pop
#endif
} // namespace

VUKSimRpm_DocumentImpl::VUKSimRpm_DocumentImpl(const char* signature)
    : mPoolMap(VUKBasMakeShared<VUKSimRpm_PoolMap>())
{
    if (signature != nullptr) {
        std::memcpy(&mSignature, signature, strnlen(signature, sizeof mSignature));
    }
}

VUKSimRpm_DocumentImpl::~VUKSimRpm_DocumentImpl() = default;

VUKBasWeakPtr<VUKSimRpm_PoolMap> VUKSimRpm_DocumentImpl::PoolMap() const
{
    return mPoolMap;
}

VUKBasWeakPtr<VUKSimRpm_FileImpl>
VUKSimRpm_DocumentImpl::AddFile(const VUKString& name, VUKSimRpm_Document::AccessMode mode)
{
    if (mode != VUKSimRpm_Document::Write) {
        if (const auto open = FindFile(name)) {
            return open;
        }
    } else if (VUKSimUttFileUtils::FileExists(name) && FindFile(name)) {
        VUKSimExcCantCreateFile(VUKSimUttUtils::Copy(name)).Throw(kSource, at::kAddFileInDocument);
    }
    const auto file = NewFile();
    switch (mode) {
    case VUKSimRpm_Document::Update:
        file->OpenUpdate(name);
        break;
    case VUKSimRpm_Document::Read:
        file->OpenRead(name);
        break;
    case VUKSimRpm_Document::Write:
        file->OpenWrite(name, false);
        break;
    default:
        RefuseMode();
    }
    mFiles.push_back(file);
    return file;
}

VUKBasWeakPtr<VUKSimRpm_FileImpl> VUKSimRpm_DocumentImpl::CreateTemporary(const VUKString& name,
                                                                          bool flag)
{
    const auto file = NewFile();
    file->CreateTemporary(name, flag);
    mFiles.push_back(file);
    return file;
}

VUKBasWeakPtr<VUKSimRpm_FileImpl>
VUKSimRpm_DocumentImpl::CreateGenerated(const VUKString& name, const VUKString& second, bool flag)
{
    const auto file = NewFile();
    file->CreateGenerated(name, second, flag);
    mFiles.push_back(file);
    return file;
}

void VUKSimRpm_DocumentImpl::Flush()
{
    for (const auto& file : mFiles) {
        if (file) {
            file->Flush();
        }
    }
}

void VUKSimRpm_DocumentImpl::Close()
{
    for (auto& file : mFiles) {
        if (file) {
            file->Close();
            file.reset();
        }
    }
    mFiles.clear();
    // Every weak pointer to the old map expires here, and every locator with it.
    mPoolMap = VUKBasMakeShared<VUKSimRpm_PoolMap>();
}

void VUKSimRpm_DocumentImpl::Close(const VUKBasWeakPtr<VUKSimRpm_FileImpl>& file)
{
    const auto wanted = file.lock();
    for (auto& open : mFiles) {
        if (open && open == wanted) {
            open->Close();
            open.reset();
            return;
        }
    }
    VUKSimExcCantGetFile().Throw(kSource, at::kCloseUnknownFile);
}

VUKBasSharedPtr<VUKSimRpm_PoolDirectoryImpl> VUKSimRpm_DocumentImpl::NewDirectory()
{
    auto directory = VUKBasMakeShared<VUKSimRpm_PoolDirectoryImpl>(PoolMap());
    directory->Init(false, nullptr);
    return directory;
}

int VUKSimRpm_DocumentImpl::GetFileType(const VUKString& name)
{
    const FileStart start = ReadStart(name);
    if (!start.complete || !VUKSimRpm_PoolHeader::HasSignature(start.bytes)) {
        return 0;
    }
    const signed char version = VUKSimRpm_PoolHeader::Version(start.bytes);
    if (version < 1 || version > VUKSimRpm_PoolHeader::kCurrentVersion) {
        return 0;
    }
    return version <= 2 ? 2 : 1;
}

bool VUKSimRpm_DocumentImpl::UpgradeRequired(const VUKString& name)
{
    return ReadVersion(name, at::kUpgradeShort) < VUKSimRpm_PoolHeader::kCurrentVersion;
}

bool VUKSimRpm_DocumentImpl::DowngradeRequired(const VUKString& name)
{
    return ReadVersion(name, at::kDowngradeShort) > VUKSimRpm_PoolHeader::kCurrentVersion;
}

bool VUKSimRpm_DocumentImpl::BinaryUpgradeRequired(const VUKString& name)
{
    return ReadVersion(name, at::kBinaryUpgradeShort) != VUKSimRpm_PoolHeader::kCurrentVersion;
}

// The open file that `name` denotes, by identity of the file on disk; null when there is none.
VUKBasSharedPtr<VUKSimRpm_FileImpl> VUKSimRpm_DocumentImpl::FindFile(const VUKString& name) const
{
    for (const auto& file : mFiles) {
        if (file && VUKSimUttFileUtils::SameFile(file->FileName(), name)) {
            return file;
        }
    }
    return {};
}

VUKBasSharedPtr<VUKSimRpm_FileImpl> VUKSimRpm_DocumentImpl::NewFile()
{
    return VUKBasMakeShared<VUKSimRpm_FileImpl>(*this);
}
