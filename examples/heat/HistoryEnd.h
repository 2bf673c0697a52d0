#pragma once

#include "FrameRecord.h"

#include "VUKSimRpm_File.h"
#include "VUKSimRpm_Locator.h"

#include <cstddef>

namespace heat {

/// Where a file of frames stops being whole: the place to go on from.
struct HistoryEnd
{
    std::uint32_t frames = 0;        // whole ones, steps 0 to frames - 1
    Frame last;                      // the last of them; empty when there are none
    VUKSimRpm_Locator lastPlace;     // of its record; null when there are none
    unsigned framesInPool = 0;       // whole ones in the file's last pool
    VUKSimRpm_Locator next;          // the byte behind the last whole frame, in the last pool
    unsigned long long leftover = 0; // bytes from there to the pool's end
    FrameState leftoverState = FrameState::Cut; // what they are, when there are any
};

/// Reads `results` from its first pool to the end of its last, and holds every frame against its
/// checksum, its place in the order of steps, the frame before it and the mesh it belongs to.
/// Whatever follows the last whole frame of the last pool is left over from a writer that was
/// stopped; in an earlier pool nothing may be left over, since a pool is left behind only when it
/// was flushed. `values` is the number of values in a frame.
/// \throws std::runtime_error when an earlier pool is damaged (the text says where).
[[nodiscard]] HistoryEnd FindEndOfHistory(const VUKSimRpm_File& results,
                                          const VUKSimRpm_Locator& mesh, std::size_t values);

} // namespace heat
