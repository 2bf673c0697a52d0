#include "SvgPage.h"

#include "Text.h"

namespace heat {

namespace {

std::string Escaped(const std::string& text)
{
    std::string escaped;
    for (const char c : text) {
        switch (c) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}

} // namespace

std::string Coordinate(double value)
{
    return Decimal(value, 2);
}

SvgPage::SvgPage(double width, double height, const std::string& styleSheet)
{
    const std::string size = Coordinate(width) + " " + Coordinate(height);
    mSvg = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
           Coordinate(width) + "\" height=\"" + Coordinate(height) + "\" viewBox=\"0 0 " + size +
           "\">\n<style>\n" + styleSheet + "</style>\n";
}

void SvgPage::Path(const std::string& path, const std::string& attributes)
{
    mSvg += "<path d=\"" + path + "\" " + attributes + "/>\n";
}

void SvgPage::Circle(double x, double y, double radius, const std::string& attributes)
{
    mSvg += "<circle cx=\"" + Coordinate(x) + "\" cy=\"" + Coordinate(y) + "\" r=\"" +
            Coordinate(radius) + "\" " + attributes + "/>\n";
}

void SvgPage::Rectangle(double x, double y, double width, double height,
                        const std::string& attributes)
{
    mSvg += "<rect x=\"" + Coordinate(x) + "\" y=\"" + Coordinate(y) + "\" width=\"" +
            Coordinate(width) + "\" height=\"" + Coordinate(height) + "\" " + attributes + "/>\n";
}

void SvgPage::Text(double x, double y, const std::string& text, const TextStyle& style)
{
    mSvg += "<text class=\"" + style.kind + "\" text-anchor=\"" + style.anchor + "\" x=\"" +
            Coordinate(x) + "\" y=\"" + Coordinate(y) + "\"";
    if (style.turned != 0.0) {
        mSvg += " transform=\"rotate(" + Coordinate(style.turned) + " " + Coordinate(x) + " " +
                Coordinate(y) + ")\"";
    }
    mSvg += ">" + Escaped(text) + "</text>\n";
}

void SvgPage::Raw(const std::string& svg)
{
    mSvg += svg;
}

std::string SvgPage::Finish() const
{
    return mSvg + "</svg>\n";
}

} // namespace heat
