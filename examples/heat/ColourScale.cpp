#include "ColourScale.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace heat {

namespace {

struct Colour
{
    double red, green, blue; // 0 to 255
};

constexpr std::array<Colour, 9> kStops{{{22, 16, 60},
                                        {62, 24, 108},
                                        {110, 32, 120},
                                        {158, 44, 110},
                                        {203, 64, 88},
                                        {234, 98, 60},
                                        {249, 143, 40},
                                        {252, 192, 68},
                                        {253, 240, 172}}};

} // namespace

std::string ColourAt(double share)
{
    const double place = std::clamp(share, 0.0, 1.0) * (kStops.size() - 1);
    const std::size_t below = std::min(static_cast<std::size_t>(place), kStops.size() - 2);
    const double part = place - static_cast<double>(below);
    const Colour& a = kStops[below];
    const Colour& b = kStops[below + 1];
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x",
                  static_cast<unsigned>(std::lround(a.red + (b.red - a.red) * part)) & 0xFFu,
                  static_cast<unsigned>(std::lround(a.green + (b.green - a.green) * part)) & 0xFFu,
                  static_cast<unsigned>(std::lround(a.blue + (b.blue - a.blue) * part)) & 0xFFu);
    return text;
}

std::vector<double> RoundMarks(double low, double high, unsigned wanted)
{
    if (!(high > low) || wanted == 0) {
        return {low};
    }
    const double rough = (high - low) / wanted;
    const double power = std::pow(10.0, std::floor(std::log10(rough)));
    double step = 10.0 * power;
    for (const double factor : {5.0, 2.0, 1.0}) {
        if (factor * power >= rough) {
            step = factor * power;
        }
    }
    std::vector<double> marks;
    const double first = std::ceil(low / step - 1e-9);
    for (double count = first; count * step <= high + step * 1e-9; ++count) {
        marks.push_back(count * step);
    }
    return marks;
}

} // namespace heat
