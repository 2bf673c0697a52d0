#include "HistoryEnd.h"

#include "VUKSimRpm_Pool.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace heat {

namespace {

// Takes the frame at end.next, if it is the one that must follow.
bool TakeNextFrame(const VUKSimRpm_Locator& mesh, std::size_t values, HistoryEnd& end)
{
    FrameReading reading = ReadFrame(end.next, end.leftover, values);
    end.leftoverState = reading.state;
    if (reading.state != FrameState::Whole) {
        return false;
    }
    const Frame& frame = reading.frame;
    if (frame.step != end.frames || !(frame.mesh == mesh) || !(frame.previous == end.lastPlace)) {
        end.leftoverState = FrameState::Damaged;
        return false;
    }
    end.lastPlace = end.next;
    end.last = std::move(reading.frame);
    end.next += FrameBytes(values);
    end.leftover -= FrameBytes(values);
    ++end.frames;
    ++end.framesInPool;
    return true;
}

} // namespace

HistoryEnd FindEndOfHistory(const VUKSimRpm_File& results, const VUKSimRpm_Locator& mesh,
                            std::size_t values)
{
    HistoryEnd end;
    const unsigned pools = results.PoolCount();
    for (unsigned index = 0; index < pools; ++index) {
        const VUKSimRpm_Pool pool = results.Pool(index);
        end.next = pool.Start();
        end.leftover = pool.Length();
        end.framesInPool = 0;
        while (end.leftover > 0 && TakeNextFrame(mesh, values, end)) {
        }
        if (end.leftover > 0 && index + 1 < pools) {
            throw std::runtime_error(std::string(results.FileName().UTF8()) + ": pool " +
                                     std::to_string(index) + " is damaged " +
                                     std::to_string(pool.Length() - end.leftover) +
                                     " bytes behind its beginning, where step " +
                                     std::to_string(end.frames) + " should be");
        }
    }
    return end;
}

} // namespace heat
