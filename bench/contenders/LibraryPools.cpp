// The library contender's pools: many small ones, and a large one imported.
#include "Library.h"

#include <cstdio>
#include <stdexcept>

Sample Library::CreatePools(const Job& job)
{
    Remove(Path(job, 0));
    return Timed(
        job.size,
        [&] {
            VUKSimRpm_File file = Add(Path(job, 0), Document::Write);
            char data[kPoolSize];
            for (long long i = 0; i < job.size; ++i) {
                FillBulk(data, i * kPoolSize, kPoolSize);
                file.NewPool(true, PoolName(i).c_str());
                file.Allocate(kPoolSize).Write(kPoolSize, data);
            }
        },
        [&] { mDocument->Flush(); });
}

Sample Library::OpenPools(const Job& job)
{
    mFiles.clear();
    mDocument.reset();
    return Timed(job.size, [&] {
        const VUKSimRpm_File file = Add(Path(job, 0), Document::Read);
        Word sum = 0;
        for (long long i = 0; i < job.size; ++i) {
            const VUKSimRpm_Pool pool = file.Pool(static_cast<unsigned>(i));
            char piece[kPoolRead];
            if (pool.GetGUID() != PoolName(i).c_str() ||
                pool.Start().Read(kPoolRead, piece) != kPoolRead) {
                throw std::runtime_error("another UUID or a short read");
            }
            sum += SumEnds<kPoolRead>(piece);
        }
        return sum;
    });
}

Sample Library::Import(const Job& job)
{
    std::remove(Path(job, 1).c_str());
    const VUKSimRpm_Pool source = mFiles[0].Pool(0);
    Document other("BNCH"); // a document holds each pool once
    VUKSimRpm_File copy = other.AddFile(Path(job, 1).c_str(), Document::Write);
    return Timed(
        1,
        [&] {
            copy.AppendPool(source);
            return static_cast<Word>(copy.Pool().Length());
        },
        [&] { other.Flush(); });
}
