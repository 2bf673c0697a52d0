#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace fe {

/// What is wrong with a result file, and where: "plate.frd:120: value 2 of node 17 ...".
class FrdError : public std::runtime_error
{
public:
    /// `line` counts from 1; 0 means the file as a whole.
    FrdError(const std::string& file, std::uint64_t line, const std::string& what)
        : std::runtime_error(Place(file, line).append(": ").append(what)), mLine(line)
    {}

    [[nodiscard]] std::uint64_t Line() const noexcept { return mLine; }

private:
    static std::string Place(const std::string& file, std::uint64_t line)
    {
        std::string place = file;
        if (line > 0) {
            place.append(":").append(std::to_string(line));
        }
        return place;
    }

    std::uint64_t mLine;
};

} // namespace fe
