// The black planes of a graphics window: two parallel planes, fixed in the world at the moment of their
// setting, between which alone points are seen.
//
// They are kept as a box in the picture as it stood then (the frame: rotation, factor, offsets), with the
// depth of the first plane and the distance to the second one in pixels of that picture. The normal points
// from the second plane to the first. A point on the first plane is seen, one on the second is not.
#pragma once

#include <array>

#include "core/arrays.h"
#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

inline constexpr double kFirstSlab = 100;  // thickness at the setting, pixels of the frame

// Takes the present view of the window as the frame of its planes and turns them on; `active` false turns
// them off instead and forgets the frame. `borders`: the frame is drawn. Draws it into the picture as it is.
// The depth of the first plane stays as it was.
void Initialisieren_BlackPlane(ScreenWindow& window, bool active, bool borders);

// Draws the frame into the picture where BlackPlaneBorders is on and a frame has been set: twelve edges,
// black on a light background and light grey on a dark one.
void Zeichne_Black_Plane(ScreenWindow& window);

// Column 16 of the scene's table, for this window: 1 where the point is seen, 0 where a plane hides it. The
// table is that of all windows, so whoever paints or picks asks for it. It is worked out in the world and not
// from the pixels: a turn of the picture neither changes it nor costs anything.
void SetInside(const ScreenWindow& window);

// Moves a plane as the mouse goes by (dx, dy), last place minus present place in pixels. Nothing happens
// while the planes are off.
void MoveTopPlane(ScreenWindow& window, double dx, double dy);
void ThickenSlab(ScreenWindow& window, double dx, double dy);  // stops at 0

// The planes in the present picture, pixels with a depth.
struct BlackPlanes {
    Vec3 Normal;                  // unit; (0, 0, 0) for a frame that spans no plane
    Vec3 First, Second;           // a point on each
    std::array<Vec3, 8> Corners;  // bit 0: right, bit 1: lower edge of the picture, bit 2: second plane
};
BlackPlanes PlanesOf(const ScreenWindow& window);

// Can this frame hide anything? False where none has been set, or one that is no frame stands in a file.
bool HasPlaneFrame(const ScreenRecord& view);

// A frame counts from the centre of rotation. When that goes to another place, the planes stay where they are
// in the world; mm.
void KeepPlanesInWorld(ScreenRecord& view, const Vec3& before, const Vec3& after);

}  // namespace corvinade::graphics
