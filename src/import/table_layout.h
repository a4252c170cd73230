// One way to take a text as a table, tried on its first lines: where the rows begin, what their cells are,
// and how many of them can be read so.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/rooms.h"
#include "import/table_cells.h"
#include "import/table_heading.h"
#include "import/table_reader.h"

namespace corvinade::import {

// Which cell holds what; -1 = none does.
struct TablePlaces {
    std::array<int, kTableRoles> Of{};
    std::size_t Needed = 0;  // so many cells reach as far as all coordinates and sigmas
};
TablePlaces PlacesOf(const std::vector<TableRole>& columns);

// A row against its form: "" where it can be read, else why not. `column` is the cell, from 1, 0 = the row.
struct TableRowFault {
    std::string Text;
    std::int64_t Column = 0;
};
bool IsGoodRow(const TableRow& row, const TableForm& form, const TablePlaces& places, TableRowFault* fault);

// A comment, a ruled line, or one without anything.
bool IsNoRow(const TableRow& row, const TableForm& form);

struct TableTrial {
    TableForm Form;
    std::int64_t Good = 0, Bad = 0;  // of the rows tried
    std::string Wrong;               // of the heading: why this is refused though its rows can be read
    std::int64_t WrongLine = 0;
    std::int64_t UnknownHeading = 0;   // line of a heading that names nothing; 0 = there is none
    bool Fractions = false;            // some number shows the decimal delimiter
    bool ThousandsLike = true;         // all that do could have it between thousands: "1,234"
    bool Wholes = false;               // some number does not
    bool NamesWithBlank = false;       // some name holds a blank
    bool NamesAreNumbers = true;       // every name is a number,
    bool NamesAreCoordinates = false;  // and one of them has a fraction or is below 0
    bool NamesAreLong = false;         // some with more than two digits behind the delimiter
    bool NamesAreWords = true;         // no name holds a digit
    bool WholeThenFractions = true;    // every x is whole, and all that follows has a fraction
    bool CommasMayJoin = true;         // two cells of every row could be a number with decimal comma
    bool Thousands = true;             // commas of thousands would explain the cells of every row
};
// `trial.Form` says how cells are cut and the decimal delimiter; the rest is filled in. `at`, `line`: where
// the table begins.
void TryForm(std::string_view text, std::size_t at, std::int64_t line, const TableOptions& options,
             TableTrial& trial);

}  // namespace corvinade::import
