// The surface of the graphics windows as an image in memory: lines and circles by QPainter, points written
// straight into it. Desktop, command line and tests use the same. The images themselves: paint/image.h.
#pragma once

#include <string>

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::paint {

// For the hook FillSurface (graphics/screen_window.h). `screen` has Width and Height, and its Scale where a
// logical pixel is not one of the device. At Scale 1 all is drawn in whole pixels without antialiasing.
void FillSurfaceWithPicture(Surface& screen);

// Sizes of texts in a font, logical pixels.
double FontTextWidth(const TextFont& font, const std::string& text);
double FontTextHeight(const TextFont& font);  // of a line

// The window as a user sees it, with all labels, as the bytes of a PNG file; empty where the window keeps no
// picture.
std::string PictureBytes(const ScreenWindow& window);

// A surface that FillSurfaceWithPicture has filled, without labels; the PNG file bears the title.
std::string PictureBytes(const Surface& screen, const std::string& title);

// The same as PictureBytes of a window, into a file. False where the window keeps no picture. Throws
// PlatformError as WriteFile.
bool WritePicture(const ScreenWindow& window, const std::string& path);

}  // namespace corvinade::paint
