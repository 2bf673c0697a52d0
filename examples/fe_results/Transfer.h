#pragma once

#include "ResultStoreReader.h"

#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace fe {

/// What was found in a result file while it was stored.
struct Imported
{
    std::uint64_t lines = 0;
    std::uint64_t bytes = 0;
    std::uint64_t nodes = 0;
    std::uint64_t elements = 0;
    std::map<std::string, std::uint64_t> shapes; // of the elements
    std::uint64_t results = 0;                   // blocks
    std::uint64_t steps = 0;             // or modes: runs of blocks at one time or frequency
    std::vector<std::string> quantities; // "DISP [length]", each once
    std::uint64_t reals = 0;             // coordinates and values
    std::uint64_t spelled = 0;           // fields that keep their text beside the number
};

/// Reads the result file at `input` and stores it in two new files of `document`, which are left
/// open. \throws FrdError when the file is odd or cut; the new files are then not whole.
Imported ImportResultFile(const std::string& input, VUKSimRpm_Document& document,
                          const std::string& meshFile, const std::string& resultsFile);

/// What was met on the way back.
struct Exported
{
    std::string source; // name of the result file that was imported
    std::uint64_t bytes = 0;
    Walk walk;
};

/// Writes the result file that is stored in `results`, and in the file of its mesh, to `output`.
Exported ExportResultFile(const VUKSimRpm_File& results, const std::string& output);

} // namespace fe
