#include "TextTable.h"

#include <algorithm>

namespace simpool {
namespace {

// In characters: all bytes but those that go on with one.
std::size_t Width(const std::string& text)
{
    return static_cast<std::size_t>(std::ranges::count_if(
        text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}
} // namespace

TextTable::TextTable(std::vector<Column> columns) : mColumns(std::move(columns))
{
    for (const Column& column : mColumns) {
        mWidths.push_back(Width(column.title));
    }
}

void TextTable::AddRow(std::vector<std::string> cells, std::optional<Colour> colour)
{
    for (std::size_t i = 0; i < mColumns.size(); ++i) {
        mWidths[i] = std::max(mWidths[i], Width(cells[i]));
    }
    mRows.push_back({std::move(cells), colour});
}

std::string TextTable::Line(const std::vector<std::string>& cells) const
{
    std::string line;
    for (std::size_t i = 0; i < mColumns.size(); ++i) {
        const std::string padding(mWidths[i] - Width(cells[i]), ' ');
        line += "  ";
        line += mColumns[i].align == Align::Right ? padding + cells[i] : cells[i] + padding;
    }
    return line.substr(0, line.find_last_not_of(' ') + 1);
}

void TextTable::Print(Output& out) const
{
    std::vector<std::string> titles;
    for (const Column& column : mColumns) {
        titles.push_back(column.title);
    }
    out.Write(out.Paint(Colour::Dim, Line(titles)) + "\n");
    for (const Row& row : mRows) {
        const std::string line = Line(row.cells);
        out.Write((row.colour ? out.Paint(*row.colour, line) : line) + "\n");
    }
}
} // namespace simpool
