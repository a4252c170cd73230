// The answer to the font dialog: a JSON object with name, size, bold, italic, underline, strikethrough and
// color, each of which may be missing.
#pragma once

#include <string>

#include "core/ask_font.h"

// False where the text is no such answer; `font` is then as it was.
bool FontFromText(const std::string& text, FontChoice& font);
