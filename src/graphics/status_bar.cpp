// What the status bar of a graphics window tells of the point under the mouse.
#include "graphics/status_bar.h"

#include <cstddef>

#include "core/numbers.h"
#include "core/units.h"
#include "graphics/scene.h"

void ShowPointInStatusBar(ScreenWindow& window, int row) {
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
