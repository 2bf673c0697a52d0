#pragma once

#include "Json.h"
#include "LoadedFile.h"
#include "RecordLayout.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace simpool {

/// Some bytes of a pool and what they mean.
struct HexLine
{
    std::uint64_t offset = 0; // in the data, or in the pool for header and directory
    std::string bytes = {};
    std::string type = {};    // "u32", "length", "entry 1"; empty for plain bytes
    std::string meaning = {}; // for people, Escaped
    Json value = {};          // for documents
};

/// Cuts one pool into lines.
class HexLines
{
public:
    using Visitor = std::function<void(const HexLine&)>;

    /// `files` are those in which references are looked up; `number` is a pool of the first.
    HexLines(const LoadedFiles& files, std::size_t number);

    void ForHeader(const Visitor& visit) const;
    void ForDirectory(const Visitor& visit) const;

    /// Sixteen bytes in each line, of `length` bytes of data from `offset` on.
    void ForBytes(std::uint64_t offset, std::uint64_t length, const Visitor& visit) const;

    /// Records after `layout`, over and over, as many as lie within `length` bytes. Returns how
    /// many bytes are left over: too few for the next field.
    [[nodiscard]] std::uint64_t ForRecords(const std::vector<LayoutField>& layout,
                                           std::uint64_t offset, std::uint64_t length,
                                           const Visitor& visit) const;

private:
    [[nodiscard]] std::string DataBytes(std::uint64_t offset, std::uint64_t length) const;
    [[nodiscard]] bool TakeField(const LayoutField& field, std::uint64_t& offset, std::uint64_t end,
                                 const Visitor& visit) const;
    void Explain(FieldType type, HexLine& line) const;
    void ExplainLocator(HexLine& line) const;

    const LoadedFiles& mFiles;
    const LoadedFile& mFile;
    const PoolInfo& mPool;
    mutable std::string mWindow = {}; // data bytes read ahead
    mutable std::uint64_t mWindowOffset = 0;
};
} // namespace simpool
