// Runs a fuzz target over the files of its corpus, without a fuzzer, so that neither ever rots.
//
// usage: replay_... FOLDER...
//
// Without streams and std::filesystem: what code that was compiled elsewhere writes to memory,
// MemorySanitizer takes for never written.

#include "FuzzSupport.h"

#include <cstdio>
#include <cstdlib>
#include <vector>

#include <dirent.h>

namespace {

[[noreturn]] void Give(const char* what)
{
    std::perror(what);
    std::exit(1);
}

std::vector<std::uint8_t> Content(const std::string& name)
{
    std::FILE* const file = std::fopen(name.c_str(), "rb");
    if (file == nullptr) {
        Give(name.c_str());
    }
    std::vector<std::uint8_t> content(65536);
    std::size_t size = 0;
    while (const std::size_t count =
               std::fread(content.data() + size, 1, content.size() - size, file)) {
        size += count;
        content.resize(2 * size + content.size());
    }
    if (std::ferror(file) != 0) {
        Give(name.c_str());
    }
    std::fclose(file);
    content.resize(size);
    return content;
}

// Returns how many inputs there were.
int Replay(const std::string& folder)
{
    dirent** entries = nullptr;
    const auto isInput = [](const dirent* entry) { return entry->d_name[0] == '.' ? 0 : 1; };
    const int count = scandir(folder.c_str(), &entries, isInput, alphasort);
    if (count < 0) {
        Give(folder.c_str());
    }
    for (int i = 0; i < count; ++i) {
        const std::vector<std::uint8_t> content = Content(folder + "/" + entries[i]->d_name);
        LLVMFuzzerTestOneInput(content.data(), content.size());
        std::free(entries[i]);
    }
    std::free(entries);
    return count;
}
} // namespace

int main(int count, char** arguments)
{
    int inputs = 0;
    for (int i = 1; i < count; ++i) {
        inputs += Replay(arguments[i]);
    }
    std::printf("%d inputs replayed\n", inputs);
    return inputs == 0 ? 1 : 0;
}
