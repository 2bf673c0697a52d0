#pragma once

#include <cstdint>
#include <string>

/// How much the program does.
struct ModelOptions
{
#if defined(__SANITIZE_ADDRESS__) || !defined(__OPTIMIZE__)
    std::uint64_t operations = 100000; // each takes many times as long
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer)
    std::uint64_t operations = 100000;
#else
    std::uint64_t operations = 1000000;
#endif
#else
    std::uint64_t operations = 1000000;
#endif
    std::uint64_t seed = 20240229;
    std::string replay; // a file with a script; empty for none
    std::string folder; // empty, for the files of the scripts

    /// Those of this run, set before the first test.
    static ModelOptions& Current()
    {
        static ModelOptions options;
        return options;
    }
};
