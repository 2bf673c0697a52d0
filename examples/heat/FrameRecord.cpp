#include "FrameRecord.h"

#include "StreamItems.h"

#include "VUKSimRpm_BStreamReadBuffer.h"
#include "VUKSimRpm_BStreamReadLocator.h"
#include "VUKSimRpm_BStreamWriteBuffer.h"

#include <algorithm>
#include <cstring>

namespace heat {

namespace {

constexpr char kTag[] = "HEATFRAM";
constexpr unsigned kTagBytes = 8;
constexpr unsigned kLocatorsAt = 32;
constexpr unsigned kLocatorsBytes = 24;
constexpr unsigned kHeadBytes = kLocatorsAt + kLocatorsBytes;
constexpr unsigned kChecksumBytes = 8;

std::uint64_t Checksum(const char* bytes, std::size_t length)
{
    std::uint64_t sum = 0xcbf29ce484222325u;
    for (std::size_t i = 0; i < length; ++i) {
        sum = (sum ^ static_cast<unsigned char>(bytes[i])) * 0x100000001b3u;
    }
    return sum;
}

// The checksum has been right: what is left to decode are the two locators, which need the
// directory of the pool that they are stored in.
void ReadLocators(const VUKSimRpm_Locator& record, Frame& frame)
{
    VUKSimRpm_BStreamReadLocator stream(record + kLocatorsAt, kLocatorsBytes, kLocatorsBytes);
    frame.mesh.InternalizeImpl(stream);
    frame.previous.InternalizeImpl(stream);
}

} // namespace

unsigned long long FrameBytes(std::size_t values)
{
    return kHeadBytes + 8ull * values + kChecksumBytes;
}

std::vector<char> EncodeFrame(const Frame& frame, const VUKSimRpm_Pool& pool)
{
    std::vector<char> record(FrameBytes(frame.values.size()));
    VUKSimRpm_BStreamWriteBuffer stream(record.data(), record.size(), pool);
    stream.Write(kTag, kTagBytes);
    Put(stream, static_cast<std::uint64_t>(record.size()));
    Put(stream, frame.step);
    Put(stream, static_cast<std::uint32_t>(frame.values.size()));
    Put(stream, frame.time);
    frame.mesh.ExternalizeImpl(stream);
    frame.previous.ExternalizeImpl(stream);
    PutArray(stream, frame.values);
    Put(stream, Checksum(record.data(), record.size() - kChecksumBytes));
    return record;
}

FrameReading ReadFrame(const VUKSimRpm_Locator& place, unsigned long long available,
                       std::size_t values)
{
    FrameReading reading;
    std::vector<char> record(FrameBytes(values));
    const unsigned long delivered =
        place.Read(std::min<unsigned long long>(record.size(), available), record.data());

    if (std::memcmp(record.data(), kTag, std::min<unsigned long>(kTagBytes, delivered)) != 0) {
        return reading;
    }
    if (delivered < record.size()) {
        reading.state = FrameState::Cut;
        return reading;
    }
    VUKSimRpm_BStreamReadBuffer stream(record.data() + kTagBytes, record.size() - kTagBytes);
    const auto length = Get<std::uint64_t>(stream);
    reading.frame.step = Get<std::uint32_t>(stream);
    const auto count = Get<std::uint32_t>(stream);
    reading.frame.time = Get<double>(stream);
    if (length != record.size() || count != values) {
        return reading;
    }
    static_cast<void>(stream.PrepRead(kLocatorsBytes));
    reading.frame.values = GetArray<double>(stream, values);
    if (Get<std::uint64_t>(stream) != Checksum(record.data(), record.size() - kChecksumBytes)) {
        return reading;
    }
    ReadLocators(place, reading.frame);
    reading.state = FrameState::Whole;
    return reading;
}

} // namespace heat
