// What the mouse does with flags.
#include <algorithm>
#include <cmath>

#include "core/changes.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/run.h"
#include "core/window.h"
#include "engine/calculation_window.h"
#include "graphics/drawing.h"
#include "graphics/flags.h"
#include "graphics/picking.h"
#include "graphics/projection.h"
#include "graphics/scene.h"
#include "graphics/view_undo.h"

namespace corvinade::graphics {

namespace {

constexpr int kHold = 12;    // pixels of a flag that stay in the picture
constexpr int kOffset = 20;  // pixels from a click to the flag that it sets

std::size_t At(int flag) {
    return static_cast<std::size_t>(flag);
}

bool Covers(const FlagLabel& label, const FlagRecord& record, float x, float y) {
    const auto left = static_cast<float>(record.Left), top = static_cast<float>(record.Top);
    return label.Visible && x >= left && x < left + label.Width && y >= top && y < top + label.Height;
}

// Where a new flag begins: behind the place by the offset, or before it where the picture ends, and wholly
// within the picture where neither has room for it.
std::int16_t Beside(double place, double size, double room) {
    double begin = place + kOffset;
    if (begin + size > room) begin = place - kOffset - size;
    if (begin < 0) begin = std::max(0.0, std::min(place + kOffset, room - size));
    return ToFlagPlace(begin);
}

void PlaceNear(const ScreenWindow& window, float x, float y, const FlagLabel& label, FlagRecord& record) {
    record.Left = Beside(x, label.Width, PictureWidth(window));
    record.Top = Beside(y, label.Height, PictureHeight(window) - window.Screen.StatusBarHeight);
}

void MarkFlag(ScreenWindow& window, int flag) {
    if (window.State.ActiveFlag == flag) return;
    window.State.ActiveFlag = static_cast<std::int16_t>(flag);
    ShowFlagCommands();
    Stelle_Grafik_dar(window);
}

}  // namespace

int FlagAt(const ScreenWindow& window, float x, float y) {
    const ScreenRecord& state = window.State;
    const int count = FlagsOf(state);
    if (count == 0 || window.FlagLabels.size() != At(count) + 1) return 0;
    const int active = std::clamp<int>(state.ActiveFlag, 0, count);
    if (active != 0 && Covers(window.FlagLabels[At(active)], state.Flags[At(active)], x, y)) return active;
    for (int flag = count; flag >= 1; --flag)
        if (Covers(window.FlagLabels[At(flag)], state.Flags[At(flag)], x, y)) return flag;
    return 0;
}

FlagCell FlagCellAt(const ScreenWindow& window, int flag, float x, float y) {
    const FlagLabel& label = window.FlagLabels[At(flag)];
    const FlagRecord& record = window.State.Flags[At(flag)];
    const auto place = [](const auto& edges, float way) {
        for (std::size_t i = 0; i + 1 < edges.size(); ++i)
            if (way >= edges[i] && way < edges[i + 1]) return static_cast<int>(i);
        return -1;
    };
    return {place(FlagRowEdges(label), y - static_cast<float>(record.Top)),
            place(FlagColumnEdges(label), x - static_cast<float>(record.Left))};
}

void PressFlag(ScreenWindow& window, int flag, float x, float y) {
    ScreenMouse& mouse = window.Mouse;
    mouse.DraggedFlag = flag;
    mouse.FlagMoved = false;
    mouse.DownX = x;
    mouse.DownY = y;
    mouse.FlagLeft = FlagOf(window, flag).Left;
    mouse.FlagTop = FlagOf(window, flag).Top;
    MarkFlag(window, flag);
}

void DragFlag(ScreenWindow& window, float x, float y) {
    ScreenMouse& mouse = window.Mouse;
    if (mouse.DraggedFlag < 1 || mouse.DraggedFlag > window.State.FlagCount) return;
    FlagRecord& record = FlagOf(window, mouse.DraggedFlag);
    const auto place = [&](int start, float way, int room) {
        // A corner of it stays in the picture, or nothing would be left to take hold of.
        const double most = std::max(0, room - kHold);
        double at = std::min(static_cast<double>(start) + way, most);
        const double step = window.State.GridLength;
        if (IsTrue(record.SnaptoGrid) && step >= 1) {
            at = std::floor(at / step + 0.5) * step;
            if (at > most) at -= step;
        }
        return ToFlagPlace(at);
    };
    const std::int16_t left = place(mouse.FlagLeft, x - mouse.DownX, PictureWidth(window)),
                       top = place(mouse.FlagTop, y - mouse.DownY,
                                   PictureHeight(window) - window.Screen.StatusBarHeight);
    if (left == record.Left && top == record.Top) return;
    // A press that does not move snaps nothing.
    if (!mouse.FlagMoved && x == mouse.DownX && y == mouse.DownY) return;
    record.Left = left;
    record.Top = top;
    mouse.FlagMoved = true;
    Stelle_Grafik_dar(window);
}

void ReleaseFlag(ScreenWindow& window) {
    ScreenMouse& mouse = window.Mouse;
    mouse.DraggedFlag = 0;
    if (!mouse.FlagMoved) return;
    mouse.FlagMoved = false;
    Stelle_Grafik_dar(window);
    StoreScreenPropertiesToRecord(window);
}

void ShowFlagMenu(ScreenWindow& window, int flag) {
    MarkFlag(window, flag);
    ShowFlagCommands();
    Main.MenuFahne.Value = 1;
}

void FlagByClick(ScreenWindow& window, int row, float x, float y) {
    if (row < 1 || row > Scene.Rows || FlagOfRow(window, row) != 0) return;
    if (!IsSeen(row) || !PixelWithinScreen(window, row)) return;
    const int flag = AddFlag(window, row, 0, 0);
    if (flag == 0) return;
    PlaceNear(window, x, y, window.FlagLabels[At(flag)], FlagOf(window, flag));
    ShowFlagCommands();
    Stelle_Grafik_dar(window);
    StoreScreenPropertiesToRecord(window);
}

void FlagDoubleClicked(ScreenWindow& window, int flag, const FlagCell& cell) {
    if (Main.MenüAnsichtDynamicFlag.Checked) return;
    if (cell.Row != kFlagUse || cell.Column < kFlagX || cell.Column > kFlagZ) return;
    const int row = window.FlagLabels[At(flag)].Row;
    if (row < 1 || row > 2 * Scene.Ident) return;
    const int point = row <= Scene.Ident ? row : row - Scene.Ident;
    const std::size_t index = At(3 * point - 2 + cell.Column - kFlagX);
    if (index >= Job.UseFlags.size()) return;
    Job.UseFlags[index] = Job.UseFlags[index] == 1 ? std::int16_t{0} : std::int16_t{1};
    Run.JobDirty = kTrue;
    const bool calculates = IsLoaded("FormTrafoBerechnung");
    if (calculates) TabelleFüllenNeu();
    Changed(What::Use);
    if (calculates) RecalculateIfAutomatic();
}

void DynamicFlagTo(ScreenWindow& window, int row) {
    FlagLabel& label = window.DynamicFlag;
    if (row < 1 || row > Scene.Rows) row = 0;
    if (row == label.Row) return;
    if (row == 0) {
        label = FlagLabel{};
    } else {
        window.DynamicRecord = NewFlagRecord(window);
        FillFlagLabel(window, row, window.DynamicRecord, label);
        PlaceNear(window, Scene.PixelX[At(row)], Scene.PixelY[At(row)], label, window.DynamicRecord);
    }
    Stelle_Grafik_dar(window);
}

}  // namespace corvinade::graphics
