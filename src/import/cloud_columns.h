// How a text cloud writes its points: what stands between its fields, and which of them are which.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/rooms.h"
#include "import/cloud.h"
#include "import/cloud_rows.h"

namespace corvinade::import {

struct CloudHeading {
    std::vector<PointColumn> Columns;
    std::string Unit;  // of its coordinates: "mm", "cm", "m", "km", "in", "ft"; "" = it says none
    bool HasZ = true;
    std::string Wrong;  // its columns have different units: which; else ""
};

// What the words of a heading say, comment characters in front passed over. Nothing where they do not name x,
// y and z (of a map's points source and map coordinates).
std::optional<CloudHeading> HeadingOf(std::string_view line, char delimiter);

bool IsCommentLine(std::string_view line);

// Units per millimetre of one of the units above, and of "ftUS"; 1 for any other.
double UnitsPerMm(const std::string& unit);
// As many decimals of a unit as three are of a millimetre.
int DecimalsOfUnit(double unitsPerMm);

struct FoundForm {
    RowForm Form;
    std::string Unit;
    std::int64_t HeadingLine = 0;  // the line that names the columns, from 1; 0 = there is none
    std::vector<Note> Notes;       // what was decided for the user
    bool DecimalShown = true;      // else Form.Decimal is any
};

// What a word of a heading names, in small letters; None for any other.
PointColumn ColumnByWord(std::string_view word);

// Finds it in the first lines of a file, which are in view. Throws PlatformError where no row holds three
// numbers, and where more than one way of reading is as good. Of files that are tables the reader of tables
// has the last word, so that all commands read a file alike.
FoundForm FindForm(const CloudTask& task, CloudKind kind, std::string_view head, bool isWhole);

}  // namespace corvinade::import
