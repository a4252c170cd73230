// Pictures at a size and resolution of their own, as the bytes of a file.
#pragma once

#include <string>

#include "core/rooms.h"
#include "graphics/form_picture.h"

namespace corvinade::paint {

// Of a graphics window, a saved view or the trumpet plot. Throws PlatformError where that is there no more,
// or where there is no memory for it. Empty of a chart, which is a face's own.
std::string PictureFileOf(const PictureOrder& order, PictureFormat format);

// Puts the picture of a PNG file onto the clipboard; false where that is refused.
bool CopyPicture(const std::string& png);

}  // namespace corvinade::paint
