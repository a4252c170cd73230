// What the status bar of a graphics window tells of the point under the mouse.
#include "graphics/status_bar.h"

#include <cmath>
#include <cstddef>
#include <string>

#include "core/numbers.h"
#include "core/units.h"
#include "graphics/scene.h"

namespace corvinade::graphics {

namespace {

// Its distance from the target, and dx, dy, dz; empty for rows that have no deviation of their own.
std::string DeviationText(int row) {
    if (row < 1 || row > Scene.Ident) return "";
    const auto k = static_cast<std::size_t>(row);
    const double x = Scene.Points[kSceneDevX][k], y = Scene.Points[kSceneDevY][k],
                 z = Scene.Points[kSceneDevZ][k];
    const auto shown = [](double length_mm) {
        return FormatNumber(length_mm * Units.LengthFactor, Units.FmtLength);
    };
    return "Deviation: " + shown(std::sqrt(x * x + y * y + z * z)) + "  (" + shown(x) + ", " + shown(y) +
           ", " + shown(z) + ")";
}

}  // namespace

void ShowPointInStatusBar(ScreenWindow& window, int row) {
    window.Deviation = DeviationText(row);
    if (row == 0) {
        window.Panel = {"", "no Pt Id.", "red = x   yellow = y    green = z   ", "   -------System = MCS",
                        ""};
        return;
    }
    const auto coordinate = [row](const char* name, SceneColumn column) {
        const double value_mm = Scene.Points[column][static_cast<std::size_t>(row)];
        return name + FormatNumber(value_mm * Units.LengthFactor, Units.FmtLength);
    };
    window.Panel = {"", "Pnt.ID: " + ScenePointName(row), coordinate("x: ", kSceneX),
                    coordinate("y: ", kSceneY), coordinate("z: ", kSceneZ)};
}

}  // namespace corvinade::graphics
