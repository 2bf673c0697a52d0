// model_tests [--operations=N] [--seed=N] [--replay=FILE] [GoogleTest's options]
//
// Plays random scripts on the library and on its model, and prints how often each operation and
// each failure came. --replay plays one script instead, as it is printed when a run fails, and
// tells of each step.
#include "CrashNote.h"
#include "Duel.h"
#include "ModelOptions.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

#include <unistd.h>

namespace {

void ReadOptions(int count, char** values)
{
    ModelOptions& options = ModelOptions::Current();
    for (int i = 1; i < count; ++i) {
        const std::string value = values[i];
        if (value.starts_with("--operations=")) {
            options.operations = std::stoull(value.substr(13));
        } else if (value.starts_with("--seed=")) {
            options.seed = std::stoull(value.substr(7));
        } else if (value.starts_with("--replay=")) {
            options.replay = value.substr(9);
        }
    }
}

// 0 when the two agree.
int Replay(const std::string& file, const std::string& folder)
{
    std::ifstream in(file);
    if (!in) {
        std::cerr << "cannot read " << file << std::endl;
        return 2;
    }
    Duel duel(folder);
    for (const Operation& operation : Parse(in)) {
        const auto different = duel.Step(operation);
        std::cout << operation << "  -> " << duel.Last() << std::endl;
        if (different) {
            std::cout << *different << std::endl;
            return 1;
        }
    }
    const auto different = duel.CompareFiles();
    std::cout << different.value_or("no difference") << std::endl;
    return different ? 1 : 0;
}
} // namespace

int main(int count, char** values)
{
    ReadOptions(count, values);
    if (access("/dev/shm", W_OK) == 0) {
        setenv("TMPDIR", "/dev/shm", 0); // what a disk does plays no part here
    }
    const TemporaryFolder folder;
    ModelOptions& options = ModelOptions::Current();
    options.folder = folder.Path("files");
    std::filesystem::create_directory(options.folder);
    RealStore::Prepare();
    if (!options.replay.empty()) {
        try {
            return Replay(options.replay, options.folder);
        } catch (const std::runtime_error& refused) {
            std::cerr << options.replay << ": " << refused.what() << std::endl;
            return 2;
        }
    }
    CrashNote::Install();
    testing::InitGoogleTest(&count, values);
    return RUN_ALL_TESTS();
}
