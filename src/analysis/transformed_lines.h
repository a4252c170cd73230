// The lines of a point file, transformed: a line of name, tab, X, tab, Y, tab, Z for each of them.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "core/rooms.h"
#include "import/point_text.h"
#include "import/row_notes.h"

namespace corvinade::analysis {

// How a file writes its points.
struct LineForm {
    char Delimiter = '\0';  // 0: blanks and tabs alone
    bool HasName = true;    // lines begin with a name; otherwise their number is it
};

struct LineCounts {
    std::int64_t Lines = 0;
    std::int64_t WithoutNumbers = 0;  // lines whose three fields are not all numbers
    std::int64_t FirstWithout = 0;    // the first of them, from 1; 0 = none
    std::int64_t Refused = 0;         // the line with a coordinate larger than any number, from 1; 0 = none
    std::int64_t MoreFields = 0;      // lines of the short road with further fields, which are passed over
    std::int64_t FirstMore = 0;       // the first of them, from 1; 0 = none
};

struct LineWork {
    std::function<void(std::string_view bytes)> Write;  // takes the lines, many at a time
    std::function<bool(double share)> GoOn;             // asked now and then; false ends the work
    bool PlainOnly = false;                             // every line takes the general road
    RowNotes* Rows =
        nullptr;  // looks at fields that are no numbers, and at lines that hold more than their fields
};

// Carries every line's point through the transformation of the job: three fields by their plain value,
// divided by Units.LengthFactor, and back by Units.FmtLength. A line that holds no point reads as zeros, as
// far as its fields are no numbers. On a system with decimal comma a field is brought to the point before it
// is read. Lines end in CR LF.
//
// Lines as measuring systems write them take a short road, whose bytes are the same: a number of up to 15
// digits is a whole number over a power of ten, which one division rounds correctly; and a value whose
// distance from the middle between two shown ones is larger than all roundings of the general formatter is
// a whole number of its last place.
//   Reads Job, Units. False when GoOn has ended it. Throws PlatformError, with the line and the coordinate,
//   where
// one is larger than any number, before or behind the transformation; what has been handed on is of no use
// then.
bool TransformLines(const PointText& file, const LineForm& form, const LineWork& work, LineCounts& counts);

}  // namespace corvinade::analysis
