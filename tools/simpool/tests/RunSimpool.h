#pragma once

#include <string>
#include <vector>

/// What a run of the built program did.
struct Ran
{
    int exit = -1; // its exit code; 128 and the signal's number when one ended it
    std::string out = {};
    std::string err = {};
};

/// Runs the program with these arguments, with its output in files and without a terminal, in
/// `folder` when one is given. Ends it after half a minute.
[[nodiscard]] Ran RunSimpool(const std::vector<std::string>& arguments,
                             const std::string& folder = "");

/// The same through the shell, for redirections: `$simpool` is the program.
[[nodiscard]] Ran RunShell(const std::string& command, const std::string& folder = "");
