// The scene: one table of the points to be plotted, and the tables of their places in picture and pixels.
// All of them are shared by the graphics windows and hold the view of the one that computed last.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "core/arrays.h"
#include "core/rooms.h"

namespace corvinade::graphics {

struct ScreenWindow;

// Columns of ScenePoints.
enum SceneColumn : int {
    kSceneX = 1,
    kSceneY,
    kSceneZ,           // mm
    kSceneSize = 4,    // deviation that colours the point, mm
    kSceneClass = 5,   // tolerance class
    kSceneColour = 6,  // RGB, red in the low byte
    kSceneVecX = 8,
    kSceneVecY,
    kSceneVecZ,          // deviation vector shown, mm
    kScenePlotted = 12,  // 1 or 0
    kSceneDevX = 13,
    kSceneDevY,
    kSceneDevZ,         // transformed MCS minus OCS, mm
    kSceneInside = 16,  // 0 where a black plane hides the point
    kSceneColumns = 17
};

// The planes that column 16 was worked out for, in the world: a point is seen where its way along the normal
// from the centre of rotation is at most First and above Second, mm.
struct SceneSlab {
    bool On = false;  // off: all points are seen
    std::array<double, 3> Normal{}, Center{};
    double First = 0, Second = 0;
    bool operator==(const SceneSlab&) const = default;
};

// The view that the tables of the turned points hold.
struct SceneView {
    std::uint64_t Stamp = 0;    // of the scene; 0: none
    std::array<double, 9> M{};  // the rotation, row by row
    std::array<double, 3> Center{};
    bool operator==(const SceneView&) const = default;
};

struct SceneRecord {
    int Rows = 0;  // n; rows 1 to Ident are start points, the next Ident their target points
    std::array<std::vector<float>, kSceneColumns> Points;  // one array a column, each with element 0
    std::array<std::vector<float>, 4> View;                // ViewPoints, columns 1 to 3
    SceneView ViewOf;                                      // what they hold
    std::array<float, 6> ViewBox{};                        // about them, as in ScreenWindow
    std::array<std::vector<float>, 3> Vectors;             // ViewVectors, columns 1 and 2
    std::vector<float> PixelX, PixelY, PixelZ, VecPixelX, VecPixelY;
    std::uint64_t PixelsOf = 0;  // Id of the window whose picture the pixel tables hold, 0 = of none
    SceneSlab InsideOf;          // what column 16 holds
    Vec3 RotCenter;
    int RotateAboutIndex = 0;
    bool RotateAboutArmed = false;
    std::string ActualPointName;

    // Column 6 as the picture holds it, 0 where the row is not painted; filled by the paint.
    std::vector<std::uint32_t> Paint;
    bool PaintStale = true;
    std::int32_t PaintBackground = 0;  // of the window that it was filled for

    // What the table was built from; a paint that finds the job otherwise builds it anew.
    int Ident = 0, MCSOnly = 0, OCSOnly = 0;
    const ScreenWindow* PlottedFor = nullptr;  // whose classes column 12 follows
    std::uint64_t JobGeneration = 0;
    std::uint64_t Stamp = 0;  // counted up whenever the table is filled from the job

    // Diagonal of the box about the start points (MaxMinGlobalSys), mm, of the table with this stamp.
    double Diagonal = 0;
    std::uint64_t DiagonalOf = 0;
};
inline SceneRecord Scene;

// Is a row, 1 to Rows, plotted and not hidden by a black plane of the window painted last?
inline bool IsSeen(int row) {
    const auto i = static_cast<std::size_t>(row);
    return Scene.Points[kScenePlotted][i] != 0.0F && Scene.Points[kSceneInside][i] != 0.0F;
}

// The name of a row of ScenePoints, 1 to Rows (ScenePointName); empty where the job no longer has it.
const std::string& ScenePointName(int row);

// The row of the actual point where it is the one under the cursor of the main sheet, or 0.
int ActualRow();

// Rebuilds ScenePoints from the job for this window, with its classes, colours and plot switches, and
// projects it. Reads Job, Settings; writes Scene, the window's FlagIndex (length only) and ViewBox.
void Grafik_Festlegen(ScreenWindow& window);

// Builds the scene anew where the job's points are no longer those that it was built from, and puts the plot
// switches (column 12) in the state that belongs to this window.
void SceneForWindow(ScreenWindow& window);

}  // namespace corvinade::graphics
