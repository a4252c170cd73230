// Any text table as points: finds out by itself how the file is written, reads it with that, and refuses with
// line, column and the text found what it cannot read for certain. Pure: bytes in, record out.
//
// How a table is read, from outside to inside:
//   bytes    -> lines     table_text.h     encoding, line ends
//   line     -> cells     table_cells.h    delimiter, quotes, blanks beside cells; cells that are numbers
//   heading  -> columns   table_heading.h  words that name columns, and their unit
//   all      -> form      FindTableForm    what of this the file itself shows
//   form     -> points    ReadTable
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/notes.h"
#include "core/point_set.h"
#include "core/rooms.h"
#include "import/table_text.h"

namespace corvinade::import {

// What a column holds.
enum class TableRole : std::uint8_t { Pass, Name, X, Y, Z, SX, SY, SZ, S };
inline constexpr std::size_t kTableRoles = 9;
// By the names of `--columns`: "-", "name", "x", "y", "z", "sx", "sy", "sz", "s".
const char* TableRoleName(TableRole role);
// "name,x,y,z" as roles. "", or what is wrong with it: an unknown word, one that comes twice, x, y or z
// missing.
std::string TakeTableColumns(std::string_view text, std::vector<TableRole>& columns);
std::string TableColumnsText(const std::vector<TableRole>& columns);

// What stands between the cells of a row.
enum class TableGaps : std::uint8_t {
    Delimiter,  // one character; blanks beside a cell are none of it
    Blanks,     // one or more blanks and tabs
    Aligned,    // two or more blanks, or a tab: a single blank belongs to its cell
};

// How far the reading of a table has come.
struct TableProgress {
    double Share = 0;       // of the text, 0 to 1
    std::int64_t Good = 0;  // rows that are points
    std::int64_t Bad = 0;   // rows passed over as bad
};

// What the user has decided; the rest is found.
struct TableOptions {
    std::vector<TableRole> Columns;      // of the first cells of each row; empty = found
    std::int64_t Skip = 0;               // so many lines at the beginning are none of the table
    std::optional<std::string> Comment;  // a line that begins with one of these characters is a comment
    char Delimiter = '\0';               // ' ' = blanks, aligned columns too; 0 = found
    char Decimal = '\0';                 // '.' or ','; 0 = found
    std::string Unit;                    // name of table_heading.h; "" = that of the heading, else UsualUnit
    std::string UsualUnit = "mm";
    std::optional<TableEncoding> Encoding;
    bool SkipBad = false;      // rows that cannot be read are passed over and counted
    bool DoubleNames = false;  // two points may bear the same name, which a note says
    bool FirstIsX = false;    // rows without heading that begin with a number are x y z and more (.xyz, .pts)
    bool KeepRest = false;    // TableResult.Rest is wanted
    char PlainDecimal = '.';  // that of the told reader: TableResult.Plain is for it
    // Told every few thousand rows; false ends the reading, without points. Unset = nobody is.
    std::function<bool(const TableProgress&)> GoesOn;
};

// How a table is written.
struct TableForm {
    TableEncoding Encoding = TableEncoding::Utf8;
    TableGaps Gaps = TableGaps::Delimiter;
    char Delimiter = ';';  // ' ' where blanks delimit, one or more
    char Decimal = '.';
    bool DecimalShown = false;  // one of the first rows shows it
    bool CommasJoin = false;    // the comma is both: two cells make a number, but for the first of an odd row
    bool EdgeEmpty = false;     // rows begin with a delimiter that has nothing in front ("| A | 1 | 2 | 3 |")
    std::string Comment;        // first characters of comments; "//" is one too where `SlashesComment`
    bool SlashesComment = true;
    int HeadingLines = 0;               // in front of the first row, comments only where one is the heading
    std::int64_t HeadingLine = 0;       // the line that names the columns; 0 = there is none
    std::vector<TableRole> Columns;     // as far as the rows reach
    std::vector<std::string> Headings;  // words of the heading, as many as it has; empty = there is none
    std::string Unit;                   // of lengths, "mm", "m", "in", "ft", "cm", "km"
    std::size_t FirstRow = 0;           // place of the first row in the text
    std::int64_t FirstLine = 1;         // its line, from 1
    std::size_t Cells = 0;              // in the first row, without empty ones at its end
    bool MoreNumbers = false;           // numbers stand behind the last cell that is read, in the first row
    bool HasName = false;               // else the name is the number of the point
};

// Why a table cannot be read.
struct TableRefusal {
    std::string Text;         // "Cannot read "a.csv", line 7, column 3: ..."; "" = it was read
    std::int64_t Line = 0;    // from 1; 0 = of the whole file
    std::int64_t Column = 0;  // number of the cell, from 1; 0 = of the whole line
    bool TwoWays = false;     // the commas can be delimiters alone, or decimal delimiters too
    bool Thousands = false;   // its commas look like those of thousands
    bool Refused() const { return !Text.empty(); }
};

struct TableResult {
    PointSet Points;  // mm; without any where it was refused
    std::vector<double> SX, SY,
        SZ;  // sigmas in mm, element 0 unused; empty = there are none. `s` is all three
    std::vector<std::string> Rest;  // cells without role of each point, a tab between; element 0 unused
    TableForm Form;
    bool Plain = false;        // the told reader of point files reads the same
    std::int64_t Skipped = 0;  // rows passed over as bad
    bool Cancelled = false;    // TableOptions.GoesOn has ended it
    TableRefusal Refusal;
    std::vector<Note> Notes;  // in order, to be added to the list
};

// Reads a table. `path` is for messages. The text may hold anything.
//   Refused are, with line and column: a coordinate or sigma that is no number or has no value, cells too
//   many, a name that is missing or stands twice (in a plain file that is left to the pairing by names, which
//   says it in words of its own), a sigma below 0; and as a whole: a text without rows of
//   three numbers, one that can be read in two ways, a heading that names only some of x, y and z.
TableResult ReadTable(std::string_view bytes, const std::string& path, const TableOptions& options);

// The form alone. `text` is TableText::Text of the file. False with the refusal; the form is the likeliest
// one then, where there is any that has rows (`form.Cells` is not 0).
bool FindTableForm(const TableText& text, const std::string& path, const TableOptions& options,
                   TableForm& form, TableRefusal& refusal, std::vector<Note>& notes);

}  // namespace corvinade::import
