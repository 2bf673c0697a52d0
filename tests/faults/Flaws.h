// The ways in which a system call can go wrong.
#pragma once

#include "ScriptedSystemCalls.h"

#include <cstddef>
#include <string>
#include <vector>

/// One way for one call. It moves `moved` bytes, then the next call of its kind fails with
/// `errorNumber`; without bytes it fails itself; without an error it is just short, and with
/// neither it meets the end of the file, or writes nothing.
struct Flaw
{
    int errorNumber = 0;
    std::size_t moved = 0; // bytes
};

/// For how long.
enum class Reach
{
    Once,   // for this call
    Sticky, // for it and all of its kind that follow
    Dead    // for it, and all calls that follow fail with EIO: the disk is gone
};

/// A flaw for some time.
struct Trouble
{
    Flaw flaw;
    Reach reach = Reach::Once;
};

/// All troubles that fit the call.
[[nodiscard]] std::vector<Trouble> TroublesOf(const ScriptedSystemCalls::Made& made);

/// Fewer of them, one or two that throw or hurt in different places: for a second fault on top.
[[nodiscard]] std::vector<Trouble> MainTroublesOf(const ScriptedSystemCalls::Made& made);

/// The system's words for an errno value, as in "Input/output error (EIO)".
[[nodiscard]] std::string ErrorText(int errorNumber);

/// For messages, as in "pwrite of 80 bytes at 209".
[[nodiscard]] std::string Describe(const ScriptedSystemCalls::Made& made);
[[nodiscard]] std::string Describe(const Trouble& trouble);
