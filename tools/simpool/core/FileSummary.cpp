#include "FileSummary.h"

#include "EscapedText.h"

#include <algorithm>

namespace simpool {

const StoredHeader* FirstHeader(const LoadedFile& file) noexcept
{
    if (!file.Pools().empty()) {
        return &file.Pools().front().header;
    }
    return file.walk.stoppedAt ? &file.walk.stoppedAt->header : nullptr;
}

std::uint64_t MissingBytes(const LoadedFile& file, const PoolInfo& pool) noexcept
{
    return pool.DataLength() - pool.DataInFile(file.bytes.Size());
}

bool EndsWell(const LoadedFile& file) noexcept
{
    return file.walk.stop == Stop::None &&
           std::ranges::none_of(file.Pools(),
                                [&](const PoolInfo& pool) { return MissingBytes(file, pool) > 0; });
}

Json FileHead(const LoadedFile& file)
{
    const StoredHeader* header = FirstHeader(file);
    const bool isPool = header != nullptr && header->signature == kSignature;
    Json head;
    head["name"] = Escaped(file.name);
    head["size"] = file.bytes.Size();
    head["version"] = isPool ? Json(header->version) : Json();
    head["userSignature"] =
        isPool ? Json(Escaped({header->userSignature.data(), header->userSignature.size()}))
               : Json();
    return head;
}

Json PoolSummary(const LoadedFile& file, std::size_t number)
{
    const PoolInfo& pool = file.Pools()[number];
    Json summary;
    summary["number"] = number;
    summary["uuid"] = UuidText(pool.uuid);
    summary["position"] = pool.position;
    summary["headerSize"] = pool.header.FullSize();
    summary["references"] = pool.header.directoryCount - 1;
    summary["dataLength"] = pool.DataLength();
    summary["missing"] = MissingBytes(file, pool);
    summary["state"] = pool.IsCurrent() ? "current" : "frozen";
    return summary;
}

Json StopSummary(const LoadedFile& file)
{
    if (file.walk.stop == Stop::None) {
        return {};
    }
    Json stop;
    stop["position"] = file.walk.position;
    stop["reason"] = Describe(file.walk.stop);
    return stop;
}

std::string FileLine(const LoadedFile& file)
{
    const Json head = FileHead(file);
    std::string line = Escaped(file.name) + ": ";
    if (!head["version"].is_null()) {
        line += fmt::format("version {}, signature '{}', ", head["version"].get<int>(),
                            head["userSignature"].get<std::string>());
    }
    return line + Counted(file.Pools().size(), "pool") + ", " + FullSize(file.bytes.Size());
}

std::string StopLine(const LoadedFile& file)
{
    const std::uint64_t position = file.walk.position;
    const std::uint64_t size = file.bytes.Size();
    return fmt::format("stopped at position {}: {}; {} from there on", Grouped(position),
                       Describe(file.walk.stop), FullSize(size - std::min(size, position)));
}
} // namespace simpool
