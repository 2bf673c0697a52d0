#pragma once

#include "VUKString.h"

#include <atomic>
#include <cstdint>
#include <string>

/// What a writer process tells of its work, in memory that outlives it.
///
/// A record is told once it is written, its number in `flushed` once a flush behind it returned.
struct WriterReport
{
    static constexpr std::uint32_t kMost = 400; // records of one file

    struct Record
    {
        std::uint64_t position; // in the file
        std::uint64_t offset;   // in the data of its pool
        std::uint32_t pool;     // in file order
        std::uint32_t length;
    };

    Record records[kMost];
    std::atomic<std::uint32_t> written;
    std::atomic<std::uint32_t> flushed;
    std::atomic<std::uint32_t> inPoolCall; // 1 while a pool is being made
};

/// The bytes of record `number`.
[[nodiscard]] std::string RecordBytes(std::uint32_t number);

/// Appends records to the file `name` behind those that `report` tells of, with a flush behind each
/// `flushEach` and a new pool behind each eleven, until there are WriterReport::kMost; then closes
/// the file. With none told yet it begins the file.
void WriteRecords(const VUKString& name, std::uint32_t flushEach, WriterReport& report);
