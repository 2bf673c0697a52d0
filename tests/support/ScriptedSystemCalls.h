#pragma once

#include "VUKSimUttSystemCalls.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <deque>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <map>
#include <string>
#include <utility>
#include <vector>

/// The members of the platform's table of system calls.
enum class SystemCall
{
    Open,
    Close,
    Fcntl,
    Pread,
    Pwrite,
    Ftruncate,
    Fstat,
    Stat,
    Fdatasync,
    Fsync,
    Syncfs,
    Unlink,
    Getcwd,
    Mmap,
    Munmap,
    Madvise,
    Sigaction
};

/// What becomes of one system call.
struct CallAnswer
{
    int errorNumber = 0;                                        // it fails with this; 0: it is made
    std::size_t most = std::numeric_limits<std::size_t>::max(); // bytes that it moves at most
};

/// The call is made as it is.
inline CallAnswer Passes()
{
    return {};
}

/// The call fails and does nothing; a close fails after it closed, as the system's does.
inline CallAnswer Fails(int errorNumber)
{
    return {.errorNumber = errorNumber};
}

/// A read or a write moves `bytes` at most, and so may come back short.
inline CallAnswer Moves(std::size_t bytes)
{
    return {.most = bytes};
}

/// Stands between the platform and the system for as long as it lives: records each system call,
/// and answers those that a test scripted; all others are made. One at a time.
class ScriptedSystemCalls
{
public:
    /// One call as the platform made it; what a kind of call does not have is empty or 0.
    struct Made
    {
        SystemCall call;
        std::string path = {};
        int descriptor = -1;
        int flags = 0;                   // of open
        unsigned long long position = 0; // of a transfer; the size in ftruncate
        std::size_t length = 0;          // of a transfer
    };

    ScriptedSystemCalls() : mOuter(VUKSimUttSystemCalls::Current())
    {
        sActive = this;
        VUKSimUttSystemCalls::Current() = Replacements();
    }
    ScriptedSystemCalls(const ScriptedSystemCalls&) = delete;
    ScriptedSystemCalls& operator=(const ScriptedSystemCalls&) = delete;
    ~ScriptedSystemCalls()
    {
        VUKSimUttSystemCalls::Current() = mOuter;
        sActive = nullptr;
    }

    /// Answers to the next calls of that kind, in order, behind those given before.
    void Script(SystemCall call, std::initializer_list<CallAnswer> answers)
    {
        mAnswers[call].insert(mAnswers[call].end(), answers);
    }

    /// From now on every call of that kind fails.
    void FailAlways(SystemCall call, int errorNumber) { mSticky[call] = errorNumber; }

    /// Of all calls from now on, counted from 1, the one with that number fails.
    void FailCall(int number, int errorNumber)
    {
        mCountdown = number;
        mCountdownError = errorNumber;
    }

    /// From now on `answer` decides about every call, whatever else was asked for.
    void AnswerBy(std::function<CallAnswer(const Made&)> answer) { mAnswerBy = std::move(answer); }

    /// Whether the call that FailCall chose has come.
    [[nodiscard]] bool CallFailed() const noexcept { return mCountdown == 0; }

    /// All calls, in order.
    [[nodiscard]] const std::vector<Made>& Calls() const noexcept { return mCalls; }

    /// Those of one kind.
    [[nodiscard]] std::vector<Made> Calls(SystemCall call) const
    {
        std::vector<Made> found;
        std::ranges::copy_if(mCalls, std::back_inserter(found),
                             [call](const Made& made) { return made.call == call; });
        return found;
    }

    [[nodiscard]] int Count(SystemCall call) const { return static_cast<int>(Calls(call).size()); }

    /// Drops the record, not the answers.
    void Forget() { mCalls.clear(); }

private:
    CallAnswer Next(const Made& made)
    {
        mCalls.push_back(made);
        if (mAnswerBy) {
            return mAnswerBy(made);
        }
        if (mCountdown > 0 && --mCountdown == 0) {
            return Fails(mCountdownError);
        }
        if (const auto sticky = mSticky.find(made.call); sticky != mSticky.end()) {
            return Fails(sticky->second);
        }
        std::deque<CallAnswer>& answers = mAnswers[made.call];
        if (answers.empty()) {
            return Passes();
        }
        const CallAnswer answer = answers.front();
        answers.pop_front();
        return answer;
    }

    // Records the call, then makes it through `make`, or fails it with `failed`.
    template <class Result, class Make>
    static Result Answer(const Made& made, Result failed, Make make)
    {
        const CallAnswer answer = sActive->Next(made);
        if (answer.errorNumber == 0) {
            return make(sActive->mOuter, std::min(made.length, answer.most));
        }
        errno = answer.errorNumber;
        return failed;
    }

    using Table = const VUKSimUttSystemCalls&; // those that do the work

