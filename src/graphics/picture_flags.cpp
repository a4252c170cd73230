// Flags on a picture without a screen.
#include "graphics/picture_flags.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "core/settings.h"
#include "graphics/flag_search.h"
#include "graphics/flags.h"
#include "graphics/projection.h"
#include "graphics/scene.h"

namespace {

// A name with the deviation's components below their headings.
FlagRecord DeviationsAlone() {
    FlagRecord record;
    record.ShowLegendeXYZ = record.ShowLegendeName = record.ShowDev = record.ShowGrid = kTrue;
    record.showX = record.showY = record.showZ = record.show3D = kTrue;
    record.Name = "Arial";
    record.Size = 8;
    record.Weight = 400;
    return record;
}

double DeviationOf(int row) {
    const auto at = static_cast<std::size_t>(row);
    return std::hypot(Scene.Points[kSceneDevX][at], Scene.Points[kSceneDevY][at],
                      Scene.Points[kSceneDevZ][at]);
}

// Half of the flags to each side of the picture, clear of what stands at its edges, in the order of their
// points and evenly down the side; where a column is full the next one begins beside it.
void StandAtSides(ScreenWindow& window, std::vector<int> rows) {
    constexpr int kEdge = 10, kColourBar = 150, kScales = 180;  // pixels
    const auto by = [](const std::vector<float>& pixels) {
        return [&pixels](int one, int other) {
            return pixels[static_cast<std::size_t>(one)] < pixels[static_cast<std::size_t>(other)];
        };
    };
    std::stable_sort(rows.begin(), rows.end(), by(Scene.PixelX));
    const auto middle = rows.begin() + static_cast<std::ptrdiff_t>(rows.size() / 2);
    std::stable_sort(rows.begin(), middle, by(Scene.PixelY));
    std::stable_sort(middle, rows.end(), by(Scene.PixelY));
    double width = 1, height = 1;
    for (const int row : rows) {
        const FlagLabel& label = window.FlagLabels[static_cast<std::size_t>(FlagOfRow(window, row))];
        width = std::max<double>(width, label.Width);
        height = std::max<double>(height, label.Height);
    }
    const double room = std::max(height, static_cast<double>(PictureHeight(window)) - kScales - kEdge);
    const double right = PictureWidth(window) - (IsTrue(Settings.ShowColorBar) ? kColourBar : kEdge) - width;
    const int most = std::max(1, static_cast<int>(room / (height + kEdge)));
    const auto place = [&](std::ptrdiff_t first, std::ptrdiff_t end, bool left) {
        const auto count = static_cast<int>(end - first);
        const double step = std::min(3 * height, room / std::min(most, std::max(1, count)));
        for (int i = 0; i < count; ++i) {
            FlagRecord& record = FlagOf(window, FlagOfRow(window, rows[static_cast<std::size_t>(first + i)]));
            const int column = i / most;
            const double inwards = column * (width + kEdge);
            record.Left = ToFlagPlace(left ? kEdge + inwards : right - inwards);
            record.Top = ToFlagPlace(kEdge + i % most * step);
        }
    };
    place(0, middle - rows.begin(), true);
    place(middle - rows.begin(), static_cast<std::ptrdiff_t>(rows.size()), false);
}

}  // namespace

void FlagWorstPairs(ScreenWindow& window, int count) {
    std::vector<int> rows;
    for (int row = 1; row <= Scene.Ident; ++row)
        if (Scene.Points[kScenePlotted][static_cast<std::size_t>(row)] != 0.0F &&
            std::isfinite(DeviationOf(row)))
            rows.push_back(row);
    std::stable_sort(rows.begin(), rows.end(),
                     [](int one, int other) { return DeviationOf(one) > DeviationOf(other); });
    if (rows.size() > static_cast<std::size_t>(std::max(count, 0)))
        rows.resize(static_cast<std::size_t>(std::max(count, 0)));
    if (window.State.Flags.empty()) window.State.Flags.resize(1);
    window.State.Flags[0] = DeviationsAlone();
    for (const int row : rows)
        if (FlagOfRow(window, row) == 0) AddFlag(window, row, 0, 0);
    if (!PlaceBesidePoints(window, rows)) StandAtSides(window, rows);
    window.State.ActiveFlag = 0;  // in a picture no flag is marked
}

void PlaceFlagsOfView(ScreenWindow& window, double width, double height, double ratio) {
    FahnenReset(window);
    for (int flag = 1; flag <= FlagsOf(window.State); ++flag) {
        FlagRecord& record = FlagOf(window, flag);
        const FlagLabel& label = window.FlagLabels[static_cast<std::size_t>(flag)];
        const auto place = [ratio](double at, double size, double before, double now) {
            return ToFlagPlace(now / 2 - (before / 2 - (at + size / 2)) * ratio - size / 2);
        };
        record.Left = place(record.Left, label.Width, width, PictureWidth(window));
        record.Top = place(record.Top, label.Height, height, PictureHeight(window));
    }
    window.State.ActiveFlag = 0;
}
