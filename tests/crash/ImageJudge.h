#pragma once

#include "CrashImage.h"
#include "Expectation.h"
#include "ImageFiles.h"
#include "Ledger.h"
#include "Outcome.h"
#include "PoolView.h"
#include "SalvageJudge.h"
#include "VUKString.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/// Opens crash images of one run with the real library, holds them against the promises, goes on
/// working with them and looks again.
class ImageJudge
{
public:
    /// Both must outlive the judge and change no more.
    ImageJudge(const Ledger& ledger, const DiskLog& log) : mLedger(ledger), mLog(log) {}

    [[nodiscard]] Outcome Judge(const CrashImage& image);

private:
    // One file of the image that is at hand.
    struct Opened
    {
        std::size_t number;
        VUKString name;
        bool refused = false;
        std::vector<PoolView> pools = {};
        std::string appended = {}; // to the last pool, when the run goes on
    };

    void Expect(const CrashImage& image);
    void Open(const CrashImage& image, std::vector<Opened>& files, Outcome& outcome);
    void Continue(std::vector<Opened>& files, Outcome& outcome);
    void OpenAgain(const std::vector<Opened>& files, Outcome& outcome);
    void JudgeContinued(const std::vector<PoolView>& found, const Opened& before,
                        Outcome& outcome) const;
    void JudgeRefused(const CrashImage& image, const Opened& file, Outcome& outcome) const;

    const Ledger& mLedger;
    const DiskLog& mLog;
    ImageFiles mFiles;
    SalvageJudge mSalvage;
    std::vector<FileExpectation> mExpected; // by file, for the moment and model below
    std::optional<CrashModel> mModel;
    std::size_t mMoment = 0;
};
