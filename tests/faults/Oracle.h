// What an operation must say when a system call of it went wrong, worked out from the call alone.
#pragma once

#include "Operation.h"
#include "VUKSimUttOSFileException.h"

/// Judges an attempt in which `hit` was the only trouble. `raised` is null when nothing was raised.
void JudgeAnswer(const Operation& operation, const Hit& hit, const std::exception* raised,
                 Complaints& complaints);

/// Judges one with several troubles, or a disk that is gone: the answer is to be about one of them.
void JudgeManifoldAnswer(const Operation& operation, const std::vector<Hit>& hits,
                         const std::exception* raised, Complaints& complaints);
