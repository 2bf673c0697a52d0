#pragma once

#include <string>

namespace heat {

/// How a text stands: `anchor` is start, middle or end; `kind` a class of the style sheet.
struct TextStyle
{
    std::string kind = "label";
    std::string anchor = "start";
    double turned = 0.0; // degrees, clockwise
};

/// The text of an SVG file in the making. Lengths are pixels at usual size, y runs downwards.
/// Texts are given as they are to be read; the page escapes them.
class SvgPage
{
public:
    SvgPage(double width, double height, const std::string& styleSheet);

    /// `path` in SVG's path language; `attributes` as they stand in the element.
    void Path(const std::string& path, const std::string& attributes);
    void Circle(double x, double y, double radius, const std::string& attributes);
    void Rectangle(double x, double y, double width, double height, const std::string& attributes);
    void Text(double x, double y, const std::string& text, const TextStyle& style);

    /// Anything else, taken as it is.
    void Raw(const std::string& svg);

    /// The whole file.
    [[nodiscard]] std::string Finish() const;

private:
    std::string mSvg;
};

/// A coordinate as SVG writes it: two digits behind the point.
[[nodiscard]] std::string Coordinate(double value);

} // namespace heat
