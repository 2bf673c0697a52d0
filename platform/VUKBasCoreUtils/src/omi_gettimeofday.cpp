#include "omi_gettimeofday.h"

#include <ctime>

omi_Time omi_gettimeofday() noexcept
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now); // cannot fail: the clock exists and the address is good
    return {now.tv_sec, now.tv_nsec / 1000};
}
