#include "CrashImage.h"

#include <algorithm>
#include <limits>
#include <map>
#include <random>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t kSector = 512; // bytes: the most that a disk writes whole or not at all
constexpr std::size_t kPage = 4096;  // bytes: a file may grow by these within one write

// What the power can leave of one file: a size, and a version of each sector changed since the last
// sync. The digits of a choice say: present or not, which size, which version of each sector.
class FileChoices
{
public:
    void Create() { mNow.present = true; }

    // As long as the removal is not durable the file may be there, with all that it held.
    void Remove() { mNow.present = false; }

    // What was done is durable; only this state of the content can be found from now on.
    void Sync()
    {
        mDurable.bytes = mNow.bytes;
        mSizes = {mNow.bytes.size()};
        mSectors.clear();
    }

    void SyncName() { mDurable.present = mNow.present; }

    void Do(const DiskEvent& event)
    {
        const std::size_t before = mNow.bytes.size();
        Apply(mNow, event);
        const std::size_t after = mNow.bytes.size();
        if (event.kind == DiskEvent::Kind::Write) {
            for (std::size_t size = (before / kPage + 1) * kPage; size < after; size += kPage) {
                AddSize(size);
            }
            AddVersions(event.position, event.position + event.bytes.size());
        } else {
            AddVersions(after, before);
        }
        AddSize(after);
    }

    // How many values each digit has.
    [[nodiscard]] std::vector<std::size_t> Radices() const
    {
        std::vector<std::size_t> radices{mNow.present == mDurable.present ? 1U : 2U, mSizes.size()};
        for (const auto& [sector, versions] : mSectors) {
            radices.push_back(versions.size());
        }
        return radices;
    }

    [[nodiscard]] DiskFile Build(const std::size_t* digits, std::string& said) const
    {
        if (!(digits[0] == 0 ? mNow : mDurable).present) {
            said += " missing";
            return {};
        }
        DiskFile file{true, mDurable.bytes};
        const std::size_t size = mSizes[digits[1]];
        file.bytes.resize(size);
        said += " " + std::to_string(size) + " bytes";
        std::size_t index = 2;
        for (const auto& [sector, versions] : mSectors) {
            const std::size_t version = digits[index++];
            said += " " + std::to_string(sector) + ":" + std::to_string(version);
            const std::size_t begin = sector * kSector;
            if (begin < size) {
                const std::size_t length = std::min(kSector, size - begin);
                file.bytes.replace(begin, length, versions[version], 0, length);
            }
        }
        return file;
    }

private:
    void AddSize(std::size_t size)
    {
        if (std::ranges::find(mSizes, size) == mSizes.end()) {
            mSizes.push_back(size);
        }
    }

    void AddVersions(std::size_t begin, std::size_t end)
    {
        for (std::size_t sector = begin / kSector; sector * kSector < end; ++sector) {
            auto& versions = mSectors[sector];
            if (versions.empty()) {
                versions.push_back(SectorOf(mDurable.bytes, sector));
            }
            std::string now = SectorOf(mNow.bytes, sector);
            if (std::ranges::find(versions, now) == versions.end()) {
                versions.push_back(std::move(now));
            }
        }
    }

    // Zeros behind the end.
    static std::string SectorOf(const std::string& bytes, std::size_t sector)
    {
        const std::size_t begin = std::min(sector * kSector, bytes.size());
        std::string result = bytes.substr(begin, kSector);
        result.resize(kSector);
        return result;
    }

    DiskFile mDurable;
    DiskFile mNow;
    std::vector<std::size_t> mSizes{0};
    std::map<std::size_t, std::vector<std::string>> mSectors; // by number; the durable one first
};

class Moment
{
public:
    Moment(const std::vector<std::string>& names, const std::vector<FileChoices>& files)
        : mNames(names), mFiles(files)
    {
        for (const FileChoices& file : files) {
            mStarts.push_back(mRadices.size());
            const auto radices = file.Radices();
            mRadices.insert(mRadices.end(), radices.begin(), radices.end());
        }
    }

    void Visit(std::size_t most, std::mt19937_64& random, CrashImage& image,
               const CrashVisitor& visit) const
    {
        std::vector<std::size_t> digits(mRadices.size(), 0);
        if (FewerThan(most)) {
            do {
                Show(digits, image, visit);
            } while (Next(digits));
            return;
        }
        Show(digits, image, visit);
        for (std::size_t i = 0; i < digits.size(); ++i) {
            const bool presence = std::ranges::find(mStarts, i) != mStarts.end();
            digits[i] = presence ? 0 : mRadices[i] - 1;
        }
        Show(digits, image, visit);
        for (std::size_t count = 2; count < most; ++count) {
            for (std::size_t i = 0; i < digits.size(); ++i) {
                digits[i] = random() % mRadices[i];
            }
            Show(digits, image, visit);
        }
    }

private:
    [[nodiscard]] bool FewerThan(std::size_t most) const
    {
        std::size_t product = 1;
        for (const std::size_t radix : mRadices) {
            product *= radix;
            if (product > most) {
                return false;
            }
        }
        return true;
    }

    [[nodiscard]] bool Next(std::vector<std::size_t>& digits) const
    {
        for (std::size_t i = 0; i < digits.size(); ++i) {
            if (++digits[i] < mRadices[i]) {
                return true;
            }
            digits[i] = 0;
        }
        return false;
    }

    void Show(const std::vector<std::size_t>& digits, CrashImage& image,
              const CrashVisitor& visit) const
    {
        image.choices.clear();
        for (std::size_t i = 0; i < mFiles.size(); ++i) {
            image.choices += (i == 0 ? "" : "; ") + mNames[i];
            image.files[i] = mFiles[i].Build(digits.data() + mStarts[i], image.choices);
        }
        visit(image);
    }

    const std::vector<std::string>& mNames;
    const std::vector<FileChoices>& mFiles;
    std::vector<std::size_t> mRadices;
    std::vector<std::size_t> mStarts; // of each file's digits
};

void Advance(std::vector<FileChoices>& files, const DiskEvent& event)
{
    if (event.kind == DiskEvent::Kind::NameSync) {
        std::ranges::for_each(files, [](FileChoices& file) { file.SyncName(); });
        return;
    }
    FileChoices& file = files[static_cast<std::size_t>(event.file)];
    if (event.kind == DiskEvent::Kind::Create) {
        file.Create();
    } else if (event.kind == DiskEvent::Kind::Remove) {
        file.Remove();
    } else if (event.kind == DiskEvent::Kind::Sync) {
        file.Sync();
    } else {
        file.Do(event);
    }
}
} // namespace

void VisitPowerLost(const DiskLog& log, std::size_t most, std::uint64_t seed,
                    const CrashVisitor& visit)
{
    std::vector<FileChoices> files(log.Names().size());
    CrashImage image{log.Start(), CrashModel::PowerLost, 0, {}};
    std::mt19937_64 random(seed);
    for (const DiskEvent& event : log.Events()) {
        Advance(files, event);
        ++image.moment;
        Moment(log.Names(), files).Visit(most, random, image, visit);
    }
}
