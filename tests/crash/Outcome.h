#pragma once

#include <string>
#include <vector>

/// What became of one crash image.
struct Outcome
{
    bool inPoolCall = false; // pools were being made or imported, not yet durably
    bool refused = false;    // a file of it cannot be opened
    bool longer = false;     // an older pool reaches over newer bytes up to the end of the file
    bool pastEnd = false;    // a pool's length leads behind the end of the file
    bool mixedUuid = false;  // a pool that was never durable has a UUID of two halves
    std::string refusedBy;   // the exception's class
    std::vector<std::string> broken; // promises that did not hold, as sentences
};
