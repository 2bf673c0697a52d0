#pragma once

#include "Output.h"

#include <CLI/CLI.hpp>

#include <string>

namespace simpool {

/// What the program ends with. A finding is also a difference; a failure also wrong usage.
enum class ExitCode
{
    Fine = 0,
    Finding = 1,
    Failure = 2
};

/// What a command says of itself; help, man page and completion are made from it.
struct CommandText
{
    const char* name;        // "ls"
    const char* summary;     // one line without full stop, for lists of commands
    const char* description; // paragraphs, one line each, parted by empty lines
    const char* example;     // command lines, one or more, each ended by \n
};

/// Where a run writes to, and whether it was asked for a document instead of text.
struct Surroundings
{
    Output& out;
    Output& err;
    bool json = false;
};

/// One command of the program. Made once for a run: AddOptions binds its members to options, Run
/// then finds them filled.
///
/// Run throws CommandFailure for what ends it with exit code 2; the program prints it, and flushes
/// `out` before it ends. --help and --json are added by the program.
class Command
{
public:
    Command() = default;
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;
    virtual ~Command() = default;

    [[nodiscard]] virtual CommandText Text() const = 0;
    virtual void AddOptions(CLI::App& options) = 0;
    [[nodiscard]] virtual ExitCode Run(const Surroundings& surroundings) = 0;
};
} // namespace simpool
