#include "StoreContender.h"

#include <stdexcept>

void StoreContender::Make(const Job& job)
{
    switch (job.work) {
    case Workload::Overwrite:
    case Workload::Decode:
        Append(job);
        break;
    case Workload::ReadStrings:
        WriteStrings(job);
        break;
    case Workload::ReadRandom:
    case Workload::ReadImage:
    case Workload::WriteRandom:
    case Workload::Import:
        MakeBulk(job);
        break;
    case Workload::Chase:
        MakeNodes(job);
        break;
    case Workload::OpenPools:
        CreatePools(job);
        break;
    case Workload::StoreLocators:
    case Workload::LoadLocators:
        MakeTargets(job);
        break;
    case Workload::Append:
    case Workload::CreatePools:
    case Workload::WriteStrings:
        break;
    }
    Close();
}

Sample StoreContender::Run(const Job& job)
{
    switch (job.work) {
    case Workload::Append:
        return ReadBack(Append(job), job, Workload::Decode);
    case Workload::Overwrite: {
        Sample sample = Overwrite(job);
        sample.sum = Decode(job).sum;
        return sample;
    }
    case Workload::Decode:
        return Decode(job);
    case Workload::ReadRandom:
    case Workload::ReadImage:
        return ReadRandom(job);
    case Workload::Chase:
        return Chase(job);
    case Workload::CreatePools:
        return ReadBack(CreatePools(job), job, Workload::OpenPools);
    case Workload::OpenPools:
        return OpenPools(job);
    case Workload::Import:
        return Import(job);
    case Workload::WriteRandom:
        return WriteRandom(job);
    case Workload::StoreLocators:
        return StoreLocators(job);
    case Workload::LoadLocators:
        return LoadLocators(job);
    case Workload::WriteStrings:
        return ReadBack(WriteStrings(job), job, Workload::ReadStrings);
    case Workload::ReadStrings:
        return ReadStrings(job);
    }
    throw std::logic_error("no such workload");
}

Sample StoreContender::ReadBack(Sample written, const Job& job, Workload reading)
{
    Close();
    Job check = job;
    check.work = reading;
    Open(check);
    written.sum = Run(check).sum;
    Close();
    return written;
}

bool StoreContender::NeedsFiles(const Job& job)
{
    return job.work != Workload::Append && job.work != Workload::CreatePools &&
           job.work != Workload::OpenPools && job.work != Workload::WriteStrings;
}

void StoreContender::MakeTargets(const Job& /*job*/) {}

Sample StoreContender::Import(const Job& /*job*/)
{
    throw std::logic_error(Name() + " imports nothing");
}

Sample StoreContender::StoreLocators(const Job& /*job*/)
{
    throw std::logic_error(Name() + " stores no references");
}

Sample StoreContender::LoadLocators(const Job& /*job*/)
{
    throw std::logic_error(Name() + " loads no references");
}
