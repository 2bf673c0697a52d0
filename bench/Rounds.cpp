#include "Rounds.h"

#include "Posix.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

namespace {

// A virtual machine may have given freed memory back to its host, and fetches it slowly: what the
// next run will take for its files is asked for now.
void TouchMemory(long long bytes)
{
    const auto length = static_cast<std::size_t>(bytes);
    void* at = mmap(nullptr, length, PROT_READ | PROT_WRITE,
                    MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE, -1, 0);
    if (at != MAP_FAILED) {
        munmap(at, length);
    }
}

long long StatusBytes(const std::string& key)
{
    std::ifstream in("/proc/self/status");
    for (std::string word; in >> word;) {
        long long kilobytes = 0;
        if (word == key && in >> kilobytes) {
            return kilobytes * 1024;
        }
    }
    throw std::runtime_error("no " + key + " in /proc/self/status");
}

std::string OutputOf(const std::string& command)
{
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        FailWithErrno("popen");
    }
    std::string output;
    for (int c = fgetc(pipe); c != EOF; c = fgetc(pipe)) {
        output += static_cast<char>(c);
    }
    if (pclose(pipe) != 0) {
        throw std::runtime_error("the process that measures memory failed");
    }
    return output;
}
} // namespace

Rounds::Rounds(Contenders& contenders, std::string folder, int rounds)
    : mContenders(contenders), mFolder(std::move(folder)), mRounds(rounds)
{}

void Rounds::Run(const Case& one, Results& results)
{
    std::vector<Entry> entries = Enter(one);
    std::erase_if(entries, [&](Entry& entry) { return !Attempt(entry, 0); });
    for (int turn = 1; turn <= mRounds; ++turn) {
        std::erase_if(entries, [&](Entry& entry) { return !Attempt(entry, turn); });
    }
    for (Entry& entry : entries) {
        entry.contender->Close();
        results.measured.push_back(std::move(entry.measured));
    }
    std::filesystem::remove_all(mFolder);
}

void Rounds::RunForMemory(const Case& one, Results& results)
{
    for (const auto& contender : mContenders) {
        if (!contender->Offers(one.job)) {
            continue;
        }
        Job job = one.job;
        job.folder = mFolder + "/memory";
        std::filesystem::create_directories(job.folder);
        std::ostringstream command;
        command << std::filesystem::read_symlink("/proc/self/exe").string() << " --memory "
                << contender->Name() << ' ' << static_cast<int>(job.work) << ' ' << job.size << ' '
                << job.count << ' ' << job.bulk << ' ' << job.folder;
        try {
            contender->Make(job);
            std::istringstream answer(OutputOf(command.str()));
            Memory memory{one.id, contender->Name(), contender->What(), 0, 0};
            if (answer >> memory.peak >> memory.anonymous) {
                results.memory.push_back(memory);
            }
        } catch (const std::exception& failure) {
            ++mFailures;
            std::cerr << one.id << ' ' << contender->Name() << ": " << failure.what() << '\n';
        }
        std::filesystem::remove_all(mFolder);
    }
}

std::vector<Rounds::Entry> Rounds::Enter(const Case& one)
{
    std::vector<Entry> entries;
    for (const auto& contender : mContenders) {
        if (!contender->Offers(one.job)) {
            continue;
        }
        Entry entry{contender.get(),
                    one.job,
                    {.caseId = one.id, .contender = contender->Name(), .kind = contender->What()}};
        entry.job.folder = mFolder + "/" + std::to_string(entries.size());
        const bool records = one.job.work == Workload::Append ||
                             one.job.work == Workload::Overwrite ||
                             one.job.work == Workload::Decode;
        if (records && contender->CostlyRecords() && one.job.size < 4096) {
            entry.job.count /= 8;
        }
        std::filesystem::create_directories(entry.job.folder);
        try {
            contender->Make(entry.job);
            contender->Open(entry.job);
            entries.push_back(entry);
        } catch (const std::exception& failure) {
            Report(entry, failure.what());
        }
    }
    return entries;
}

// Runs once; turn 0 is not measured. False when the contender failed, which ends its part.
bool Rounds::Attempt(Entry& entry, int turn)
{
    entry.job.turn = turn;
    const Word expected = ExpectedSum(entry.job);
    if (entry.job.work == Workload::Append || entry.job.work == Workload::Import) {
        TouchMemory(entry.job.bulk);
    }
    try {
        const Sample sample = entry.contender->Run(entry.job);
        if (sample.sum != expected) {
            Report(entry, "came to the sum " + std::to_string(sample.sum) + ", not " +
                              std::to_string(expected));
            return false;
        }
        if (turn > 0) {
            entry.measured.rounds.push_back(sample.seconds * 1e9 /
                                            static_cast<double>(sample.operations));
            entry.measured.syncs.push_back(sample.syncSeconds * 1e3);
        }
        return true;
    } catch (const std::exception& failure) {
        Report(entry, failure.what());
        return false;
    }
}

void Rounds::Report(const Entry& entry, const std::string& what)
{
    ++mFailures;
    std::cerr << entry.measured.caseId << ' ' << entry.measured.contender << ": " << what << '\n';
    try {
        entry.contender->Close();
    } catch (const std::exception& failure) {
        std::cerr << "  and closing it: " << failure.what() << '\n';
    }
}

void MeasureMemory(Contender& contender, const Job& job)
{
    const Word expected = ExpectedSum(job); // with it and the names come all lists of the job
    static_cast<void>(PoolName(0));
    std::ofstream("/proc/self/clear_refs") << "5"; // the peak begins anew
    const long long before = StatusBytes("VmRSS:");
    const long long anonymousBefore = StatusBytes("RssAnon:");
    contender.Open(job);
    if (contender.Run(job).sum != expected) {
        throw std::runtime_error("another sum");
    }
    std::cout << StatusBytes("VmHWM:") - before << ' ' << StatusBytes("RssAnon:") - anonymousBefore
              << '\n';
}
