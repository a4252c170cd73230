// The cells of a table's rows, and those that are numbers.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/rooms.h"
#include "import/table_reader.h"

namespace corvinade::import {

// A cell of a row. Text is a view of the table's text: without the blanks beside it, and without its quotes.
struct TableCell {
    std::string_view Text;
    bool Quoted = false;   // quotes stood around it
    bool Doubled = false;  // two quotes inside stand for one
};

// A row: a line, or several where a quoted cell holds line ends.
struct TableRow {
    std::string_view Line;         // all of it
    std::int64_t Number = 0;       // of its first line, from 1
    std::int64_t Lines = 1;        // how many it has
    std::vector<TableCell> Cells;  // without empty ones at the end
    bool OpenQuote = false;        // a quote has no end: the cell is taken up to the end of its line
};

// Walks over the rows of a text. Reads of the form Gaps, Delimiter, CommasJoin and EdgeEmpty.
class TableWalk {
public:
    TableWalk(std::string_view text, const TableForm& form, std::size_t at = 0, std::int64_t line = 1)
        : text_(text), form_(form), at_(at), line_(line) {
        ends_[static_cast<unsigned char>('\n')] = ends_[static_cast<unsigned char>('\r')] = true;
        ends_[static_cast<unsigned char>(form.Delimiter)] = true;
    }
    // The next line as a row; false at the end of the text.
    bool Next(TableRow& row);
    std::size_t Place() const { return at_; }        // behind the row
    std::int64_t NextLine() const { return line_; }  // the line there

private:
    bool CutPlain(TableRow& row);

    std::string_view text_;
    const TableForm& form_;
    std::size_t at_;
    std::int64_t line_;
    std::array<bool, 256> ends_{};  // of a cell: the delimiter, or the end of its line
};

// What a quoted cell says.
std::string Unquoted(const TableCell& cell);

// A cell that is one number with this decimal delimiter: sign, digits, exponent. Beyond a 64-bit float there
// is none. The value is the nearest 64-bit float, that of a number too small for one is 0.
bool TableNumber(std::string_view cell, char decimal, double& value);
// The same where it has 1 to 15 digits and neither exponent nor plus sign, which most have. False for others.
bool PlainTableNumber(std::string_view cell, char decimal, double& value);

// How a cell that is no number is told of: " is not a number", and what helps where it has separators of
// thousands: groups of three digits behind commas, points, apostrophes or blanks.
std::string NoNumberText(std::string_view cell);

// A number with digits behind a delimiter of decimals, of either kind.
bool IsFraction(std::string_view cell, char decimal);

// Nothing but signs that draw a line, as "----+----" or "|---|---|".
bool IsRuled(std::string_view line);

// Does a line begin a comment? Behind blanks; of the form Comment and SlashesComment are read. `marks` gets
// the number of bytes in front of what the comment says.
bool IsComment(std::string_view line, const TableForm& form, std::size_t* marks = nullptr);

inline std::string_view TrimmedCell(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
    return text;
}

}  // namespace corvinade::import
