// The inspector's parser must see in a file what the library sees, and what its salvage writes must
// open.

#include "FuzzSupport.h"

#include "Salvage.h"
#include "Seen.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>

#include <unistd.h>

namespace {

// The folder in which files are salvaged, gone when the program ends.
class Folder
{
public:
    Folder() { std::filesystem::create_directories(mPath); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() { std::filesystem::remove_all(mPath); }

    [[nodiscard]] std::string Path(const char* name) const { return (mPath / name).string(); }

private:
    std::filesystem::path mPath =
        std::filesystem::temp_directory_path() / ("fuzz" + std::to_string(::getpid()));
};

void ExpectAgreement(const VUKString& name)
{
    const Seen library = SeenByLibrary(name.UTF8(), kFuzzSignature);
    const Seen parser = SeenByParser(name.UTF8(), kFuzzSignature);
    if (!(library == parser)) {
        std::cerr << "library: " << library << "\nparser:  " << parser << std::endl;
        std::abort();
    }
}

void ExpectThatSalvageOpens(const VUKString& name)
{
    static const Folder folder;
    simpool::FileBytes damaged;
    if (damaged.Open(name.UTF8()) != 0) {
        std::abort();
    }
    const simpool::Salvage salvage = simpool::PlanSalvage(damaged, {});
    if (salvage.pools.empty()) {
        return;
    }
    simpool::NewFile salvaged(folder.Path("salvaged.sim"), simpool::NewFile::Existing::Refuse);
    simpool::WriteSalvage(damaged, salvage, salvaged);
    const auto& signature = salvage.pools.front().header.userSignature;
    const std::string userSignature(signature.begin(), signature.end());
    const std::size_t zero = userSignature.find('\0');
    if (userSignature.find_first_not_of('\0', zero) != std::string::npos) {
        return; // a signature ends at its first zero byte: no document has this one
    }
    const Seen seen = SeenByLibrary(salvaged.TemporaryName().c_str(), userSignature.c_str());
    if (!seen.failure.empty() || seen.pools.size() != salvage.pools.size()) {
        std::cerr << "salvaged: " << salvage.pools.size() << " pools; seen: " << seen << std::endl;
        std::abort();
    }
}
} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    SilenceAssertions();
    const MemoryFile file(data, size);
    ExpectAgreement(file.Name());
    ExpectThatSalvageOpens(file.Name());
    return 0;
}
