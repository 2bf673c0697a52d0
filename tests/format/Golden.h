// Access to the golden files, see golden/README.md.
#pragma once

#include "TemporaryFolder.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

/// The content of golden file `name`, given without its extension.
inline std::string GoldenBytes(const std::string& name)
{
    const std::filesystem::path path =
        std::filesystem::path(VUKSIM_GOLDEN_FOLDER) / (name + ".sim");
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        throw std::runtime_error("cannot open " + path.string());
    }
    return std::string(std::istreambuf_iterator<char>(in), {});
}

/// The names of all golden files, sorted.
inline std::vector<std::string> GoldenNames()
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(VUKSIM_GOLDEN_FOLDER)) {
        if (entry.path().extension() == ".sim") {
            names.push_back(entry.path().stem().string());
        }
    }
    std::ranges::sort(names);
    return names;
}

/// A document with the signature of the golden files, which are opened as copies in a folder of the
/// test's own.
class GoldenFixture : public testing::Test
{
protected:
    VUKSimRpm_File Open(const std::string& name, VUKSimRpm_Document::AccessMode mode)
    {
        return mDocument.AddFile(mFolder.Write(name, GoldenBytes(name)), mode);
    }
    VUKSimRpm_File OpenRead(const std::string& name)
    {
        return Open(name, VUKSimRpm_Document::Read);
    }

    TemporaryFolder mFolder;
    VUKSimRpm_Document mDocument{"DEMO"};
};
