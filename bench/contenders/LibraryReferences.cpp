// The library contender's locators and texts.
#include "Library.h"

#include "Posix.h"
#include "VUKSimRpm_BStreamAppendToPool.h"
#include "VUKSimRpm_BStreamReadBuffer.h"
#include "VUKSimRpm_BStreamReadLocator.h"
#include "VUKSimRpm_BStreamWriteBuffer.h"

#include <algorithm>
#include <stdexcept>

namespace {
constexpr unsigned kRecord = 12; // bytes of a stored locator
} // namespace

void Library::MakeNodes(const Job& job)
{
    for (long long file = 0; file < job.size; ++file) {
        // Empty, and dropped below; its UUID stays known, for directories to name.
        Add(Path(job, file), Document::Write).NewPool(true, PoolName(file).c_str());
    }
    for (std::size_t file = 0; file < mFiles.size(); ++file) {
        mFiles[file].NewPool(true, nullptr);
    }
    for (std::size_t file = 0; file < mFiles.size(); ++file) {
        mFiles[file].NewPool(false, PoolName(static_cast<long long>(file)).c_str());
    }
    Close(); // what is opened goes by UUID: now the first pool's directory names the last as well

    std::vector<VUKSimRpm_Pool> pools;
    for (long long file = 0; file < job.size; ++file) {
        pools.push_back(Add(Path(job, file), Document::Update).Pool());
        pools.back().Allocate(static_cast<unsigned long long>(job.count) * sizeof(Node));
    }
    const auto nodes = ChaseNodes(
        job, [&](Reference& reference, std::uint32_t to, std::uint32_t file, std::uint32_t from) {
            VUKSimRpm_BStreamWriteBuffer stream(reinterpret_cast<char*>(reference.data()), kRecord,
                                                pools[from]);
            (pools[file].Start() + sizeof(Node) * to).ExternalizeImpl(stream);
        });
    for (std::size_t file = 0; file < nodes.size(); ++file) {
        pools[file].Start().Write(nodes[file].size() * sizeof(Node),
                                  reinterpret_cast<const char*>(nodes[file].data()));
    }
}

Sample Library::Chase(const Job& job)
{
    std::vector<VUKSimRpm_Pool> pools;
    for (const VUKSimRpm_File& file : mFiles) {
        pools.push_back(file.Pool());
    }
    const std::uint32_t first = ChaseOrder(job).front();
    return Timed(job.count, [&] {
        VUKSimRpm_Locator at = pools[0].Start() + sizeof(Node) * (first / pools.size());
        Word sum = 0;
        std::size_t file = 0;
        for (long long i = 0; i < job.count; ++i) {
            char bytes[24];
            if (at.Read(sizeof bytes, bytes) != sizeof bytes) {
                throw std::runtime_error("a short read");
            }
            sum += LoadWord(bytes + 16);
            VUKSimRpm_BStreamReadBuffer stream(bytes, kRecord, pools[file]);
            at.InternalizeImpl(stream);
            file = file + 1 == pools.size() ? 0 : file + 1;
        }
        return sum;
    });
}

void Library::MakeTargets(const Job& job)
{
    VUKSimRpm_File file = Add(Path(job, 0), Document::Write);
    const std::vector<char> data(static_cast<std::size_t>(kReferences) * 16);
    for (long long i = 0; i < job.size; ++i) {
        file.NewPool(true, PoolName(i).c_str());
        file.Allocate(data.size()).Write(data.size(), data.data());
    }
    file.NewPool(false, nullptr); // names them all
    file.Allocate(8).Write(8, data.data());
}

void Library::OpenTargets(const Job& job)
{
    for (long long i = 0; i < kReferences; ++i) {
        mTargets.push_back(mFiles[0].Pool(static_cast<unsigned>(i % job.size)).Start() +
                           static_cast<unsigned long long>(i) * 16);
    }
    mRecords.assign(static_cast<std::size_t>(job.count) * kRecord, 0);
    if (job.work == Workload::LoadLocators) {
        StoreLocators(job);
    }
}

Sample Library::StoreLocators(const Job& job)
{
    const VUKSimRpm_Pool pool = mFiles[0].Pool();
    Sample sample = Timed(job.count, [&] {
        VUKSimRpm_BStreamWriteBuffer stream(mRecords.data(), mRecords.size(), pool);
        std::size_t which = 0;
        for (long long i = 0; i < job.count; ++i) {
            mTargets[which].ExternalizeImpl(stream);
            which = which + 1 == mTargets.size() ? 0 : which + 1;
        }
    });
    VUKSimRpm_BStreamReadBuffer stream(mRecords.data(), mRecords.size(), pool);
    sample.sum =
        static_cast<Word>(std::ranges::count_if(mTargets, [&](const VUKSimRpm_Locator& target) {
            VUKSimRpm_Locator stored;
            stored.InternalizeImpl(stream);
            return stored == target;
        }));
    return sample;
}

Sample Library::LoadLocators(const Job& job)
{
    const VUKSimRpm_Pool pool = mFiles[0].Pool();
    std::vector<VUKSimRpm_Locator> loaded(mTargets.size());
    Sample sample = Timed(job.count, [&] {
        VUKSimRpm_BStreamReadBuffer stream(mRecords.data(), mRecords.size(), pool);
        std::size_t which = 0;
        for (long long i = 0; i < job.count; ++i) {
            loaded[which].InternalizeImpl(stream);
            which = which + 1 == loaded.size() ? 0 : which + 1;
        }
    });
    for (std::size_t i = 0; i < loaded.size(); ++i) {
        sample.sum += loaded[i] == mTargets[i] ? 1U : 0U;
    }
    return sample;
}

Sample Library::WriteStrings(const Job& job)
{
    Remove(Path(job, 0));
    return Timed(
        job.count,
        [&] {
            VUKSimRpm_BStreamAppendToPool stream(Add(Path(job, 0), Document::Write).Pool(), kChunk);
            std::size_t which = 0;
            for (long long i = 0; i < job.count; ++i) {
                const VUKString& text = mTexts[which];
                stream.Write(text);
                which = which + 1 == mTexts.size() ? 0 : which + 1;
            }
            stream.Flush();
        },
        [&] { mDocument->Flush(); });
}

Sample Library::ReadStrings(const Job& job)
{
    return Timed(job.count, [&] {
        VUKSimRpm_BStreamReadLocator stream(mFiles[0].Start(), 0, kChunk);
        Word sum = 0;
        VUKString text;
        for (long long i = 0; i < job.count; ++i) {
            stream.Read(text);
            sum += SumText(text.UTF8(), text.GetLengthInByte());
        }
        return sum;
    });
}
