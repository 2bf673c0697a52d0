#include "Text.h"

#include <cstdio>

namespace heat {

std::string Grouped(unsigned long long number)
{
    std::string text = std::to_string(number);
    for (std::size_t left = text.size(); left > 3;) {
        left -= 3;
        text.insert(left, 1, ',');
    }
    return text;
}

std::string Decimal(double number, int digits)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", digits, number);
    return text;
}

std::string Counted(unsigned long long number, const std::string& noun)
{
    return Grouped(number) + " " + noun + (number == 1 ? "" : "s");
}

} // namespace heat
