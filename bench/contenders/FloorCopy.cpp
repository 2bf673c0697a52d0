// Floors of single workloads: memcpy from memory, sendfile, and the system's own copy command.
#include "Data.h"
#include "Posix.h"

#include <cstdio>

#include <spawn.h>
#include <sys/sendfile.h>
#include <sys/wait.h>

namespace {

/// Copies inside memory: no store is faster than this.
class MemoryCopy final : public Contender
{
public:
    [[nodiscard]] std::string Name() const override { return "memcpy"; }
    [[nodiscard]] Kind What() const override { return Kind::Floor; }
    [[nodiscard]] std::string Version() const override { return "C library"; }
    [[nodiscard]] std::string Tuning() const override { return "constant sizes, inlined"; }
    [[nodiscard]] bool Offers(const Job& job) const override
    {
        return job.work == Workload::ReadImage || job.work == Workload::StoreLocators ||
               job.work == Workload::LoadLocators;
    }

    void Make(const Job& /*job*/) override {}

    void Open(const Job& job) override
    {
        if (job.work == Workload::ReadImage) {
            mMemory.resize(static_cast<std::size_t>(job.bulk));
            FillBulk(mMemory.data(), 0, job.bulk);
        } else {
            mReferences.resize(static_cast<std::size_t>(kReferences * kRecord));
            for (std::size_t i = 0; i < mReferences.size(); ++i) {
                mReferences[i] = static_cast<char>(i * 7);
            }
            mMemory.assign(static_cast<std::size_t>(job.count * kRecord), 0);
            if (job.work == Workload::LoadLocators) {
                StoreLocators(job);
            }
        }
    }

    Sample Run(const Job& job) override
    {
        switch (job.work) {
        case Workload::ReadImage:
            return ReadImage(job);
        case Workload::StoreLocators:
            return StoreLocators(job);
        default:
            return LoadLocators(job);
        }
    }

    void Close() override
    {
        mMemory = {};
        mReferences = {};
    }

private:
    static constexpr long long kRecord = 12; // bytes of a stored locator

    Sample ReadImage(const Job& job)
    {
        return Timed(job.count, [&] {
            return WithSize(job.size, [&](auto n) {
                return ReadPieces<n()>(job, [&](long long offset, char* buffer) {
                    std::memcpy(buffer, mMemory.data() + offset, n());
                    Keep(buffer);
                });
            });
        });
    }

    Sample StoreLocators(const Job& job)
    {
        Sample sample = Timed(job.count, [&] {
            char* to = mMemory.data();
            long long which = 0;
            for (long long i = 0; i < job.count; ++i, to += kRecord) {
                std::memcpy(to, mReferences.data() + which * kRecord, kRecord);
                Keep(to);
                which = which + 1 == kReferences ? 0 : which + 1;
            }
        });
        sample.sum = Equal(mMemory.data());
        return sample;
    }

    Sample LoadLocators(const Job& job)
    {
        std::vector<char> loaded(static_cast<std::size_t>(kReferences * kRecord));
        Sample sample = Timed(job.count, [&] {
            const char* from = mMemory.data();
            long long which = 0;
            for (long long i = 0; i < job.count; ++i, from += kRecord) {
                std::memcpy(loaded.data() + which * kRecord, from, kRecord);
                Keep(loaded.data());
                which = which + 1 == kReferences ? 0 : which + 1;
            }
        });
        sample.sum = Equal(loaded.data());
        return sample;
    }

    // How many of the first kReferences records are what was to be stored.
    Word Equal(const char* records) const
    {
        Word equal = 0;
        for (long long i = 0; i < kReferences * kRecord; i += kRecord) {
            equal += std::memcmp(records + i, mReferences.data() + i, kRecord) == 0 ? 1U : 0U;
        }
        return equal;
    }

    std::vector<char> mMemory;
    std::vector<char> mReferences;
};

/// Copies a file inside the system.
class FileCopy : public Contender
{
public:
    [[nodiscard]] Kind What() const override { return Kind::Floor; }
    [[nodiscard]] bool Offers(const Job& job) const override
    {
        return job.work == Workload::Import;
    }

    void Make(const Job& job) override
    {
        const Descriptor file(job.Path("bulk"), O_RDWR | O_CREAT | O_TRUNC);
        PutBulk(job.bulk, kChunk, [&](long long offset, const char* bytes, long long length) {
            file.Write(bytes, static_cast<std::size_t>(length), offset);
        });
    }
    void Open(const Job& /*job*/) override {}

    Sample Run(const Job& job) override
    {
        std::remove(job.Path("copy").c_str());
        return Timed(
            1,
            [&] {
                Copy(job.Path("bulk"), job.Path("copy"));
                return static_cast<Word>(Descriptor(job.Path("copy"), O_RDONLY).Size());
            },
            [&] { Descriptor(job.Path("copy"), O_RDWR).Sync(); });
    }
    void Close() override {}

private:
    virtual void Copy(const std::string& from, const std::string& to) = 0;
};

class SendFile final : public FileCopy
{
public:
    [[nodiscard]] std::string Name() const override { return "sendfile"; }
    [[nodiscard]] std::string Version() const override { return "sendfile(2)"; }
    [[nodiscard]] std::string Tuning() const override { return "as many bytes as it takes"; }

private:
    void Copy(const std::string& from, const std::string& to) override
    {
        const Descriptor source(from, O_RDONLY);
        const Descriptor target(to, O_RDWR | O_CREAT | O_TRUNC);
        off_t at = 0;
        for (long long left = source.Size(); left > 0;) {
            const ssize_t moved =
                sendfile(target.Number(), source.Number(), &at, static_cast<std::size_t>(left));
            if (moved <= 0) {
                FailWithErrno("sendfile");
            }
            left -= moved;
        }
    }
};

class CopyCommand final : public FileCopy
{
public:
    [[nodiscard]] std::string Name() const override { return "cp"; }
    [[nodiscard]] std::string Version() const override { return "coreutils"; }
    [[nodiscard]] std::string Tuning() const override { return "cp --reflink=never"; }

private:
    void Copy(const std::string& from, const std::string& to) override
    {
        std::string command[] = {"cp", "--reflink=never", from, to};
        char* arguments[] = {command[0].data(), command[1].data(), command[2].data(),
                             command[3].data(), nullptr};
        pid_t child = 0;
        int status = 0;
        if (posix_spawnp(&child, "cp", nullptr, nullptr, arguments, environ) != 0 ||
            waitpid(child, &status, 0) != child || status != 0) {
            throw std::runtime_error("cp failed");
        }
    }
};

const Announced<MemoryCopy> kMemory;
const Announced<SendFile> kSendFile;
const Announced<CopyCommand> kCommand;
} // namespace
