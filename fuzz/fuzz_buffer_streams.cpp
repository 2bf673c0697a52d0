// Decodes the input as records through a buffer stream: bytes, strings and locators, in the order
// that its own bytes ask for; what was decoded is encoded again and must be the same.

#include "FuzzSupport.h"

#include "VUKSimRpm_BStreamReadBuffer.h"
#include "VUKSimRpm_BStreamWriteBuffer.h"
#include "VUKSimRpm_Locator.h"

#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

void CheckRoundTrip(const VUKString& text)
{
    std::vector<char> room(text.GetLengthInByte() + 8);
    VUKSimRpm_BStreamWriteBuffer writer(room.data(), room.size());
    if (text.IsEmpty()) {
        return; // a buffer stream refuses the empty text behind the length
    }
    writer.Write(text);
    VUKSimRpm_BStreamReadBuffer reader(room.data(), room.size());
    VUKString again;
    reader.Read(again);
    if (again != text) {
        std::abort();
    }
}

void Decode(VUKSimRpm_BStreamReadBuffer& stream)
{
    for (;;) {
        const auto kind = static_cast<unsigned char>(*stream.PrepRead(1));
        if (kind % 3 == 0) {
            VUKString text;
            stream.Read(text);
            CheckRoundTrip(text);
        } else if (kind % 3 == 1) {
            VUKSimRpm_Locator().InternalizeImpl(stream);
        } else {
            std::vector<char> bytes(kind);
            stream.Read(bytes.data(), kind);
        }
    }
}
} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    SilenceAssertions();
    VUKSimRpm_BStreamReadBuffer stream(reinterpret_cast<const char*>(data), size);
    Survives([&] { Decode(stream); });
    return 0;
}