    static VUKSimUttSystemCalls Replacements()
    {
        return {
            .open =
                [](const char* path, int flags, mode_t mode) {
                    const Made made{.call = SystemCall::Open, .path = path, .flags = flags};
                    return Answer(made, -1,
                                  [=](Table t, std::size_t) { return t.open(path, flags, mode); });
                },
            .close =
                [](int descriptor) {
                    const int result = sActive->mOuter.close(descriptor);
                    const Made made{.call = SystemCall::Close, .descriptor = descriptor};
                    return Answer(made, -1, [=](Table, std::size_t) { return result; });
                },
            .fcntl =
                [](int descriptor, int command, int argument) {
                    const Made made{.call = SystemCall::Fcntl, .descriptor = descriptor};
                    return Answer(made, -1, [=](Table t, std::size_t) {
                        return t.fcntl(descriptor, command, argument);
                    });
                },
            .pread =
                [](int descriptor, void* buffer, std::size_t length, off_t position) {
                    const Made made = Transfer(SystemCall::Pread, descriptor, length, position);
                    return Answer<ssize_t>(made, -1, [=](Table t, std::size_t allowed) {
                        return t.pread(descriptor, buffer, allowed, position);
                    });
                },
            .pwrite =
                [](int descriptor, const void* buffer, std::size_t length, off_t position) {
                    const Made made = Transfer(SystemCall::Pwrite, descriptor, length, position);
                    return Answer<ssize_t>(made, -1, [=](Table t, std::size_t allowed) {
                        return t.pwrite(descriptor, buffer, allowed, position);
                    });
                },
            .ftruncate =
                [](int descriptor, off_t size) {
                    const Made made = Transfer(SystemCall::Ftruncate, descriptor, 0, size);
                    return Answer(made, -1, [=](Table t, std::size_t) {
                        return t.ftruncate(descriptor, size);
                    });
                },
            .fstat =
                [](int descriptor, VUKSimUttFileStatus* status) {
                    const Made made{.call = SystemCall::Fstat, .descriptor = descriptor};
                    return Answer(made, -1, [=](Table t, std::size_t) {
                        return t.fstat(descriptor, status);
                    });
                },
            .stat =
                [](const char* path, VUKSimUttFileStatus* status) {
                    const Made made{.call = SystemCall::Stat, .path = path};
                    return Answer(made, -1,
                                  [=](Table t, std::size_t) { return t.stat(path, status); });
                },
            .fdatasync =
                [](int descriptor) {
                    const Made made{.call = SystemCall::Fdatasync, .descriptor = descriptor};
                    return Answer(made, -1,
                                  [=](Table t, std::size_t) { return t.fdatasync(descriptor); });
                },
            .fsync =
                [](int descriptor) {
                    const Made made{.call = SystemCall::Fsync, .descriptor = descriptor};
                    return Answer(made, -1,
                                  [=](Table t, std::size_t) { return t.fsync(descriptor); });
                },
            .syncfs =
                [](int descriptor) {
                    const Made made{.call = SystemCall::Syncfs, .descriptor = descriptor};
                    return Answer(made, -1,
                                  [=](Table t, std::size_t) { return t.syncfs(descriptor); });
                },
            .unlink =
                [](const char* path) {
                    const Made made{.call = SystemCall::Unlink, .path = path};
                    return Answer(made, -1, [=](Table t, std::size_t) { return t.unlink(path); });
                },
            .getcwd =
                [](char* buffer, std::size_t length) {
                    const Made made{.call = SystemCall::Getcwd};
                    return Answer<char*>(made, nullptr, [=](Table t, std::size_t) {
                        return t.getcwd(buffer, length);
                    });
                },
            .mmap =
                [](void* address, std::size_t length, int protection, int flags, int descriptor,
                   off_t position) {
                    const Made made{.call = SystemCall::Mmap, .descriptor = descriptor};
                    return Answer<void*>(made, kNotMapped, [=](Table t, std::size_t) {
                        return t.mmap(address, length, protection, flags, descriptor, position);
                    });
                },
            .munmap =
                [](void* address, std::size_t length) {
                    const Made made{.call = SystemCall::Munmap};
                    return Answer(made, -1,
                                  [=](Table t, std::size_t) { return t.munmap(address, length); });
                },
            .madvise =
                [](void* address, std::size_t length, int advice) {
                    const Made made{.call = SystemCall::Madvise};
                    return Answer(made, -1, [=](Table t, std::size_t) {
                        return t.madvise(address, length, advice);
                    });
                },
            .sigaction =
                [](int signal, const struct sigaction* action, struct sigaction* previous) {
                    const Made made{.call = SystemCall::Sigaction};
                    return Answer(made, -1, [=](Table t, std::size_t) {
                        return t.sigaction(signal, action, previous);
                    });
                },
        };
    }

    static Made Transfer(SystemCall call, int descriptor, std::size_t length, off_t position)
    {
        return {.call = call,
                .descriptor = descriptor,
                .position = static_cast<unsigned long long>(position),
                .length = length};
    }

    // MAP_FAILED, without the cast that its header hides in it.
    static inline void* const kNotMapped = reinterpret_cast<void*>(-1);

    static inline ScriptedSystemCalls* sActive = nullptr;

    VUKSimUttSystemCalls mOuter; // the table before, which does the work
    std::vector<Made> mCalls;
    std::function<CallAnswer(const Made&)> mAnswerBy; // empty for none
    std::map<SystemCall, std::deque<CallAnswer>> mAnswers;
    std::map<SystemCall, int> mSticky; // errno values
    int mCountdown = -1;               // calls up to the one that fails; negative for none
    int mCountdownError = 0;
};
