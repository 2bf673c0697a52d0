#pragma once

#include "ModelCheck.h"
#include "ModelDocument.h"
#include "ModelLocatorStream.h"
#include "ModelMemoryPool.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// The model, for a Player.
struct ModelStore
{
    using Document = model::Document;
    using File = model::File;
    using Pool = model::Pool;
    using Locator = model::Locator;
    using DirectLocator = model::DirectLocator;
    using MemoryPool = model::MemoryPool;
    using StreamRead = model::StreamRead;
    using ReadBuffer = model::ReadBuffer;
    using ReadLocator = model::ReadLocator;
    using StreamWrite = model::StreamWrite;
    using WriteBuffer = model::WriteBuffer;
    using WriteLocator = model::WriteLocator;
    using AppendToPool = model::AppendToPool;
    using String = std::string;

    static const std::string& Bytes(const std::string& text) { return text; }

    static std::unique_ptr<MemoryPool> MakeMemory(const Locator& place, std::uint64_t size,
                                                  std::uint32_t /*given*/)
    {
        return std::make_unique<MemoryPool>(place, size);
    }

    static void ForceUuid(const char* uuid)
    {
        model::UuidSource::Current().forced =
            uuid == nullptr ? model::Uuid() : model::Uuid(uuid, 32);
    }

    template <class Call>
    static std::optional<Failure> Try(Call&& call)
    {
        try {
            std::forward<Call>(call)();
        } catch (const Failure& failure) {
            return failure;
        }
        return std::nullopt;
    }

    static std::vector<Report> TakeReports() { return std::exchange(model::Reports(), {}); }
};
