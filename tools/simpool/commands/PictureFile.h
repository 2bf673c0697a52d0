// What the commands that draw have in common: where the picture goes.
#pragma once

#include "LoadedFile.h"
#include "Output.h"

#include <CLI/CLI.hpp>

#include <string>

namespace simpool {

struct PictureFile
{
    const std::string& name; // empty: standard output
    bool replaces;
};

/// --output and --force.
void AddPictureOptions(CLI::App& options, std::string& output, bool& isForced);

/// \throws CommandFailure when it cannot be written, or is one of `inputs`.
void WritePicture(const std::string& picture, const LoadedFiles& inputs, const PictureFile& file,
                  Output& out);

/// Says of every damaged file where it was left off, and whether there was one.
bool TellDamage(const LoadedFiles& files, Output& err);
} // namespace simpool
