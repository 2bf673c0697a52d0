#pragma once

#include "VUKSimRpm_Locator.h"
#include "VUKSimRpm_Pool.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace heat {

/// The field at the end of one step, with the way to its mesh and to the frame before it.
struct Frame
{
    std::uint32_t step = 0;
    double time = 0.0;          // s
    VUKSimRpm_Locator mesh;     // the model record, in another file
    VUKSimRpm_Locator previous; // the record of the step before; null at step 0
    std::vector<double> values; // one for each node of the mesh
};

// A frame record, little-endian and without gaps:
//
//   0   8  "HEATFRAM"
//   8   8  bytes in the whole record, unsigned
//   16  4  step, unsigned
//   20  4  n, number of values, unsigned
//   24  8  time, floating
//   32 12  locator of the mesh
//   44 12  locator of the frame before
//   56 8n  values, floating
//    .  8  checksum of all bytes before it (FNV-1a, 64 bits)
//
// A pool keeps no count of its records and its bytes no checksum: after a crash it is the record
// that tells whether it is whole.

/// Bytes in the record of a field of `values` values.
[[nodiscard]] unsigned long long FrameBytes(std::size_t values);

/// The bytes of `frame` as they are stored in `pool`, whose directory must name the pools that the
/// frame's locators lead to. Writes nothing.
[[nodiscard]] std::vector<char> EncodeFrame(const Frame& frame, const VUKSimRpm_Pool& pool);

enum class FrameState
{
    Whole,
    Cut,    // begins like a frame, but its last bytes are missing
    Damaged // is no frame, or not the one that was written
};

struct FrameReading
{
    FrameState state = FrameState::Damaged;
    Frame frame; // filled only when whole
};

/// Reads the record at `place`, where the pool holds `available` more bytes, for a mesh of `values`
/// nodes. Memory and time are bounded by `values`, whatever the bytes say.
[[nodiscard]] FrameReading ReadFrame(const VUKSimRpm_Locator& place, unsigned long long available,
                                     std::size_t values);

} // namespace heat
