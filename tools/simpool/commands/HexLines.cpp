#include "HexLines.h"

#include "EscapedText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace simpool {
namespace {

constexpr std::uint64_t kWindow = 1U << 16U; // bytes read ahead
constexpr std::uint64_t kBytesInLine = 16;

std::string Printable(std::string_view bytes)
{
    std::string text(bytes);
    std::ranges::replace_if(
        text, [](char c) { return c < ' ' || c > '~'; }, '.');
    return text;
}

template <class Number>
void SetNumber(HexLine& line, Number number)
{
    line.value = number;
    line.meaning = fmt::format("{}", number);
}

template <class Float, class Bits>
void SetFloat(HexLine& line, Bits bits)
{
    const auto number = std::bit_cast<Float>(bits);
    line.value = std::isfinite(number) ? Json(number) : Json(); // JSON has no other
    line.meaning = fmt::format("{}", number);
}

std::uint32_t HostWord(std::string_view bytes)
{
    std::uint32_t word = 0;
    std::copy_n(bytes.data(), sizeof(word), reinterpret_cast<char*>(&word));
    return word;
}
} // namespace

HexLines::HexLines(const LoadedFiles& files, std::size_t number)
    : mFiles(files), mFile(files[0]), mPool(mFile.Pools()[number])
{}

void HexLines::ForHeader(const Visitor& visit) const
{
    struct Part
    {
        const char* name;
        std::size_t size;
        bool isWord;
    };
    constexpr std::array<Part, 8> kParts = {{{"signature", 8, false},
                                             {"version", 1, false},
                                             {"reserved", 7, false},
                                             {"user signature", 4, false},
                                             {"length", 16, false},
                                             {"reserved1", 4, true},
                                             {"reserved2", 4, true},
                                             {"directory count", 4, true}}};
    const std::string bytes = ReadBytes(mFile, mPool.position, kHeaderSize);
    std::size_t offset = 0;
    for (const Part& part : kParts) {
        HexLine line{offset, bytes.substr(offset, part.size), part.name};
        if (part.isWord) {
            SetNumber(line, HostWord(line.bytes));
        } else if (part.size == 1) {
            SetNumber(line, static_cast<int>(static_cast<signed char>(line.bytes[0])));
        } else {
            line.meaning = Escaped(line.bytes);
            line.value = line.meaning;
        }
        visit(line);
        offset += part.size;
    }
}

void HexLines::ForDirectory(const Visitor& visit) const
{
    const std::vector<Uuid> directory = ReadDirectory(mFile, mPool);
    for (std::size_t i = 0; i < directory.size(); ++i) {
        const Uuid& uuid = directory[i];
        HexLine line{
            kHeaderSize + kEntrySize * i, {uuid.data(), uuid.size()}, fmt::format("entry {}", i)};
        line.value = UuidText(uuid);
        const Together::Place* place = mFiles.Find(uuid);
        line.meaning = i == 0 ? UuidText(uuid) + ", this pool"
                       : place == nullptr
                           ? UuidText(uuid) + ", not in these files"
                           : fmt::format("{}, pool {} of {}", UuidText(uuid), place->pool,
                                         Escaped(mFiles[place->file].name));
        visit(line);
    }
}

void HexLines::ForBytes(std::uint64_t offset, std::uint64_t length, const Visitor& visit) const
{
    for (const std::uint64_t end = offset + length; offset < end; offset += kBytesInLine) {
        HexLine line{offset, DataBytes(offset, std::min(kBytesInLine, end - offset))};
        line.meaning = Printable(line.bytes);
        visit(line);
    }
}

std::uint64_t HexLines::ForRecords(const std::vector<LayoutField>& layout, std::uint64_t offset,
                                   std::uint64_t length, const Visitor& visit) const
{
    const std::uint64_t end = offset + length;
    while (offset < end) {
        for (const LayoutField& field : layout) {
            for (std::uint64_t time = 0; time < field.Times() && offset < end; ++time) {
                if (!TakeField(field, offset, end, visit)) {
                    return end - offset;
                }
            }
        }
    }
    return 0;
}

