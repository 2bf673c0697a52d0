#pragma once

#include "FrdLineReader.h"
#include "FrdModel.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace fe {

/// Reads a result file in its ASCII form, block by block: the mesh first, then result after result.
///
/// Nothing is lost: what a block's numbers do not tell is kept as text. What cannot be understood
/// is refused with the line where it stands; the reader is of no use after that. The counts in the
/// records that open blocks are not relied on, since the solver itself does not keep to them: a
/// block ends with its " -3" record, and a file with " 9999".
class FrdReader
{
public:
    /// \throws FrdError when the file cannot be opened.
    explicit FrdReader(const std::string& path);

    /// The mesh; to be called once, before the first result. A file without any block has an empty
    /// one (the solver writes such a file when it makes a substructure).
    [[nodiscard]] FrdMesh ReadMesh();

    /// The next block of results; false behind the last one, when the whole file was read.
    [[nodiscard]] bool ReadResult(FrdResult& result);

    /// The text records behind the last block, known once ReadResult has returned false.
    [[nodiscard]] const FrdLines& Trailing() const noexcept { return mText; }

    [[nodiscard]] std::uint64_t Lines() const noexcept { return mLines.Number(); }
    [[nodiscard]] std::uint64_t Bytes() const noexcept { return mLines.BytesRead(); }

private:
    enum class Record
    {
        Nodes,
        Elements,
        Result,
        End
    };

    [[nodiscard]] Record FindBlock();
    void CheckEnd();
    void Open(FrdLines& before, std::string& header, FrdLayout& layout, const char* name);
    [[nodiscard]] bool NextInBlock();
    [[nodiscard]] bool NextItem(std::size_t width, std::int64_t& number);
    void ReadNodes(FrdNodes& nodes);
    void ReadElements(FrdElements& elements);
    void ReadElementNodes(FrdElements& elements, std::size_t count);
    void ReadNameRecord(FrdResult& result);
    void ReadComponents(FrdResult& result, std::int64_t count);
    void ReadValues(FrdResult& result);
    void ReadValuesOfNode(FrdResult& result, std::size_t count);

    [[nodiscard]] std::int64_t Integer(std::size_t from, std::size_t width, const char* what) const;
    [[nodiscard]] std::int32_t HeaderInteger(std::size_t from, std::size_t width,
                                             const char* what) const;
    [[nodiscard]] std::int64_t IntegerField(std::size_t from, std::size_t width, const char* what);
    [[nodiscard]] std::int32_t MaterialField(std::size_t from, std::size_t width);
    [[nodiscard]] double RealField(std::size_t from, const char* what);
    void KeepSpelling(std::string_view column);
    void ExpectLength(std::size_t length) const;
    [[nodiscard]] std::string Item() const;

    FrdLineReader mLines;
    Record mNext = Record::Nodes;       // the block that mLines stands at
    FrdLines mText;                     // text records since the last block
    std::string mBlock;                 // what the block at hand is called in messages
    std::uint64_t mBlockLine = 0;       // where it begins
    const char* mItemKind = "";         // of the block at hand: "node" or "element"
    std::int64_t mItemNumber = 0;       // the item at hand
    FrdSpellings* mSpellings = nullptr; // of the block at hand
    std::uint64_t mField = 0;           // the next field of the block at hand
    std::string mCanonical;             // room for KeepSpelling
};

} // namespace fe
