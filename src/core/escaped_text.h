// Texts as they may stand in pages and in lines of cells.
#pragma once

#include <string>

#include "core/rooms.h"

namespace corvinade::core {

// Text as it may stand in HTML and SVG. Control characters and what is no character become "?".
std::string EscapeMarkup(const std::string& text);

// A text as a cell in a line with semicolons between: quoted where it has to be, as spreadsheets read it.
// What a spreadsheet would take for a formula (it begins with = + - or @ and is no number) has an apostrophe
// in front, which makes a text of it, and control characters are blanks; neither where it is to stay `raw`.
std::string CsvCell(const std::string& text, bool raw = false);

}  // namespace corvinade::core
