#pragma once

#include <fstream>
#include <stdexcept>
#include <string>

#include <unistd.h>

/// The memory that this process really occupies now, in bytes; addresses alone cost nothing here.
inline long long ResidentBytes()
{
    std::ifstream in("/proc/self/statm");
    long long pages = 0; // of addresses
    long long residentPages = 0;
    if (!(in >> pages >> residentPages)) {
        throw std::runtime_error("cannot read /proc/self/statm");
    }
    return residentPages * sysconf(_SC_PAGESIZE);
}

/// The most that this process ever occupied, in bytes; in a forked one it begins with what it has.
inline long long PeakResidentBytes()
{
    std::ifstream in("/proc/self/status");
    for (std::string word; in >> word;) {
        long long kilobytes = 0;
        if (word == "VmHWM:" && in >> kilobytes) {
            return kilobytes * 1024;
        }
    }
    throw std::runtime_error("cannot read /proc/self/status");
}
