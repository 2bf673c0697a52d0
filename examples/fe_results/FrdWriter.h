#pragma once

#include "FrdModel.h"

#include <cstdint>
#include <fstream>
#include <string>

namespace fe {

/// Writes a result file in its ASCII form, with the digits that FrdReader saw.
///
/// Lines wait in memory; the file is whole once Finish has returned.
class FrdWriter
{
public:
    /// Creates or empties `path`. \throws FrdError when it cannot.
    explicit FrdWriter(const std::string& path);

    void Write(const FrdMesh& mesh);
    void Write(const FrdResult& result);

    /// Ends the file. \throws FrdError when it could not be written as a whole.
    void Finish(const FrdLines& trailing);

    [[nodiscard]] std::uint64_t Bytes() const noexcept { return mBytes; }

private:
    void Write(const FrdNodes& nodes);
    void Write(const FrdElements& elements);
    void WriteNodesOfElement(const std::int64_t* nodes, std::size_t count, FrdLayout layout);
    void WriteValues(const FrdResult& result);
    void Text(const std::string& line);
    void Text(const FrdLines& lines);
    void EndLine();
    void FlushLines();

    void OpenFields(const FrdSpellings& spellings);
    void Integer(std::int64_t value, std::size_t width);
    void Real(double value);
    [[nodiscard]] bool Spelled();

    std::string mPath;
    std::ofstream mStream;
    std::string mLineEnd = "\n";
    std::string mLines;                       // not yet in the file
    std::uint64_t mBytes = 0;                 // in the file
    const FrdSpellings* mSpellings = nullptr; // of the block at hand
    std::size_t mNextSpelling = 0;            // in mSpellings
    std::uint64_t mField = 0;                 // the next field of the block at hand
};

} // namespace fe
