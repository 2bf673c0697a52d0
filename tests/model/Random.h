#pragma once

#include <cstdint>
#include <random>

/// Numbers that are the same on every machine for the same seed.
class Random
{
public:
    explicit Random(std::uint64_t seed) : mEngine(seed) {}

    /// 0 up to below `count`.
    std::uint32_t Below(std::uint32_t count)
    {
        return static_cast<std::uint32_t>(mEngine() % count);
    }

    /// True in `of` of eight cases.
    bool InEight(std::uint32_t of) { return Below(8) < of; }

private:
    std::mt19937_64 mEngine;
};
