// A document of three fuzzed files: opened in two orders, walked, and copied from one to another.

#include "FuzzSupport.h"

#include "VUKSimRpm_Document.h"

#include <algorithm>

namespace {

// The input is cut in three where its first two bytes say.
struct Parts
{
    std::size_t first;
    std::size_t second; // ends of the first two parts
};

Parts Cut(const std::uint8_t* data, std::size_t size)
{
    const std::size_t a = size * data[0] / 256;
    const std::size_t b = size * data[1] / 256;
    return {std::min(a, b), std::max(a, b)};
}

void CopyPools(const VUKSimRpm_File& from, VUKSimRpm_File& to)
{
    for (unsigned int index = 0; index < from.PoolCount(); ++index) {
        Survives([&] { CopyPool(from, index, to); });
    }
}
} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2) {
        return 0;
    }
    SilenceAssertions();
    const Parts cut = Cut(data, size - 2);
    const std::uint8_t* bytes = data + 2;
    const MemoryFile one(bytes, cut.first);
    const MemoryFile two(bytes + cut.first, cut.second - cut.first);
    const MemoryFile three(bytes + cut.second, size - 2 - cut.second);

    VUKSimRpm_Document document(kFuzzSignature);
    for (const MemoryFile* file : {&one, &two, &three}) {
        Survives([&] { WalkFile(document.AddFile(file->Name(), VUKSimRpm_Document::Update)); });
    }
    Survives([&] { document.Close(); });
    for (const MemoryFile* file : {&three, &one}) {
        Survives([&] { WalkFile(document.AddFile(file->Name(), VUKSimRpm_Document::Read)); });
    }

    VUKSimRpm_Document other(kFuzzSignature);
    Survives([&] {
        VUKSimRpm_File target = other.AddFile(two.Name(), VUKSimRpm_Document::Update);
        CopyPools(document.AddFile(one.Name(), VUKSimRpm_Document::Read), target);
        WalkFile(target);
        other.Close();
    });
    return 0;
}
