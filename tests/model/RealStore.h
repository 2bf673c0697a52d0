#pragma once

#include "Failure.h"
#include "VUKBasException.h"
#include "VUKSimRpm_BStreamAppendToPool.h"
#include "VUKSimRpm_BStreamReadBuffer.h"
#include "VUKSimRpm_BStreamReadLocator.h"
#include "VUKSimRpm_BStreamWriteBuffer.h"
#include "VUKSimRpm_BStreamWriteLocator.h"
#include "VUKSimRpm_DirectLocator.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"
#include "VUKSimRpm_Locator.h"
#include "VUKSimRpm_MemoryPool.h"
#include "VUKSimRpm_Pool.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// The library, for a Player. Nothing but this pair of files knows of it.
struct RealStore
{
    using Document = VUKSimRpm_Document;
    using File = VUKSimRpm_File;
    using Pool = VUKSimRpm_Pool;
    using Locator = VUKSimRpm_Locator;
    using DirectLocator = VUKSimRpm_DirectLocator;
    using MemoryPool = VUKSimRpm_MemoryPool;
    using StreamRead = VUKSimRpm_BStreamRead;
    using ReadBuffer = VUKSimRpm_BStreamReadBuffer;
    using ReadLocator = VUKSimRpm_BStreamReadLocator;
    using StreamWrite = VUKSimRpm_BStreamWrite;
    using WriteBuffer = VUKSimRpm_BStreamWriteBuffer;
    using WriteLocator = VUKSimRpm_BStreamWriteLocator;
    using AppendToPool = VUKSimRpm_BStreamAppendToPool;
    using String = VUKString;

    static std::string Bytes(const VUKString& text);

    /// With `given` 0 the library allocates, with 1 through an allocator of the caller; else the
    /// buffer too is the caller's.
    static std::unique_ptr<MemoryPool> MakeMemory(const Locator& place, unsigned long size,
                                                  unsigned int given);

    static void ForceUuid(const char* uuid);

    template <class Call>
    static std::optional<Failure> Try(Call&& call)
    {
        try {
            std::forward<Call>(call)();
        } catch (const VUKBasException& raised) {
            return Describe(raised);
        }
        return std::nullopt;
    }

    static std::vector<Report> TakeReports();

    /// Keeps the reports of failed checks from now on, and spares the disk all syncs.
    static void Prepare();

private:
    static Failure Describe(const VUKBasException& raised);
};
