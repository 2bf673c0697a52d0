#pragma once

#include <fstream>
#include <stdexcept>
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
