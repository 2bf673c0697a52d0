#include "ModelDocument.h"

#include "ModelCheck.h"

#include <utility>

namespace model {
namespace {

constexpr char kSource[] = "VUKSimRpm_DocumentImpl";

// The first 9 bytes of a file, or what there is of them.
std::string Beginning(const std::string& name)
{
    OpenFile file;
    file.OpenExisting(name, true);
    std::string bytes(9, '\0');
    bytes.resize(file.Read(0, 9, bytes.data()));
    return bytes;
}

int VersionOf(const std::string& name, int line)
{
    const std::string beginning = Beginning(name);
    if (beginning.size() < 9) {
        Raise("VUKSimExcNotSimFile", kSource, line);
    }
    return static_cast<signed char>(beginning[8]);
}

// A created file's name has a part that only the real library knows; it tells.
std::string& ToldName()
{
    static std::string name;
    return name;
}
} // namespace

void TellName(const std::string& name)
{
    ToldName() = name;
}

std::shared_ptr<FileImpl> DocumentImpl::Added(const std::string& name) const
{
    const auto content = Disk::Current().Find(name);
    for (const auto& file : mFiles) {
        if (file != nullptr && content != nullptr &&
            Disk::Current().Find(file->Name()) == content) {
            return file;
        }
    }
    return nullptr;
}

std::weak_ptr<FileImpl> DocumentImpl::AddFile(const std::string& name, int mode)
{
    if (const auto added = Added(name)) {
        if (mode == Document::Write) {
            Raise("VUKSimExcCantCreateFile", kSource, 44, {}, name);
        }
        return added;
    }
    auto file = std::make_shared<FileImpl>(*this);
    if (mode == Document::Write) {
        file->OpenWrite(name, false);
    } else {
        Check(mode == Document::Update || mode == Document::Read, "!\"Bad mode.\"", kSource, 73);
        file->OpenExisting(name, mode == Document::Read);
    }
    mFiles.push_back(file);
    return file;
}

std::weak_ptr<FileImpl> DocumentImpl::Create(const std::string& name, bool temporary,
                                             bool ownEntryOnly)
{
    auto file = std::make_shared<FileImpl>(*this);
    file->Create(name, temporary, ownEntryOnly);
    mFiles.push_back(file);
    return file;
}

void DocumentImpl::Flush()
{
    for (const auto& file : mFiles) {
        if (file != nullptr) {
            file->Flush();
        }
    }
}

void DocumentImpl::Close()
{
    for (auto& file : mFiles) {
        if (file != nullptr) {
            file->Close();
            file.reset();
        }
    }
    mFiles.clear();
    mMap = std::make_shared<PoolMap>();
}

void DocumentImpl::Close(const std::weak_ptr<FileImpl>& file)
{
    const auto wanted = file.lock();
    for (auto& candidate : mFiles) {
        if (candidate != nullptr && candidate == wanted) {
            candidate->Close();
            candidate.reset();
            return;
        }
    }
    Raise("VUKSimExcCantGetFile", kSource, 138);
}

File Document::AddFile(const std::string& name, AccessMode mode)
{
    return File(Checked(24).AddFile(name, mode));
}

File Document::CreateTemporary(const std::string&, bool flag)
{
    return File(Checked(41).Create(ToldName(), true, flag));
}

File Document::CreateGenerated(const std::string&, const std::string&, bool flag)
{
    return File(Checked(33).Create(ToldName(), false, flag));
}

int Document::GetFileType(const std::string& name)
{
    const std::string beginning = Beginning(name);
    if (beginning.size() < 9 || beginning.compare(0, 8, "\x89SIM\r\n\x1A\n") != 0) {
        return 0;
    }
    const int version = static_cast<signed char>(beginning[8]);
    if (version < 1 || version > 6) {
        return 0;
    }
    return version <= 2 ? 2 : 1;
}

bool Document::UpgradeRequired(const std::string& name)
{
    return VersionOf(name, 189) <= 5;
}

bool Document::DowngradeRequired(const std::string& name)
{
    return VersionOf(name, 202) > 6;
}

bool Document::BinaryUpgradeRequired(const std::string& name)
{
    return VersionOf(name, 176) != 6;
}

DocumentImpl& Document::Checked(int line) const
{
    if (mImpl == nullptr) {
        Raise("VUKSimExcValidationFailure", "VUKSimRpm_Document", line);
    }
    return *mImpl;
}
} // namespace model
