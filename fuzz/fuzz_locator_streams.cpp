// Drives the locator streams and the append stream over a pool that holds the input: chunk sizes,
// limits, lengths and their order come from the input's first bytes.

#include "FuzzSupport.h"

#include "VUKSimRpm_BStreamAppendToPool.h"
#include "VUKSimRpm_BStreamReadLocator.h"
#include "VUKSimRpm_BStreamWriteLocator.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_MemoryPool.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <vector>

namespace {

constexpr std::size_t kScript = 32; // bytes of the input that say what is done

// Reads lengths out of the script, over and over.
class Script
{
public:
    explicit Script(const std::uint8_t* bytes) : mBytes(bytes) {}
    unsigned Next() { return mBytes[mNext++ % kScript]; }

private:
    const std::uint8_t* mBytes;
    std::size_t mNext = 0;
};

void Drive(VUKSimRpm_BStreamRead& stream, Script& script)
{
    std::vector<char> bytes(256);
    for (int i = 0; i < 64; ++i) {
        const unsigned length = script.Next();
        Survives([&] {
            switch (script.Next() % 4) {
            case 0:
                static_cast<void>(stream.PrepRead(length));
                break;
            case 1: {
                VUKString text;
                stream.Read(text);
                break;
            }
            case 2:
                VUKSimRpm_Locator().InternalizeImpl(stream);
                break;
            default:
                stream.Read(bytes.data(), length);
            }
        });
    }
}

void Drive(VUKSimRpm_BStreamWrite& stream, const VUKSimRpm_Locator& target, Script& script)
{
    const std::vector<char> bytes(256, 'w');
    for (int i = 0; i < 64; ++i) {
        const unsigned length = script.Next();
        Survives([&] {
            switch (script.Next() % 4) {
            case 0:
                std::fill_n(stream.PrepWrite(length), length, 'p');
                break;
            case 1:
                stream.Write(VUKString("a string record"));
                break;
            case 2:
                target.ExternalizeImpl(stream);
                break;
            default:
                stream.Write(bytes.data(), length);
            }
        });
    }
}

void DriveAll(VUKSimRpm_File& file, Script& script)
{
    const VUKSimRpm_Locator start = file.Start();
    const unsigned long length = file.Pool().Length();
    std::unique_ptr<VUKSimRpm_MemoryPool> image;
    if (script.Next() % 2 == 0) {
        image = std::make_unique<VUKSimRpm_MemoryPool>(start, length * script.Next() / 256,
                                                       VUKBasAllocator(), nullptr);
    }
    const VUKSimRpm_Locator place = image ? VUKSimRpm_Locator(start, *image) : start;
    VUKSimRpm_BStreamReadLocator reader(place, script.Next(), script.Next());
    Drive(reader, script);
    Survives([&] {
        VUKSimRpm_BStreamWriteLocator writer(place, script.Next(), script.Next());
        Drive(writer, start, script);
    });
    Survives([&] {
        VUKSimRpm_BStreamAppendToPool appender(file.Pool(), script.Next());
        Drive(appender, start, script);
        const unsigned long given = appender.Length();
        appender.Flush();
        if (file.Pool().Length() != length + given) {
            std::abort();
        }
    });
}
} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < kScript) {
        return 0;
    }
    SilenceAssertions();
    Script script(data);
    const MemoryFile storage(nullptr, 0);
    VUKSimRpm_Document document(kFuzzSignature);
    Survives([&] {
        VUKSimRpm_File file = document.AddFile(storage.Name(), VUKSimRpm_Document::Write);
        VUKSimRpm_BStreamAppendToPool(file.Pool(), 4096)
            .Write(reinterpret_cast<const char*>(data + kScript),
                   static_cast<unsigned>(size - kScript));
        DriveAll(file, script);
    });
    return 0;
}
