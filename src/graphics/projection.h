// From the job's world system (WeltKS, mm) to the picture (BildKS: pixels, with a depth). Orthographic.
//   x' = M p with M = RotMatrixXYZ(a, b, c); view = (x' + 200, 200 - y', -z'); pixels by BildFaktor and
//   offsets.
// The constant 200 stands in the offsets of all saved views.
#pragma once

#include "core/arrays.h"
#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

int PictureWidth(const ScreenWindow& window);  // logical pixels
int PictureHeight(const ScreenWindow& window);
Mat3 ViewRotation(const ScreenWindow& window);           // RotMatrixXYZ of row 1 of its RotAngles
double ViewAngle(const ScreenWindow& window, int axis);  // 1 to 3: a, b, c, rad
void SetViewAngles(ScreenWindow& window, double a, double b, double c);  // row 2 stays zero

// Fills ViewPoints, the window's ViewBox and ViewVectors from ScenePoints. An armed rotation centre is taken
// first (Scene.RotateAboutArmed). Vectors only with VectorMode or in the analyse mode.
void rechne_PixelCloud(ScreenWindow& window);
void Rechne_pixel(ScreenWindow& window);          // fills the pixel tables from ViewPoints and ViewVectors
void RechneCloudAndPixels(ScreenWindow& window);  // both of them in one pass, to the same numbers
// BildOffsetX, BildOffsetY so that the middle of ViewBox comes to the middle of the picture.
void CenterBox(ScreenWindow& window);
void Max_Min(ScreenWindow& window);  // fills ViewBox from ViewPoints; +-1e10 for an empty table

struct WorldBounds {
    double xmax, ymax, zmax, xmin, ymin, zmin;
};
WorldBounds MaxMinGlobalSys();  // over the start points of the job, mm; -+1e10 where there are none

// One point. `world` has had RotCenter taken off; the way back does not add it.
Vec3 WeltKS_to_BildKS(const ScreenWindow& window, const Vec3& world);
Vec3 BildKS_to_WeltKS(const ScreenWindow& window, double x, double y, double z);
// The two picture components of a turned vector.
struct PictureVector {
    double U, V;
};
PictureVector pkt_drehen(const ScreenWindow& window, double x, double y, double z);

}  // namespace corvinade::graphics
