// Strokes of the layers: lines and places in doubles, as their formulas have them.
#pragma once

#include <cmath>

#include "core/rooms.h"
#include "graphics/projection.h"
#include "graphics/scene.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

struct PicturePoint {
    double X = 0, Y = 0;  // logical pixels
};

inline constexpr double kFarthestPixel = 1e30;  // beyond it a place is no place

inline bool IsPlace(const PicturePoint& point) {
    return std::abs(point.X) <= kFarthestPixel && std::abs(point.Y) <= kFarthestPixel;
}

// Nothing where one of the ends is no place.
inline void DrawStroke(Surface& screen, const PicturePoint& from, const PicturePoint& to, Colour colour,
                       int width) {
    if (screen.Line == nullptr || !IsPlace(from) || !IsPlace(to)) return;
    screen.Line(screen, static_cast<float>(from.X), static_cast<float>(from.Y), static_cast<float>(to.X),
                static_cast<float>(to.Y), colour, width);
}

// Where a point of the world lies in the picture.
inline PicturePoint PlaceOf(const ScreenWindow& window, const Vec3& world) {
    const Vec3& center = Scene.RotCenter;
    const Vec3 pixel =
        WeltKS_to_BildKS(window, {world(1) - center(1), world(2) - center(2), world(3) - center(3)});
    return {pixel(1), pixel(2)};
}

// To the nearest whole number, halves to the even one.
inline double Round(double value) {
    return std::nearbyint(value);
}

}  // namespace corvinade::graphics
