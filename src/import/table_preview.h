// What a user sees of a table before it is read: its first lines, cell by cell, and what of them cannot be
// read. Pure: text in, record out.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/rooms.h"
#include "import/table_reader.h"

namespace corvinade::import {

inline constexpr std::int64_t kPreviewLines = 200;
inline constexpr std::size_t kPreviewCells = 200;  // of a line; what stands behind them is not shown

struct PreviewLine {
    std::int64_t Number = 0;         // of the first of its lines, from 1
    bool IsPoint = false;            // else it is skipped, or a heading, a comment, or empty
    std::vector<std::string> Cells;  // UTF-8, on one line each
    std::vector<bool> Bad;           // of each cell: it is not what its column must hold; one more than cells
                                     // where a cell is missing behind them
};

struct TablePreview {
    TableForm Form;        // the likeliest one
    bool Found = false;    // false: there is no form with any row, and Form says nothing
    TableRefusal Refusal;  // of the form, as of a table that is read; rows have faults of their own
    std::vector<Note> Notes;
    std::vector<PreviewLine> Lines;
    std::size_t Columns = 0;  // as many as the longest line has, those beyond kPreviewCells not counted
};

// At most kPreviewLines lines, whatever `text` holds. `options.Columns` may lack x, y or z, which is then the
// refusal.
TablePreview PreviewTable(const TableText& text, const std::string& path, const TableOptions& options);

// Is it a file that the told reader of point files reads as it stands, in this unit and with the decimal
// delimiter of `options.PlainDecimal`? What the user has decided in `options` is of no account. Blank lines
// at the end are none of it.
bool IsPlainTable(std::string_view bytes, const std::string& path, const TableOptions& options);

// Does it look as if it were a table of points at all, to be read with the right choices? False for prose,
// pictures, robot programs.
bool LooksLikeTable(std::string_view bytes, const std::string& path, const TableOptions& options);

// The whole table with its bad rows counted, whatever `options.SkipBad` says: with one the points are those
// of the others, and `firstBad` tells of it.
TableResult CountTable(std::string_view bytes, const std::string& path, const TableOptions& options,
                       TableRefusal& firstBad);

// "the column y is missing"; "" where none is.
std::string MissingColumn(const std::vector<TableRole>& columns);

}  // namespace corvinade::import
