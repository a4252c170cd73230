// A surface that writes what is drawn on it as SVG.
#pragma once

#include <string>

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::paint {

// For the hook FillSurface (graphics/screen_window.h).
void FillSurfaceWithSvg(Surface& screen);

// The window as an SVG document of its inner size, with its labels. Require: its surface was filled by the
// procedure above, and no other window has been painted since, for small points are taken from the scene.
//   title    what readers without eyes are told
//   inPage   for a place inside a page, which needs no name space
std::string SvgOfWindow(const ScreenWindow& window, const std::string& title, bool inPage);

}  // namespace corvinade::paint
