// Reads and writes of files as the operating system gets them.
#pragma once

#include "ScriptedSystemCalls.h"

#include <functional>
#include <ostream>
#include <utility>
#include <vector>

struct Transfer
{
    unsigned long long position; // in the file
    std::size_t length;          // asked for; both in bytes

    bool operator==(const Transfer&) const = default;

    friend std::ostream& operator<<(std::ostream& out, const Transfer& transfer)
    {
        return out << transfer.length << " bytes at " << transfer.position;
    }
};

inline std::vector<Transfer> TransfersOf(const ScriptedSystemCalls& calls, SystemCall kind)
{
    std::vector<Transfer> transfers;
    for (const auto& made : calls.Calls(kind)) {
        transfers.push_back({made.position, made.length});
    }
    return transfers;
}

/// In the order in which they came, those that failed included. A read that meets the end of the
/// file asks once more for what is missing.
inline std::vector<Transfer> Reads(const ScriptedSystemCalls& calls)
{
    return TransfersOf(calls, SystemCall::Pread);
}

inline std::vector<Transfer> Writes(const ScriptedSystemCalls& calls)
{
    return TransfersOf(calls, SystemCall::Pwrite);
}

/// Runs an action once, in the middle of the next write, if that comes while it lives.
class DuringNextWrite
{
public:
    explicit DuringNextWrite(std::function<void()> action)
    {
        sAction = std::move(action);
        sWrite = std::exchange(VUKSimUttSystemCalls::Current().pwrite, &Write);
    }
    DuringNextWrite(const DuringNextWrite&) = delete;
    DuringNextWrite& operator=(const DuringNextWrite&) = delete;
    ~DuringNextWrite()
    {
        VUKSimUttSystemCalls::Current().pwrite = sWrite;
        sAction = nullptr;
    }

private:
    static ssize_t Write(int descriptor, const void* buffer, std::size_t length, off_t position)
    {
        if (const auto action = std::exchange(sAction, nullptr)) {
            action();
        }
        return sWrite(descriptor, buffer, length, position);
    }

    static inline std::function<void()> sAction;
    static inline decltype(VUKSimUttSystemCalls::pwrite) sWrite = nullptr; // the one that does it
};
