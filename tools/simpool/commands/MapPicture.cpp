#include "MapPicture.h"

#include "EscapedText.h"
#include "SvgText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace simpool {
namespace {

// All in pixels.
constexpr double kMargin = 24;
constexpr double kBarWidth = 1100;
constexpr double kBarHeight = 64;
constexpr double kLabels = 92; // beside the rows
constexpr double kRowHeight = 26;
constexpr double kRowGap = 10;
constexpr double kWidth = kMargin + kLabels + kBarWidth + kMargin;
constexpr double kLeast = 1.5; // what is narrower stands together with its neighbours

constexpr std::size_t kPoolsInOneRow = 16;
constexpr std::size_t kMostRows = 40;

constexpr const char* kStyle = R"(.header { fill: #c8553d }
.directory { fill: #e3ae3f }
.data { fill: #6f9fd6 }
.data.odd { fill: #94bbe6 }
.hole { fill: url(#hole) }
.lost { fill: url(#lost) }
.frame { fill: none; stroke: #98a4b5 }
.tick { stroke: #98a4b5 }
.label { text-anchor: end }
.middle { text-anchor: middle }
.inside { text-anchor: middle; fill: #14263d; pointer-events: none }
svg rect[class]:hover { opacity: 0.75 }
)";

constexpr const char* kPatterns =
    R"svg(<defs>
<pattern id="hole" width="6" height="6" patternUnits="userSpaceOnUse" patternTransform="rotate(45)">
<rect width="6" height="6" fill="#f4f6f9"/><rect width="1.5" height="6" fill="#b9c4d3"/></pattern>
<pattern id="lost" width="6" height="6" patternUnits="userSpaceOnUse" patternTransform="rotate(45)">
<rect width="6" height="6" fill="#4a4f59"/><rect width="2" height="6" fill="#7d8490"/></pattern>
</defs>
)svg";

// A bar on the page and the bytes that it shows.
struct Bar
{
    double x;
    double y;
    double width; // of all the bytes
    double height;
    std::uint64_t begin;
    std::uint64_t end;
    double scale; // pixels for a byte

    [[nodiscard]] double X(std::uint64_t byte) const
    {
        return x + static_cast<double>(byte - begin) * scale;
    }
};

class Picture
{
public:
    Picture(const LoadedFile& file, const std::vector<Stretch>& stretches)
        : mFile(file), mStretches(stretches), mSize(file.bytes.Size())
    {}

    std::string Draw()
    {
        double y = 108;
        const double scale = mSize == 0 ? 0 : (kBarWidth + kLabels) / static_cast<double>(mSize);
        DrawBar({kMargin, y, kBarWidth + kLabels, kBarHeight, 0, mSize, scale}, true);
        DrawAxis(y + kBarHeight);
        y += kBarHeight + 44;
        if (mFile.Pools().size() > kPoolsInOneRow) {
            y = DrawRows(y);
        }
        std::string body = std::move(mSvg);
        mSvg = SvgBeginning(kWidth, y, kStyle) + kPatterns;
        DrawHead();
        return mSvg + body + "</svg>\n";
    }

private:
    template <class... Values>
    void Add(fmt::format_string<Values...> format, Values&&... values)
    {
        fmt::format_to(std::back_inserter(mSvg), format, std::forward<Values>(values)...);
    }

    void DrawHead()
    {
        Add(R"(<text class="title" x="{0:g}" y="36">{1}</text>
<text class="note" x="{0:g}" y="56">{2}, {3}</text>
)",
            kMargin, XmlText(ShortName(mFile.name)), Counted(mFile.Pools().size(), "pool"),
            FullSize(mSize));
        const auto sums = SumByKind(mStretches);
        double x = kMargin;
        for (std::size_t i = 0; i < kStretchKinds; ++i) {
            if (sums[i] == 0) {
                continue;
            }
            const double percent = 100 * static_cast<double>(sums[i]) / static_cast<double>(mSize);
            const std::string text = fmt::format(
                "{} {} ({}{:.1f} %)", NameOf(static_cast<StretchKind>(i)), HumanSize(sums[i]),
                percent < 0.1 ? "below " : "", std::max(percent, 0.1));
            Add(R"(<rect class="{}" x="{:g}" y="70" width="12" height="12" rx="2"/>)"
                R"(<text x="{:g}" y="80">{}</text>)"
                "\n",
                NameOf(static_cast<StretchKind>(i)), x, x + 18, text);
            x += 44 + 6.6 * static_cast<double>(text.size());
        }
    }

    // Five positions below the bar of the whole file.
    void DrawAxis(double y)
    {
        constexpr std::uint64_t kSteps = 4;
        for (std::uint64_t i = 0; i <= kSteps; ++i) {
            const double x = kMargin + (kBarWidth + kLabels) * static_cast<double>(i) / kSteps;
            const std::uint64_t byte = i == kSteps ? mSize : mSize / kSteps * i;
            const char* anchor = i == 0 ? "" : i == kSteps ? " label" : " middle";
            Add(R"(<path class="tick" d="M{0:g} {1:g} v5"/>)"
                R"(<text class="note{2}" x="{0:g}" y="{3:g}">{4}</text>)"
                "\n",
                x, y, anchor, y + 18, HumanSize(byte));
        }
    }

    double DrawRows(double y)
    {
        const std::size_t wanted = (mFile.Pools().size() + kPoolsInOneRow - 1) / kPoolsInOneRow;
        const std::size_t rows = std::min(wanted, kMostRows);
        const std::uint64_t bytesInRow = (mSize + rows - 1) / rows;
        Add(R"(<text class="note" x="{:g}" y="{:g}">The same in rows of {}:</text>)"
            "\n",
            kMargin, y, FullSize(bytesInRow));
        y += 14;
        for (std::uint64_t begin = 0; begin < mSize; begin += bytesInRow) {
            const std::uint64_t end = std::min(mSize, begin + bytesInRow);
            const double scale = kBarWidth / static_cast<double>(bytesInRow);
            Add(R"(<text class="note label" x="{:g}" y="{:g}">{}</text>)"
                "\n",
                kMargin + kLabels - 10, y + kRowHeight / 2 + 4, HumanSize(begin));
            DrawBar({kMargin + kLabels, y, static_cast<double>(end - begin) * scale, kRowHeight,
                     begin, end, scale},
                    false);
            y += kRowHeight + kRowGap;
        }
        return y + kMargin - kRowGap;
    }

    // Draws what is wide enough at once, and what is not in groups on top of it.
    void DrawBar(const Bar& bar, bool hasNumbers)
    {
        std::vector<Stretch> small;
        std::string groups;
        const auto endGroup = [&] {
            groups += Group(bar, small);
            small.clear();
        };
        const auto first = std::ranges::upper_bound(mStretches, bar.begin, {}, &Stretch::end);
        for (auto it = first; it != mStretches.end() && it->begin < bar.end; ++it) {
            Stretch stretch = *it;
            stretch.begin = std::max(stretch.begin, bar.begin);
            stretch.end = std::min(stretch.end, bar.end);
            if (bar.X(stretch.end) - bar.X(stretch.begin) >= kLeast) {
                endGroup();
                DrawStretch(bar, stretch, hasNumbers);
                continue;
            }
            small.push_back(stretch);
            if (bar.X(small.back().end) - bar.X(small.front().begin) >= kLeast) {
                endGroup();
            }
        }
        endGroup();
        Add("{}", groups);
        Add(R"(<rect x="{:g}" y="{:g}" width="{:g}" height="{:g}" fill="none" stroke="#98a4b5"/>)"
            "\n",
            bar.x, bar.y, bar.width, bar.height);
    }

    void DrawStretch(const Bar& bar, const Stretch& stretch, bool hasNumbers)
    {
        const double x = bar.X(stretch.begin);
        const double width = bar.X(stretch.end) - x;
        const bool isOdd = stretch.kind == StretchKind::Data && stretch.pool % 2 == 1;
        Add(R"(<rect class="{}{}" x="{:.2f}" y="{:g}" width="{:.2f}" height="{:g}">)"
            "<title>{}</title></rect>\n",
            NameOf(stretch.kind), isOdd ? " odd" : "", x, bar.y, width, bar.height, Title(stretch));
        constexpr double kRoomForNumber = 34;
        constexpr double kRoomForName = 70;
        const bool isData = stretch.kind == StretchKind::Data || stretch.kind == StretchKind::Hole;
        if (hasNumbers && isData && width >= kRoomForNumber) {
            Add(R"(<text class="inside" x="{:.2f}" y="{:g}">{}{}</text>)"
                "\n",
                x + width / 2, bar.y + bar.height / 2 + 4, width >= kRoomForName ? "pool " : "",
                stretch.pool);
        }
    }

    [[nodiscard]] std::string Title(const Stretch& stretch) const
    {
        const std::string where = fmt::format("bytes {} to {}, {}", Grouped(stretch.begin),
                                              Grouped(stretch.end - 1), FullSize(stretch.Length()));
        if (stretch.kind == StretchKind::Lost) {
            return "lost: " + where;
        }
        return XmlText(fmt::format("pool {} ({}), {}: {}", stretch.pool,
                                   UuidText(mFile.Pools()[stretch.pool].uuid), NameOf(stretch.kind),
                                   where));
    }

    // A column for neighbours that are too narrow, each kind as high as its share of their bytes.
    [[nodiscard]] static std::string Group(const Bar& bar, const std::vector<Stretch>& members)
    {
        if (members.empty()) {
            return {};
        }
        const std::uint64_t begin = members.front().begin;
        const std::uint64_t end = members.back().end;
        const double x = std::min(bar.X(begin), bar.x + bar.width - kLeast);
        const double width = std::max(bar.X(end) - x, kLeast);
        const auto sums = SumByKind(members);
        const std::string title =
            fmt::format("pools {} to {}: bytes {} to {}", members.front().pool, members.back().pool,
                        Grouped(begin), Grouped(end - 1));
        std::string svg;
        double y = bar.y;
        for (std::size_t i = 0; i < kStretchKinds; ++i) {
            const double share = static_cast<double>(sums[i]) / static_cast<double>(end - begin);
            if (sums[i] > 0) {
                svg += fmt::format(
                    R"(<rect class="{}" x="{:.2f}" y="{:.2f}" width="{:.2f}" height="{:.2f}">)"
                    "<title>{}, {}: {}</title></rect>\n",
                    NameOf(static_cast<StretchKind>(i)), x, y, width, share * bar.height, title,
                    NameOf(static_cast<StretchKind>(i)), FullSize(sums[i]));
            }
            y += share * bar.height;
        }
        return svg;
    }

    const LoadedFile& mFile;
    const std::vector<Stretch>& mStretches;
    std::uint64_t mSize;
    std::string mSvg = {};
};
} // namespace

std::string DrawMap(const LoadedFile& file, const std::vector<Stretch>& stretches)
{
    return Picture(file, stretches).Draw();
}
} // namespace simpool