std::string HexLines::DataBytes(std::uint64_t offset, std::uint64_t length) const
{
    const bool isRead =
        offset >= mWindowOffset && offset + length <= mWindowOffset + mWindow.size();
    if (!isRead) {
        const std::uint64_t available =
            mPool.DataInFile(mFile.bytes.Size()) - offset; // the caller stays within the data
        mWindowOffset = offset;
        mWindow = ReadBytes(mFile, mPool.DataPosition() + offset,
                            std::max(length, std::min(kWindow, available)));
    }
    return mWindow.substr(offset - mWindowOffset, length);
}

// Goes on behind the field; false when it does not end before `end`.
bool HexLines::TakeField(const LayoutField& field, std::uint64_t& offset, std::uint64_t end,
                         const Visitor& visit) const
{
    std::uint64_t size = field.Size();
    if (size > end - offset) {
        return false;
    }
    if (field.type == FieldType::String) {
        const std::string head = DataBytes(offset, size);
        size += PaddedLength(static_cast<std::uint32_t>(LittleEndian(head)));
        if (size > end - offset) {
            return false;
        }
    }
    HexLine line{offset, DataBytes(offset, size), NameOf(field.type)};
    offset += size;
    if (field.type != FieldType::Skip) {
        Explain(field.type, line);
        visit(line);
    }
    return true;
}

void HexLines::Explain(FieldType type, HexLine& line) const
{
    const std::uint64_t bits = LittleEndian(std::string_view(line.bytes).substr(0, 8));
    switch (type) {
    case FieldType::I8:
        return SetNumber(line, int{static_cast<std::int8_t>(bits)});
    case FieldType::I16:
        return SetNumber(line, static_cast<std::int16_t>(bits));
    case FieldType::I32:
        return SetNumber(line, static_cast<std::int32_t>(bits));
    case FieldType::I64:
        return SetNumber(line, static_cast<std::int64_t>(bits));
    case FieldType::U8:
    case FieldType::U16:
    case FieldType::U32:
    case FieldType::U64:
        return SetNumber(line, bits);
    case FieldType::F32:
        return SetFloat<float>(line, static_cast<std::uint32_t>(bits));
    case FieldType::F64:
        return SetFloat<double>(line, bits);
    case FieldType::Locator:
        return ExplainLocator(line);
    case FieldType::String:
        line.value = Escaped(line.bytes.substr(4, static_cast<std::uint32_t>(bits)));
        break;
    case FieldType::Char:
        line.value = Escaped(line.bytes);
        break;
    case FieldType::Skip:
        return;
    }
    line.meaning = "\"" + line.value.get<std::string>() + "\"";
}

void HexLines::ExplainLocator(HexLine& line) const
{
    const StoredLocator locator = DecodeLocator(line.bytes);
    line.value["entry"] = locator.entry;
    line.value["offset"] = locator.offset;
    line.value["uuid"] = {};
    line.value["file"] = {};
    line.value["pool"] = {};
    if (locator.entry < 0) {
        line.meaning = "no pool";
        return;
    }
    if (static_cast<std::uint32_t>(locator.entry) >= mPool.header.directoryCount) {
        line.meaning = fmt::format("entry {}, which the directory of {} does not have",
                                   locator.entry, Grouped(mPool.header.directoryCount));
        return;
    }
    const std::string record = ReadBytes(mFile,
                                         mPool.position + kHeaderSize +
                                             kEntrySize * static_cast<std::uint64_t>(locator.entry),
                                         kEntrySize);
    Uuid uuid = {};
    std::ranges::copy(record, uuid.begin());
    line.value["uuid"] = UuidText(uuid);
    line.meaning = fmt::format("entry {}, offset {} of ", locator.entry, Grouped(locator.offset));
    const Together::Place* place = mFiles.Find(uuid);
    if (place == nullptr) {
        line.meaning += UuidText(uuid) + ", not in these files";
        return;
    }
    const LoadedFile& file = mFiles[place->file];
    const PoolInfo& pool = file.Pools()[place->pool];
    line.value["file"] = Escaped(file.name);
    line.value["pool"] = place->pool;
    line.meaning += fmt::format("pool {} of {}{}", place->pool, Escaped(file.name),
                                locator.offset > pool.DataLength() ? ", behind its end" : "");
}
} // namespace simpool
