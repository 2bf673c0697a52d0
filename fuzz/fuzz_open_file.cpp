// Opens a file for reading, and again for update, and walks every pool and locator of it.

#include "FuzzSupport.h"

#include "VUKSimRpm_Document.h"

namespace {

void OpenAndWalk(const VUKString& name, VUKSimRpm_Document::AccessMode mode)
{
    VUKSimRpm_Document document(kFuzzSignature);
    Survives([&] {
        WalkFile(document.AddFile(name, mode));
        document.Close();
    });
}
} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    SilenceAssertions();
    const MemoryFile file(data, size);
    OpenAndWalk(file.Name(), VUKSimRpm_Document::Read);
    OpenAndWalk(file.Name(), VUKSimRpm_Document::Update);
    OpenAndWalk(file.Name(), VUKSimRpm_Document::Read);
    return 0;
}
