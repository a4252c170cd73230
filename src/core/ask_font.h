// The platform's font dialog, defined once for each face as all of platform.h.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

struct FontChoice {
    std::string Name;
    double Size = 8;  // points
    bool Bold = false, Italic = false, Underline = false, Strikethrough = false;
    std::int32_t Colour = 0;  // of the letters, RGB with red in the low byte
};

// Nothing when cancelled.
std::optional<FontChoice> AskFont(const FontChoice& preset);
