#pragma once

#include <array>
#include <cstdint>
#include <ostream>
#include <string>

/// One exception as a host sees it: its class, the values it carries and where it was raised.
struct Failure
{
    std::string exception;                 // the class's name
    std::array<std::uint64_t, 3> values{}; // in the order in which the class carries them
    std::string text;                      // a check's text, a file's name or a file operation
    std::string path;                      // empty where the place is not part of the interface
    int line = 0;

    bool operator==(const Failure&) const = default;

    friend std::ostream& operator<<(std::ostream& out, const Failure& failure)
    {
        return out << failure.exception << '(' << failure.values[0] << ", " << failure.values[1]
                   << ", " << failure.values[2] << ") \"" << failure.text << "\" at "
                   << failure.path << ':' << failure.line;
    }
};

/// One failed check as it was reported before it was thrown.
struct Report
{
    bool validation; // of a value from a caller or a file; else of the library's own state
    std::string text;
    std::string path;
    int line;

    bool operator==(const Report&) const = default;

    friend std::ostream& operator<<(std::ostream& out, const Report& report)
    {
        return out << (report.validation ? "validation" : "assertion") << " \"" << report.text
                   << "\" at " << report.path << ':' << report.line;
    }
};
