// The font of a text in a picture.
#pragma once

#include <string>

#include "core/rooms.h"

namespace corvinade::core {

inline constexpr float kLeastFontSize = 1, kLargestFontSize = 200;  // points

struct TextFont {
    std::string Name;  // family; empty = the one that pictures have by themselves
    float Size = 9;    // points, 4/3 logical pixels each
    bool Bold = false, Italic = false, Underline = false, Strikethrough = false;
    bool operator==(const TextFont&) const = default;
};

}  // namespace corvinade::core
