// A contender that can do most of the work: each workload is a function of its own.
#pragma once

#include "Contender.h"

/// Sends each job to its function. Those called Make... are not measured; the others are, and make
/// the store anew where they begin with an empty one. What a job wrote is read back for its sum.
class StoreContender : public Contender
{
public:
    void Make(const Job& job) override;
    Sample Run(const Job& job) override;

protected:
    /// Whether the job begins with files that Make left.
    [[nodiscard]] static bool NeedsFiles(const Job& job);

    /// The files of a job: store0, and store1 if there are two.
    [[nodiscard]] static std::string Path(const Job& job, long long file)
    {
        return job.folder + "/store" + std::to_string(file);
    }

    /// How many files the job works with.
    [[nodiscard]] static long long Files(const Job& job)
    {
        return job.work == Workload::Chase ? job.size : 1;
    }

private:
    Sample ReadBack(Sample written, const Job& job, Workload reading);

    virtual void MakeBulk(const Job& job) = 0;
    virtual void MakeNodes(const Job& job) = 0;
    virtual void MakeTargets(const Job& job); // that stored locators name
    virtual Sample Append(const Job& job) = 0;
    virtual Sample Overwrite(const Job& job) = 0;
    virtual Sample Decode(const Job& job) = 0;
    virtual Sample ReadRandom(const Job& job) = 0;
    virtual Sample WriteRandom(const Job& job) = 0;
    virtual Sample Chase(const Job& job) = 0;
    virtual Sample CreatePools(const Job& job) = 0;
    virtual Sample OpenPools(const Job& job) = 0;
    virtual Sample WriteStrings(const Job& job) = 0;
    virtual Sample ReadStrings(const Job& job) = 0;

    // These not every store offers.
    virtual Sample Import(const Job& job);
    virtual Sample StoreLocators(const Job& job);
    virtual Sample LoadLocators(const Job& job);
};
