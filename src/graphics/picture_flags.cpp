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

namespace corvinade::graphics {

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

// Columns of flags from both sides of the picture towards its middle, clear of what stands at its edges.
struct SideColumns {
    double Width = 1, Height = 1;  // of the largest flag
    double Right = 0;              // where the flags of the outermost right column begin
    double Room = 0;               // height of a column
    int Rows = 1, Columns = 1;     // Columns: of both sides together
};

SideColumns ColumnsFor(const ScreenWindow& window, const std::vector<int>& rows) {
    SideColumns sides;
    FlagLabel label;
    for (const int row : rows) {
        FillFlagLabel(window, row, window.State.Flags[0], label);
        sides.Width = std::max<double>(sides.Width, label.Width);
        sides.Height = std::max<double>(sides.Height, label.Height);
    }
    const double end = PictureWidth(window) - (LookOf(window).ColorBar ? kColourBarRoom : kFlagEdge);
    sides.Right = end - sides.Width;
    sides.Room = std::max(sides.Height, static_cast<double>(PictureHeight(window)) - kScalesRoom - kFlagEdge);
    sides.Rows = std::max(1, static_cast<int>(sides.Room / (sides.Height + kFlagEdge)));
    sides.Columns = std::max(1, static_cast<int>((end - kFlagEdge) / (sides.Width + kFlagEdge)));
    return sides;
}

// Half of the flags to each side, in the order of their points and evenly down the side; where a column is
// full the next one begins beside it. Require: there is room for them.
void StandAtSides(ScreenWindow& window, std::vector<int> rows, const SideColumns& sides) {
    const auto by = [](const std::vector<float>& pixels) {
        return [&pixels](int one, int other) {
            return pixels[static_cast<std::size_t>(one)] < pixels[static_cast<std::size_t>(other)];
        };
    };
    std::stable_sort(rows.begin(), rows.end(), by(Scene.PixelX));
    const std::size_t leftRoom = static_cast<std::size_t>((sides.Columns + 1) / 2 * sides.Rows);
    const std::size_t rightRoom = static_cast<std::size_t>(sides.Columns / 2 * sides.Rows);
    std::size_t left = std::min(rows.size() / 2, leftRoom);
    if (rows.size() - left > rightRoom) left = rows.size() - rightRoom;
    const auto middle = rows.begin() + static_cast<std::ptrdiff_t>(left);
    std::stable_sort(rows.begin(), middle, by(Scene.PixelY));
    std::stable_sort(middle, rows.end(), by(Scene.PixelY));
    const auto place = [&](std::size_t first, std::size_t end, bool isLeft) {
        const auto count = static_cast<int>(end - first);
        const double step = std::min(3 * sides.Height, sides.Room / std::min(sides.Rows, std::max(1, count)));
        for (int i = 0; i < count; ++i) {
            FlagRecord& record = FlagOf(window, FlagOfRow(window, rows[first + static_cast<std::size_t>(i)]));
            const int column = i / sides.Rows;
            const double inwards = column * (sides.Width + kFlagEdge);
            record.Left = ToFlagPlace(isLeft ? kFlagEdge + inwards : sides.Right - inwards);
            record.Top = ToFlagPlace(kFlagEdge + i % sides.Rows * step);
        }
    };
    place(0, left, true);
    place(left, rows.size(), false);
}

}  // namespace

int FlagWorstPairs(ScreenWindow& window, int count) {
    std::vector<int> rows;
    for (int row = 1; row <= Scene.Ident; ++row)
        if (IsSeen(row) && std::isfinite(DeviationOf(row))) rows.push_back(row);
    std::stable_sort(rows.begin(), rows.end(),
                     [](int one, int other) { return DeviationOf(one) > DeviationOf(other); });
    if (rows.size() > static_cast<std::size_t>(std::max(count, 0)))
        rows.resize(static_cast<std::size_t>(std::max(count, 0)));
    if (window.State.Flags.empty()) window.State.Flags.resize(1);
    window.State.Flags[0] = DeviationsAlone();
    // Flags on flags tell nothing: those that deviate least have none where there is no room for all.
    const SideColumns sides = ColumnsFor(window, rows);
    const std::size_t wanted = rows.size();
    rows.resize(std::min(wanted, static_cast<std::size_t>(sides.Rows * sides.Columns)));
    for (const int row : rows)
        if (FlagOfRow(window, row) == 0) AddFlag(window, row, 0, 0);
    if (!PlaceBesidePoints(window, rows)) StandAtSides(window, rows, sides);
    window.State.ActiveFlag = 0;  // in a picture no flag is marked
    return static_cast<int>(wanted - rows.size());
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

}  // namespace corvinade::graphics
