// The vectors of a fit to distances: from each point to the place that it should have, or from the flange of
// the robot over its tool to the point.
#include <cstddef>

#include "core/job.h"
#include "core/settings.h"
#include "core/window.h"
#include "engine/transform.h"
#include "graphics/drawing.h"
#include "graphics/projection.h"
#include "graphics/scene.h"
#include "graphics/strokes.h"

namespace corvinade::graphics {

namespace {

PicturePoint PixelOfRow(std::size_t row) {
    return {Scene.PixelX[row], Scene.PixelY[row]};
}

// Without poses. A pair that no fit has given a second point has no vectors.
void DrawDistanceVectors(ScreenWindow& window, std::size_t row, int width) {
    if (row >= Job.RVecX.size() || row >= Job.RVecY.size() || row >= Job.RVecZ.size()) return;
    if (!Job.RVecX[row] || !Job.RVecY[row]) return;
    const PicturePoint pixel = PixelOfRow(row);
    const PicturePoint second = PlaceOf(window, {*Job.RVecX[row], *Job.RVecY[row], Job.RVecZ[row]});
    const double scale = window.State.Vec_Maßstab;
    DrawStroke(window.Screen, pixel,
               {pixel.X + scale * (second.X - pixel.X), pixel.Y + scale * (second.Y - pixel.Y)}, QbColor(13),
               width);
    DrawStroke(window.Screen, pixel, second, QbColor(13), width);
}

// With poses: the tool's length lies along the flange's own first axis.
void DrawToolVectors(ScreenWindow& window, std::size_t row, int width) {
    const int pose = static_cast<int>(row);
    Mat3 M;
    RotMatrixXYZ(-Job.RobotABC(pose, 1), -Job.RobotABC(pose, 2), -Job.RobotABC(pose, 3), M);
    const double length = -Job.Rvec_x;
    const Vec3 target = TargetPoint(pose);
    const PicturePoint flange = PlaceOf(
        window, {target(1) + M(1, 1) * length, target(2) + M(2, 1) * length, target(3) + M(3, 1) * length});
    const PicturePoint place = PlaceOf(window, target);
    DrawStroke(window.Screen, flange, place, QbColor(6), width);
    DrawStroke(window.Screen, place, PixelOfRow(row), QbColor(10), width);
}

}  // namespace

void DrawRVectors(ScreenWindow& window) {
    if (!IsTrue(Settings.ShowRVec) || Job.RDist == 0 || Job.ParamText[kRDist].empty()) return;
    const int width = IsTrue(Settings.VectorThick) ? window.State.BigNess : 1;
    const bool poses = Job.RobotABC.Rows >= Scene.Ident && Job.RobotABC.Columns >= 3;
    for (int i = 1; i <= Scene.Ident; ++i) {
        if (!IsSeen(i)) continue;
        const auto row = static_cast<std::size_t>(i);
        if (poses)
            DrawToolVectors(window, row, width);
        else
            DrawDistanceVectors(window, row, width);
    }
}

}  // namespace corvinade::graphics
