// Words of a table's heading: which column they name, and in which unit.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/rooms.h"
#include "import/table_reader.h"

namespace corvinade::import {

// The millimetres of a length: value / Divisor * Times, of which one is 1. The four units that the program
// shows are divided by their factor, as the told reader does, so that the last bits are the same.
struct TableUnit {
    const char* Name;  // "mm", "m", "in", "ft", "cm", "km"
    double Divisor, Times;
};
// By its name or another spelling ("inch", "meters"), whatever the case; null for another word.
const TableUnit* TableUnitByWord(std::string_view word);
inline double Millimetres(double value, const TableUnit& unit) {
    return unit.Times == 1 ? value / unit.Divisor : value * unit.Times;
}

// What the cells of a heading name.
struct TableHeading {
    std::vector<TableRole> Columns;  // one of each cell
    std::string Unit;                // of x, y and z; "" = it says none
    std::string Wrong;      // why it cannot be taken: it names x twice, or units that differ; else ""
    int Axes = 0;           // how many of x, y and z it names
    bool Mentions = false;  // some cell has x, y, z or the like among other words
};
// `ownUnit`: the user has said the unit, so those of the heading are not looked at.
TableHeading HeadingOf(const std::vector<std::string>& cells, bool ownUnit);

// The row of units below a heading: every cell with text is a unit, in brackets or not. False for another
// row.
bool UnitsOfRow(const std::vector<std::string>& cells, const std::vector<TableRole>& columns,
                TableHeading& heading);

// A heading between blanks: a word in brackets belongs to the one before it.
std::vector<std::string> WithBrackets(const std::vector<std::string>& words);

}  // namespace corvinade::import
