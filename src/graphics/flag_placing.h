// The places of many flags at once.
#pragma once

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

enum class FlagPlacement : std::uint8_t {
    None,
    Close,   // on the point
    Radial,  // away from the middle of the points
    Border,  // where the ray from that middle through the point meets the picture's edge
    Side     // stacked along the nearest side of the picture
};

struct FlagPlacing {
    FlagPlacement Placement = FlagPlacement::None;
    double Factor = 1;    // of the distance from the middle, radial
    bool OnGrid = true;   // every flag in a cell; off: only those move whose cell is taken
    bool PutAll = false;  // every shown row gets a flag
    int Every = 1;        // of these rows only each n-th one
};

// Gives rows their flags where that is asked for, places all flags whose points are shown and repaints. Shows
// a message where the picture is full; the flags placed so far stay, and so do those that were there before.
void FlagPutAll(ScreenWindow& window, const FlagPlacing& placing);

}  // namespace corvinade::graphics
