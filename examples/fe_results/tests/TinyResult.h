#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace fe {

/// A result file small enough to know by heart: four nodes, one tetrahedron, two blocks. Lines are
/// counted from 1.
inline const std::vector<std::string>& TinyLines()
{
    static const std::vector<std::string> lines{
        "    1C",
        "    1UUSER    somebody                                                  ",
        "    2C                             4                                     1",
        " -1         1 0.00000E+00 0.00000E+00 0.00000E+00",
        " -1         2 1.00000E+00 0.00000E+00 0.00000E+00", // 5
        " -1         3 0.00000E+00-1.50000E+00 0.00000E+00",
        " -1        10 0.00000E+00 0.00000E+00 2.50000E-01",
        " -3",
        "    3C                             1                                     1",
        " -1         7    3    0    1", // 10
        " -2         1         2         3        10",
        " -3",
        "    1PSTEP                         1           1           1          ",
        "  100CL  101 0.250000000           2                     0    1           1",
        " -4  DISP        4    1", // 15
        " -5  D1          1    2    1    0",
        " -5  D2          1    2    2    0",
        " -5  D3          1    2    3    0",
        " -5  ALL         1    2    0    0    1ALL",
        " -1         2 1.00000E-03-2.00000E-03 0.00000E+00", // 20
        " -1        10 3.00000E+00        -NAN 4.12500E+02",
        " -3",
        "    1PSTEP                         2           1           2          ",
        "  100CL  102 1.000000000           1                     0    2           1",
        " -4  SDV         7    1", // 25
        " -5  SDV1        1    1    0    0",
        " -5  SDV2        1    1    0    0",
        " -5  SDV3        1    1    0    0",
        " -5  SDV4        1    1    0    0",
        " -5  SDV5        1    1    0    0", // 30
        " -5  SDV6        1    1    0    0",
        " -5  SDV7        1    1    0    0",
        " -1         3 1.00000E+00 2.00000E+00 3.00000E+00 4.00000E+00 5.00000E+00 6.00000E+00",
        " -2           7.00000E+00",
        " -3", // 35
        " 9999",
    };
    return lines;
}

/// The first `count` lines, each with its end.
inline std::string Text(const std::vector<std::string>& lines, std::size_t count = ~std::size_t{0},
                        const std::string& lineEnd = "\n")
{
    std::string text;
    for (std::size_t i = 0; i < lines.size() && i < count; ++i) {
        text += lines[i] + lineEnd;
    }
    return text;
}

/// The tiny result with line `number` replaced.
inline std::string TinyWith(std::size_t number, const std::string& line)
{
    std::vector<std::string> lines = TinyLines();
    lines.at(number - 1) = line;
    return Text(lines);
}

} // namespace fe
