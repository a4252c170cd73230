// Filled discs, drawn once for each radius and then copied: clouds of big points are drawn at every move of
// a rotation.
#pragma once

#include <cstdint>
#include <vector>

#include "core/rooms.h"
#include "graphics/surface.h"

namespace corvinade::paint {

// What a disc covers, pixels of the device, row by row from `Top`; every row from its own `First`.
struct DiscRow {
    int First = 0;                       // of the pixels that are covered at all, from the middle
    std::vector<std::uint8_t> Strength;  // 0 to 255
    int SolidFirst = 0, SolidEnd = 0;    // within Strength: those that are covered whole
};
struct DiscStamp {
    int Top = 0;  // from the middle
    std::vector<DiscRow> Rows;
};

inline constexpr double kLargestStamp = 64;  // radius, pixels of the device

// The disc with an outline one logical pixel wide, as the toolkit draws it. Require: radius <= kLargestStamp.
const DiscStamp& DiscStampOf(double radius, double scale);

// Puts it about the pixel (column, row), as far as that is in the picture.
void PutStamp(Surface& screen, const DiscStamp& stamp, int column, int row, std::uint32_t colour);

}  // namespace corvinade::paint
