#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

/// What a reader makes of a file: its pools, or why it is refused.
struct Seen
{
    struct Pool
    {
        std::string uuid;
        std::uint64_t dataLength;
        std::uint64_t directoryBytes;

        bool operator==(const Pool&) const = default;
    };

    std::vector<Pool> pools = {};
    std::string failure = {}; // the library's exception by its class; empty when the file opens

    bool operator==(const Seen&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Seen& seen);

/// The file `name` opened for reading in a document of that user signature.
[[nodiscard]] Seen SeenByLibrary(const char* name, const char* userSignature);

/// The same by the inspector's parser, with the library's answer to what stops it.
[[nodiscard]] Seen SeenByParser(const char* name, const char* userSignature);
