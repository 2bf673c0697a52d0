#include "RecordWriter.h"

#include "VUKString.h"

#include <array>
#include <cstdint>

namespace fe {

namespace {

constexpr unsigned long kChunkBytes = 65536;
constexpr unsigned kTagBytes = 8;

} // namespace

RecordWriter::RecordWriter(const VUKSimRpm_Pool& pool, const char* tag)
    : mStart(pool.End()), mStream(pool, kChunkBytes)
{
    mStream.Write(tag, kTagBytes);
    Number(std::uint64_t{0});
}

void RecordWriter::Text(const std::string& text)
{
    mStream.Write(VUKString(text.c_str()));
}

void RecordWriter::Lines(const FrdLines& lines)
{
    Number(static_cast<std::uint32_t>(lines.size()));
    for (const std::string& line : lines) {
        Text(line);
    }
}

void RecordWriter::Spellings(const FrdSpellings& spellings)
{
    Number(static_cast<std::uint64_t>(spellings.size()));
    for (const FrdSpelling& spelling : spellings) {
        Number(spelling.field);
        Text(spelling.text);
    }
}

void RecordWriter::Locator(const VUKSimRpm_Locator& locator)
{
    locator.ExternalizeImpl(mStream);
}

VUKSimRpm_Locator RecordWriter::Finish()
{
    mStream.Flush();
    const std::uint64_t length = mStream.Length();
    std::array<char, sizeof length> stored{};
    VUKSimRpm_Swapper::ExternalizeScalarUnsafe(stored.data(), &length, sizeof length);
    (mStart + kTagBytes).Write(stored.size(), stored.data());
    return mStart;
}

} // namespace fe
