#pragma once

#include "Model.h"
#include "StoredRun.h"

#include <cstdint>
#include <functional>
#include <sys/types.h>

namespace heat {

struct KillReport
{
    pid_t process = 0;
    std::uint32_t announcedStep = 0;  // the last one that the writer said it had appended
    std::uint32_t checkpointStep = 0; // the last one that the writer said it would make durable
};

/// Has a process of its own store `model`'s run, and kills it by SIGKILL as soon as it has
/// announced `killStep`. The writer does not know: it runs on until the signal hits, and waits for
/// nothing but leave to begin a checkpoint, which it is not given any more. So it dies between two
/// checkpoints, with frames that no flush has covered. `progress` hears of every step. The calling
/// process must not have two threads.
/// \throws std::invalid_argument when `killStep` is a checkpoint or lies outside the run;
/// std::runtime_error when the writer ends in any other way.
[[nodiscard]] KillReport KillWriterAt(std::uint32_t killStep, const StoredRunPlan& plan,
                                      const Model& model,
                                      const std::function<void(std::uint32_t)>& progress);

} // namespace heat
