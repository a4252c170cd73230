// Texts in the columns of a terminal.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/rooms.h"

namespace corvinade::cli {

// Columns that a terminal gives to a UTF-8 text: combining characters take none, the wide characters of
// East Asian scripts and pictograms two.
int DisplayWidth(std::string_view text);

// A text of unknown content as it can stand in a table: control characters as "?", and a text wider than
// `most` columns cut, with "..." at its end.
std::string ForTable(std::string_view text, int most);

// Rows of cells in columns: the first column left-aligned, the others right-aligned. Each is as wide as
// its widest cell, no less than its entry of `Widths` at first, and two blanks stand between them.
struct TextColumns {
    std::vector<int> Widths;

    void MakeRoom(const std::vector<std::string>& cells);  // for every row, before the first Line
    std::string Line(const std::vector<std::string>& cells) const;
    void Append(const std::vector<std::string>& cells, std::string& text) const;  // the same line to a text
};

// Names and paths longer than this are cut: a table is to be read, and the other outputs hold them whole.
inline constexpr int kLongestName = 40;
inline constexpr int kLongestPath = 200;

// The label of a line above a table, up to where its text begins.
std::string HeadLabel(const std::string& text);

}  // namespace corvinade::cli
