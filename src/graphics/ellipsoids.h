// The layer of the ellipsoids of the transformed points: where the true place is with the confidence of the
// statistics, enlarged by a factor of their own.
#pragma once

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

// As in the settings file, section GraphicsSettings, "ShowEllipsoids" and "EllipsoidFactor"; what is not
// there is off.
struct EllipsoidsRecord {
    bool Read = false;  // from the settings file
    bool Show = false;
    double Factor = 1000;
};
inline EllipsoidsRecord Ellipsoids;

inline constexpr double kLargestEllipsoidFactor = 1e9;

const EllipsoidsRecord& EllipsoidSettings();  // read once
// Takes and stores them. Require: the factor is above 0, up to kLargestEllipsoidFactor.
void StoreEllipsoidSettings(bool show, double factor);

// The outline and the three axes of each transformed start point that is seen. Nothing while they are off,
// and without statistics.
void DrawEllipsoids(ScreenWindow& window);

}  // namespace corvinade::graphics
