#include "Figures.h"

#include <cstddef>
#include <cstdio>

namespace fe {

std::string Grouped(unsigned long long number)
{
    std::string text = std::to_string(number);
    for (std::size_t left = text.size(); left > 3;) {
        left -= 3;
        text.insert(left, 1, ',');
    }
    return text;
}

std::string Counted(unsigned long long number, const std::string& noun)
{
    return Grouped(number) + " " + noun + (number == 1 ? "" : "s");
}

std::string Rate(unsigned long long bytes, double seconds)
{
    if (seconds < 0.001) {
        return "too quick to tell";
    }
    char text[64];
    std::snprintf(text, sizeof text, "%.1f MB/s", static_cast<double>(bytes) / seconds / 1e6);
    return text;
}

} // namespace fe
