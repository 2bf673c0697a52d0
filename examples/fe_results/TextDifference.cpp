#include "TextDifference.h"

#include <fstream>
#include <stdexcept>

namespace fe {

namespace {

std::ifstream Open(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error(path + ": cannot be opened for comparing");
    }
    return file;
}

// The next line with its end, if it has one; empty behind the last.
std::string NextLine(std::ifstream& file, const std::string& path)
{
    std::string line;
    std::getline(file, line);
    if (file.bad()) {
        throw std::runtime_error(path + ": cannot be read for comparing");
    }
    if (!file.eof() && !file.fail()) {
        line.push_back('\n');
    }
    return line;
}

} // namespace

std::optional<TextDifference> FindDifference(const std::string& first, const std::string& second)
{
    std::ifstream firstFile = Open(first);
    std::ifstream secondFile = Open(second);
    for (std::uint64_t number = 1;; ++number) {
        TextDifference lines{number, NextLine(firstFile, first), NextLine(secondFile, second)};
        if (lines.first != lines.second) {
            return lines;
        }
        if (lines.first.empty()) {
            return std::nullopt;
        }
    }
}

} // namespace fe
