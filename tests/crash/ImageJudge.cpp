#include "ImageJudge.h"

#include "VUKBasException.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"

#include <string>

namespace {

// What the continued run adds: behind the last pool's data, then a pool of its own. Where the last
// pool leads behind the end of the file, every other run adds nothing to it: to allocate no byte is
// enough there for the new pool to find its place.
const std::string kAppended = "appended after the crash, 37 bytes...";
const std::string kInNewPool = "a new pool.";

std::string UuidOfNewPool(std::size_t file)
{
    return std::string(31, '!') + static_cast<char>('0' + file);
}

void Append(VUKSimRpm_File& file, const std::string& bytes)
{
    file.Allocate(bytes.size()).Write(bytes.size(), bytes.data());
}
} // namespace

Outcome ImageJudge::Judge(const CrashImage& image)
{
    Expect(image);
    Outcome outcome;
    std::vector<Opened> files;
    for (std::size_t i = 0; i < image.files.size(); ++i) {
        outcome.inPoolCall = outcome.inPoolCall || mExpected[i].inPoolCall;
        if (image.files[i].present) {
            JudgeExactBytes(image.files[i].bytes, mExpected[i], outcome);
            JudgeOpenBytes(image.files[i].bytes, mExpected[i], outcome);
            files.push_back({i, mFiles.Write(i, image.files[i].bytes)});
            mSalvage.Judge(files.back().name, mExpected[i], outcome);
        } else if (!mExpected[i].mayBeGone) {
            outcome.broken.push_back("P1: the file " + mLog.Names()[i] + " is gone");
        }
    }
    try {
        Open(image, files, outcome);
        Continue(files, outcome);
        OpenAgain(files, outcome);
    } catch (const VUKBasException& raised) {
        outcome.broken.push_back(std::string("going on after the crash: ") + raised.what());
    }
    for (const Opened& file : files) {
        JudgeRefused(image, file, outcome);
    }
    return outcome;
}

// The same for all images of a moment.
void ImageJudge::Expect(const CrashImage& image)
{
    if (mModel == image.model && mMoment == image.moment) {
        return;
    }
    mModel = image.model;
    mMoment = image.moment;
    mExpected.clear();
    for (int file = 0; file < static_cast<int>(image.files.size()); ++file) {
        mExpected.push_back(image.model == CrashModel::PowerLost
                                ? ExpectAfterPowerLoss(mLedger, mLog, file, image.moment)
                                : ExpectAfterKill(mLedger, mLog, file, image.moment,
                                                  image.model == CrashModel::KilledInCall));
    }
}

void ImageJudge::Open(const CrashImage& image, std::vector<Opened>& files, Outcome& outcome)
{
    VUKSimRpm_Document document("TEST");
    for (Opened& file : files) {
        const std::string& bytes = image.files[file.number].bytes;
        const FileExpectation& expected = mExpected[file.number];
        try {
            file.pools =
                ViewPools(document.AddFile(file.name, VUKSimRpm_Document::Read), bytes.size());
        } catch (const VUKBasException& raised) {
            file.refused = true;
            outcome.refused = true;
            outcome.refusedBy = raised.ClassName();
            if (!expected.inPoolCall) {
                outcome.broken.push_back(std::string("P2: refused: ") + raised.what());
            }
            continue;
        }
        JudgePools(file.pools, bytes, expected, outcome);
    }
}

void ImageJudge::Continue(std::vector<Opened>& files, Outcome& outcome)
{
    VUKSimRpm_Document document("TEST");
    for (Opened& file : files) {
        if (file.refused) {
            try {
                document.AddFile(file.name, VUKSimRpm_Document::Update);
                outcome.broken.push_back("refused for reading, but not for update");
            } catch (const VUKBasException&) {
                continue; // for the same reason
            }
        }
        VUKSimRpm_File handle = document.AddFile(file.name, VUKSimRpm_Document::Update);
        if (handle.PoolCount() > 0) {
            file.appended = outcome.pastEnd && mMoment % 2 == 1 ? "" : kAppended;
            Append(handle, file.appended);
        }
        handle.NewPool(false, UuidOfNewPool(file.number).c_str());
        Append(handle, kInNewPool);
    }
    document.Flush();
    document.Close();
}

void ImageJudge::OpenAgain(const std::vector<Opened>& files, Outcome& outcome)
{
    VUKSimRpm_Document document("TEST");
    for (const Opened& file : files) {
        if (!file.refused) {
            const std::string bytes = mFiles.Read(file.number);
            JudgeContinued(
                ViewPools(document.AddFile(file.name, VUKSimRpm_Document::Read), bytes.size()),
                file, outcome);
            JudgeExactBytes(bytes, mExpected[file.number], outcome);
        }
    }
}

void ImageJudge::JudgeContinued(const std::vector<PoolView>& found, const Opened& before,
                                Outcome& outcome) const
{
    bool held = found.size() == before.pools.size() + 1 &&
                found.back().uuid == UuidOfNewPool(before.number) &&
                found.back().data == kInNewPool;
    for (std::size_t i = 0; held && i < before.pools.size(); ++i) {
        const PoolView& old = before.pools[i];
        const bool last = i + 1 == before.pools.size();
        held = found[i].uuid == old.uuid && found[i].data.starts_with(old.data) &&
               found[i].dataLength == old.dataLength + (last ? before.appended.size() : 0);
        held = held && (!last || found[i].data.ends_with(before.appended));
    }
    if (!held) {
        outcome.broken.push_back("what was added after the crash is not there");
    }
}

void ImageJudge::JudgeRefused(const CrashImage& image, const Opened& file, Outcome& outcome) const
{
    if (file.refused && mFiles.Read(file.number) != image.files[file.number].bytes) {
        outcome.broken.push_back("a file that is refused was changed");
    }
}
