#pragma once

#include "VUKString.h"

#include <cstddef>
#include <deque>
#include <string>

/// Files that exist in memory alone, so that tens of thousands of crash images can be opened.
///
/// Each has a number and keeps its name for as long as the object lives; to the library they are
/// regular files. What the system refuses is a std::runtime_error.
class ImageFiles
{
public:
    ImageFiles() = default;
    ImageFiles(const ImageFiles&) = delete;
    ImageFiles& operator=(const ImageFiles&) = delete;
    ~ImageFiles();

    /// Makes file `number` hold exactly `content`, and returns its name.
    VUKString Write(std::size_t number, const std::string& content);

    [[nodiscard]] VUKString Name(std::size_t number) const;
    [[nodiscard]] std::string Read(std::size_t number) const;

private:
    std::deque<int> mDescriptors; // owned, by number
};
