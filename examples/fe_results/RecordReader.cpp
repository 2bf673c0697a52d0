#include "RecordReader.h"

#include "VUKString.h"

#include <array>
#include <cstring>

namespace fe {

namespace {

constexpr unsigned long kChunkBytes = 65536;
constexpr std::size_t kTagBytes = 8;
constexpr std::size_t kHeadBytes = kTagBytes + sizeof(std::uint64_t);

// The length of the record at `start`, when it has the tag.
std::uint64_t LengthOf(const VUKSimRpm_Locator& start, const char* tag)
{
    std::array<char, kHeadBytes> head{};
    if (start.Read(head.size(), head.data()) != head.size() ||
        std::memcmp(head.data(), tag, kTagBytes) != 0) {
        throw RecordError("a locator leads to a place where no record " + std::string(tag) +
                          " begins");
    }
    std::uint64_t length = 0;
    VUKSimRpm_Swapper::InternalizeScalarUnsafe(head.data() + kTagBytes, &length, sizeof length);
    if (length < kHeadBytes) {
        throw RecordError("a record " + std::string(tag) + " was never finished");
    }
    return length;
}

} // namespace

RecordReader::RecordReader(const VUKSimRpm_Locator& start, const char* tag)
    : mStream(start, LengthOf(start, tag), kChunkBytes)
{
    static_cast<void>(mStream.PrepRead(kHeadBytes));
}

std::string RecordReader::Text()
{
    VUKString text;
    mStream.Read(text);
    return text.UTF8();
}

FrdLines RecordReader::Lines()
{
    FrdLines lines;
    for (auto left = Number<std::uint32_t>(); left > 0; --left) {
        lines.push_back(Text());
    }
    return lines;
}

FrdSpellings RecordReader::Spellings()
{
    FrdSpellings spellings;
    for (auto left = Number<std::uint64_t>(); left > 0; --left) {
        const auto field = Number<std::uint64_t>();
        spellings.push_back({field, Text()});
    }
    return spellings;
}

VUKSimRpm_Locator RecordReader::Locator()
{
    VUKSimRpm_Locator locator;
    locator.InternalizeImpl(mStream);
    return locator;
}

} // namespace fe
