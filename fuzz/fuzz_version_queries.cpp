// Asks a file for its type and version without opening it.

#include "FuzzSupport.h"

#include "VUKSimRpm_Document.h"

#include <cstdlib>

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const MemoryFile file(data, size);
    int type = -1;
    bool upgrade = false;
    bool downgrade = false;
    bool binary = false;
    Survives([&] { type = VUKSimRpm_Document::GetFileType(file.Name()); });
    const bool answered = Survives([&] {
        upgrade = VUKSimRpm_Document::UpgradeRequired(file.Name());
        downgrade = VUKSimRpm_Document::DowngradeRequired(file.Name());
        binary = VUKSimRpm_Document::BinaryUpgradeRequired(file.Name());
    });
    // The four answers come from the same byte and cannot contradict each other.
    const bool consistent = type >= 0 && type <= 2 && answered == (size >= 9) &&
                            binary == (upgrade || downgrade) && !(upgrade && downgrade) &&
                            (type == 0 || !downgrade);
    if (!consistent) {
        std::abort();
    }
    return 0;
}
