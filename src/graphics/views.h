// Fit, fixed views, zoom, length of the vectors.
#pragma once

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

// Fits the cloud to nine tenths of the picture; no repaint. Where there is no point the view stays.
void Anpassen(ScreenWindow& window);
void GrafikAnpassen(ScreenWindow& window);  // the same, painted and stored
void Center(ScreenWindow& window);  // brings the view's coordinate origin to the middle; BildFaktor stays
inline constexpr double kTopViewAngle = -3.14159265358979;  // a of the top view, with which a window begins
void TopView(ScreenWindow& window);
void SideView(ScreenWindow& window);
void FrontView(ScreenWindow& window);
void IsoView(ScreenWindow& window);
inline constexpr double kZoomStep = 0.7;
void ZoomIn(ScreenWindow& window);  // about the mouse after a step of the wheel, else about the middle
void ZoomOut(ScreenWindow& window);
// BildFaktor becomes `factor`, the picture point (x, y) stays where it is; no repaint.
void ZoomAbout(ScreenWindow& window, float x, float y, double factor);
// The point of a scene row comes to the middle, from near: eight times as large as all points fit. Painted
// and stored. Require: the row exists.
void ZoomToRow(ScreenWindow& window, int row);
void Vec_Maßstab_longer(ScreenWindow& window);
void Vec_Maßstab_shorter(ScreenWindow& window);
float LargestDeviationForLimits();                   // the same; on the desktop of the pairs in use
float LargestDeviation();                            // of column 4 of ScenePoints, from 0, mm
float StartVec_Maßstab(const ScreenWindow& window);  // 400 without a result or without a box of any size

}  // namespace corvinade::graphics
