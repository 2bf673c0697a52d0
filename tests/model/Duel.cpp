#include "Duel.h"

#include "Damage.h"

#include <filesystem>
#include <sstream>
#include <stdexcept>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int kStepsBetweenComparisons = 50;

// An open file of the system; what fails here is a std::runtime_error.
class SystemFile
{
public:
    SystemFile(const std::string& name, int flags) : mName(name), mFile(open(name.c_str(), flags))
    {
        Hold(mFile >= 0);
    }
    SystemFile(const SystemFile&) = delete;
    SystemFile& operator=(const SystemFile&) = delete;
    ~SystemFile() { close(mFile); }

    void Read(std::string& content) const
    {
        struct stat status = {};
        Hold(fstat(mFile, &status) == 0);
        content.resize(static_cast<std::size_t>(status.st_size));
        Hold(pread(mFile, content.data(), content.size(), 0) == status.st_size);
    }

    void Replace(const std::string& content) const
    {
        const auto size = static_cast<ssize_t>(content.size());
        Hold(ftruncate(mFile, size) == 0);
        Hold(pwrite(mFile, content.data(), content.size(), 0) == size);
    }

private:
    void Hold(bool good) const
    {
        if (!good) {
            throw std::runtime_error("cannot use " + mName);
        }
    }

    const std::string& mName;
    int mFile;
};

std::string DescribeDifference(const std::string& name, const std::string& real,
                               const std::string& model)
{
    std::size_t at = 0;
    while (at < std::min(real.size(), model.size()) && real[at] == model[at]) {
        ++at;
    }
    Outcome library;
    library.numbers = {real.size()};
    library.bytes = real.substr(at, 48);
    Outcome expected;
    expected.numbers = {model.size()};
    expected.bytes = model.substr(at, 48);
    std::ostringstream text;
    text << name << " differs from byte " << at << " on\n  library: " << library
         << "\n  model:   " << expected;
    return text.str();
}
} // namespace

Duel::Duel(const std::string& folder) : mFolder(folder)
{
    model::Disk::Current().Clear();
    model::UuidSource::Current() = {};
    mRealPlayer.emplace(folder);
    mModelPlayer.emplace(folder);
}

Duel::~Duel()
{
    mRealPlayer.reset();
    mModelPlayer.reset();
    for (const auto& entry : std::filesystem::directory_iterator(mFolder)) {
        std::filesystem::remove(entry.path());
    }
}

std::optional<std::string> Duel::Step(const Operation& operation)
{
    switch (operation.kind) {
    case Kind::DamageFile:
    case Kind::CutFile:
    case Kind::LengthenFile:
    case Kind::RemoveFile:
        ChangeDisk(operation);
        break;
    default:
        mRealPlayer->Play(operation, mReal);
        model::UuidSource::Current().told = mReal.uuid;
        model::TellName(mReal.name);
        mModelPlayer->Play(operation, mModel);
        if (!(mReal == mModel)) {
            std::ostringstream text;
            text << operation << "\n  library: " << mReal << "\n  model:   " << mModel;
            return text.str();
        }
    }
    if (++mSteps % kStepsBetweenComparisons == 0 || mReal.failure) {
        return CompareFiles();
    }
    return std::nullopt;
}

std::optional<std::string> Duel::CompareFiles() const
{
    static std::string real; // keeps its room
    for (const auto& [name, content] : model::Disk::Current().Files()) {
        SystemFile(name, O_RDONLY).Read(real);
        if (real != *content) {
            return DescribeDifference(name, real, *content);
        }
    }
    return std::nullopt;
}

std::optional<std::string> Duel::CompareFolders() const
{
    const auto& files = model::Disk::Current().Files();
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(mFolder)) {
        if (!files.contains(entry.path().string())) {
            return entry.path().string() + " is no file of the model";
        }
        ++count;
    }
    if (count != files.size()) {
        return "the model has more files than the folder";
    }
    return std::nullopt;
}

// The same change in both worlds. Files that are open are left alone most of the time.
void Duel::ChangeDisk(const Operation& operation)
{
    mReal.Clear();
    const std::string& name = mModelPlayer->NameOf(operation.arguments[0]);
    model::Disk& disk = model::Disk::Current();
    const auto content = disk.Find(name);
    mReal.skipped = content == nullptr;
    if (mReal.skipped) {
        return;
    }
    if (operation.kind == Kind::RemoveFile) {
        disk.Remove(name);
        unlink(name.c_str());
        return;
    }
    const std::size_t evenOpen = FactsOf(operation.kind).arguments.size() - 1; // the last one
    mReal.skipped = content.use_count() > 2 && operation.arguments[evenOpen] == 0;
    if (!mReal.skipped && !content->empty()) {
        *content = Damaged(operation, *content);
        SystemFile(name, O_RDWR).Replace(*content);
    }
}
