#pragma once

#include "FrameWriter.h"
#include "Model.h"

#include <cstdint>
#include <ostream>
#include <string>

namespace heat {

struct DemoOptions
{
    std::string folder = "heat-demo"; // made when missing; model.sim, results.sim, field.svg in it
    PlateSize plate;
    FrameLayout layout;
    std::uint32_t checkpointEvery = 10; // steps
    std::uint32_t killStep = 137;       // between two checkpoints
    bool terminal = false;              // `out` is one: progress may move
};

/// Checks the solver, runs the plate undisturbed in memory, runs it again stored and killed on the
/// way, goes on from the files, reads everything back, compares it bit for bit and draws it.
/// Tells its story on `out`. Forks: the process must not have two threads.
/// \throws std::exception's heirs, with the reason, when any of it does not hold.
void RunDemo(const DemoOptions& options, std::ostream& out);

} // namespace heat
