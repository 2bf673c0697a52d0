#pragma once

#include "Output.h"

#include <optional>
#include <string>
#include <vector>

namespace simpool {

/// Rows of text in columns as wide as their longest entry, for people.
class TextTable
{
public:
    enum class Align
    {
        Left,
        Right
    };
    struct Column
    {
        std::string title;
        Align align = Align::Left;
    };

    explicit TextTable(std::vector<Column> columns);

    /// `cells`, one for each column, are already Escaped; the whole row is painted in `colour`.
    void AddRow(std::vector<std::string> cells, std::optional<Colour> colour = {});

    /// The titles and all rows, each line indented by two spaces and without spaces at its end.
    void Print(Output& out) const;

private:
    struct Row
    {
        std::vector<std::string> cells;
        std::optional<Colour> colour;
    };
    [[nodiscard]] std::string Line(const std::vector<std::string>& cells) const;

    std::vector<Column> mColumns;
    std::vector<std::size_t> mWidths = {};
    std::vector<Row> mRows = {};
};
} // namespace simpool
