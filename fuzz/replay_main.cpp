// Runs a fuzz target over the files of its corpus, without a fuzzer, so that neither ever rots.
//
// usage: replay_... FOLDER...

#include "FuzzSupport.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

int main(int count, char** arguments)
{
    std::vector<std::filesystem::path> inputs;
    for (int i = 1; i < count; ++i) {
        for (const auto& entry : std::filesystem::directory_iterator(arguments[i])) {
            inputs.push_back(entry.path());
        }
    }
    std::ranges::sort(inputs);
    for (const auto& input : inputs) {
        std::ifstream stream(input, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    std::printf("%zu inputs replayed\n", inputs.size());
    return inputs.empty() ? 1 : 0;
}
