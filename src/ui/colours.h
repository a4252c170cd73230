// The logic's colours on the screen.
#pragma once

#include <QColor>
#include <cstdint>

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::ui {

// Text on the logic's own colours is dark, whatever the palette; dark enough for a red ground.
inline constexpr QRgb kDarkText = 0xFF101010;

inline QColor ColourOf(std::int32_t rgb) {
    return {rgb & 0xFF, (rgb >> 8) & 0xFF, (rgb >> 16) & 0xFF};
}

// White is the ground of fields and tables, which a dark palette has as a dark one.
inline bool IsDesktopGround(std::int32_t rgb) {
    return rgb == kSystemColour || rgb == 0xFFFFFF;
}

}  // namespace corvinade::ui
