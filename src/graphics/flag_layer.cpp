// The layer of the flags: leader lines, and the tables on top of everything.
#include <algorithm>
#include <cmath>

#include "core/desktop_defaults.h"
#include "core/job.h"
#include "core/job_tolerance.h"
#include "core/settings.h"
#include "core/units.h"
#include "graphics/drawing.h"
#include "graphics/flags.h"
#include "graphics/picking.h"
#include "graphics/scene.h"
#include "graphics/strokes.h"

namespace corvinade::graphics {

namespace {

constexpr Colour kLeader = 0 | 100 << 8 | 100 << 16;  // RGB (0, 100, 100)
constexpr int kBlack = 0, kWhite = 15, kUnused = 14, kMarked = 9;
constexpr float kSideRoom = 3, kLineRoom = 1;  // pixels between a cell's edge and its text

std::size_t At(int flag) {
    return static_cast<std::size_t>(flag);
}

// The table of points is that of this window during its paint alone: what outlives it goes to the label.
void TakeClassColour(FlagLabel& label) {
    const bool inScene = label.Row >= 1 && label.Row <= Scene.Rows;
    label.ClassColour =
        inScene ? static_cast<Colour>(Scene.Points[kSceneColour][At(label.Row)]) : QbColor(kWhite);
}

bool IsShown(const ScreenWindow& window, int row, const FlagRecord& record) {
    if (row < 1 || row > Scene.Rows || !IsSeen(row)) return false;
    return !IsTrue(record.WithinScreen) || PixelWithinScreen(window, row);
}

// Units, formats or the points are others than the texts were written from.
bool IsStale(const ScreenWindow& window) {
    const FlagTextKey& key = window.FlagsShow;
    return window.FlagLabels.size() != At(FlagsOf(window.State)) + 1 || key.Scene != Scene.Stamp ||
           key.LengthFactor != Units.LengthFactor || key.AngleFactor != Units.AngleFactor ||
           key.Tolerance != ToleranceOf(Job) || key.FmtLength != Units.FmtLength ||
           key.FmtAngle != Units.FmtAngle || key.AngleUnit != Job.AngleUnitName ||
           key.ColorBased != window.State.ColorBased || key.ArcLengths != IsTrue(Settings.PhiThetaAsQ);
}

void FillCell(Surface& screen, float left, float top, float right, float bottom, Colour colour) {
    if (screen.Fill != nullptr) screen.Fill(screen, left, top, right - left, bottom - top, colour);
}

void DrawGrid(Surface& screen, float left, float top, const FlagLabel& label) {
    const auto columns = FlagColumnEdges(label);
    const auto rows = FlagRowEdges(label);
    const Colour black = QbColor(kBlack);
    const float right = left + label.Width, bottom = top + label.Height;
    // Bars one pixel thick: lines by the toolkit would take longer than all the rest.
    const auto line = [&screen, black](float x1, float y1, float x2, float y2) {
        FillCell(screen, x1, y1, x2 + 1, y2 + 1, black);
    };
    line(left, top, right, top);
    line(left, top, left, bottom);
    for (std::size_t i = 0; i < kFlagCols; ++i)
        if (label.ColWidth[i] != 0) line(left + columns[i + 1], top, left + columns[i + 1], bottom);
    for (std::size_t i = 0; i < kFlagRows; ++i)
        if (label.RowHeight[i] != 0) line(left, top + rows[i + 1], right, top + rows[i + 1]);
}

// Of a colour as the eye takes it, 0 to 1.
double Brightness(Colour colour) {
    const auto part = [colour](int shift) {
        const double share = ((colour >> shift) & 0xff) / 255.0;
        return share <= 0.03928 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(0) + 0.7152 * part(8) + 0.0722 * part(16);
}

void DrawTexts(Surface& screen, float left, float top, const FlagLabel& label, const FlagRecord& record) {
    if (screen.FontText == nullptr) return;
    const auto columns = FlagColumnEdges(label);
    const auto rows = FlagRowEdges(label);
    for (std::size_t row = 0; row < kFlagRows; ++row)
        for (std::size_t column = 0; column < kFlagCols; ++column)
            if (label.RowHeight[row] != 0 && label.ColWidth[column] != 0 && !label.Text[row][column].empty())
                screen.FontText(
                    screen, left + columns[column] + kSideRoom, top + rows[row] + kLineRoom,
                    label.Text[row][column],
                    FlagLetterColour(record, label, static_cast<int>(row), static_cast<int>(column)),
                    label.Font);
}

void DrawFlag(ScreenWindow& window, const FlagLabel& label, const FlagRecord& record, bool marked) {
    Surface& screen = window.Screen;
    // Edges on whole pixels, so that lines and letters are sharp.
    const auto left = static_cast<float>(record.Left), top = static_cast<float>(record.Top);
    const bool inPicture = left < static_cast<float>(screen.Width) &&
                           top < static_cast<float>(screen.Height) && left + label.Width >= 0 &&
                           top + label.Height >= 0;
    if (!inPicture || label.Width <= 0 || label.Height <= 0) return;
    const auto columns = FlagColumnEdges(label);
    const auto rows = FlagRowEdges(label);
    const Colour ground = FlagGround(record, label);
    FillCell(screen, left, top, left + label.Width, top + label.Height, ground);
    for (const std::size_t row : {kFlagDev, kFlagUse})
        for (std::size_t column = 0; column < kFlagCols && label.RowHeight[row] != 0; ++column) {
            const Colour cell =
                FlagCellGround(record, label, static_cast<int>(row), static_cast<int>(column));
            if (label.ColWidth[column] != 0 && cell != ground)
                FillCell(screen, left + columns[column], top + rows[row], left + columns[column + 1],
                         top + rows[row + 1], cell);
        }
    if (IsTrue(record.ShowGrid)) DrawGrid(screen, left, top, label);
    DrawTexts(screen, left, top, label, record);
    if (!marked) return;
    const float right = left + label.Width + 1, bottom = top + label.Height + 1;
    const Colour mark = QbColor(kMarked);
    FillCell(screen, left - 1, top - 1, right + 1, top, mark);
    FillCell(screen, left - 1, bottom, right + 1, bottom + 1, mark);
    FillCell(screen, left - 1, top, left, bottom, mark);
    FillCell(screen, right, top, right + 1, bottom, mark);
}

// Names and scales lie on top of the picture: a text that would lie on a flag is hidden.
void HideLabelsUnder(ScreenWindow& window, const FlagLabel& label, const FlagRecord& record) {
    constexpr float kLetterWidth = 7, kLetterHeight = 14;
    const auto left = static_cast<float>(record.Left), top = static_cast<float>(record.Top);
    const auto hide = [&](ScreenLabel& text) {
        const float width = kLetterWidth * static_cast<float>(text.Text.size());
        if (text.X < left + label.Width && text.X + width > left && text.Y < top + label.Height &&
            text.Y + kLetterHeight > top)
            text.Visible = false;
    };
    std::for_each(window.Labels.begin(), window.Labels.end(), hide);
    hide(window.LabelScale);
    hide(window.LabelVectorScale);
}

void DrawOne(ScreenWindow& window, const FlagLabel& label, const FlagRecord& record, bool marked) {
    HideLabelsUnder(window, label, record);
    DrawFlag(window, label, record, marked);
}

}  // namespace

Colour FlagGround(const FlagRecord& record, const FlagLabel& label) {
    return IsTrue(record.ShowTolCol) ? label.ClassColour : QbColor(kWhite);
}

// A coordinate that takes no part in the fit is marked as in the point table, and a deviation beyond the
// tolerance too.
Colour FlagCellGround(const FlagRecord& record, const FlagLabel& label, int row, int column) {
    if (row == kFlagDev && column >= kFlagX && column <= kFlagZ && label.Beyond[At(column - kFlagX)])
        return kBeyondTolerance;
    const bool use = row == kFlagUse && column >= kFlagX && column <= kFlagZ && label.Row >= 1 &&
                     label.Row <= 2 * Scene.Ident;
    if (!use) return FlagGround(record, label);
    return QbColor(label.InUse[At(column - kFlagX)] ? kWhite : kUnused);
}

// Dark letters on the red or blue of a class are white.
Colour FlagLetterColour(const FlagRecord& record, const FlagLabel& label, int row, int column) {
    constexpr double kDark = 0.25;
    const Colour wanted = record.Forecolor & 0xffffff;
    if (!DesktopDefaults.FlagLetters) return wanted;
    const bool unread =
        Brightness(FlagCellGround(record, label, row, column)) < kDark && Brightness(wanted) < kDark;
    return unread ? QbColor(kWhite) : wanted;
}

void ZeichneLinieZuFahne(ScreenWindow& window, const FlagLabel& label, const FlagRecord& record, int row) {
    DrawStroke(window.Screen, {Scene.PixelX[At(row)], Scene.PixelY[At(row)]},
               {record.Left + label.Width / 2.0, record.Top + label.Height / 2.0}, kLeader, 1);
}

void DrawFlagLines(ScreenWindow& window) {
    const ScreenRecord& state = window.State;
    const int count = FlagsOf(state);
    if ((count != 0 || window.DynamicFlag.Row != 0) && IsStale(window)) {
        FahnenReset(window);
        RefillDynamicFlag(window);
    }
    for (int flag = 1; flag <= count; ++flag) {
        FlagLabel& label = window.FlagLabels[At(flag)];
        TakeClassColour(label);
        label.Visible = IsShown(window, label.Row, state.Flags[At(flag)]);
        if (label.Visible) ZeichneLinieZuFahne(window, label, state.Flags[At(flag)], label.Row);
    }
    FlagLabel& dynamic = window.DynamicFlag;
    if (dynamic.Row == 0) return;
    TakeClassColour(dynamic);
    dynamic.Visible = IsShown(window, dynamic.Row, window.DynamicRecord);
    if (dynamic.Visible) ZeichneLinieZuFahne(window, dynamic, window.DynamicRecord, dynamic.Row);
}

void DrawFlags(ScreenWindow& window) {
    const ScreenRecord& state = window.State;
    const int count = FlagsOf(state);
    const int active = state.ActiveFlag <= count ? state.ActiveFlag : 0;
    for (int flag = 1; flag <= count; ++flag)
        if (flag != active && window.FlagLabels[At(flag)].Visible)
            DrawOne(window, window.FlagLabels[At(flag)], state.Flags[At(flag)], false);
    // The active flag lies on top and is marked, but for pictures that leave the window.
    if (active > 0 && window.FlagLabels[At(active)].Visible)
        DrawOne(window, window.FlagLabels[At(active)], state.Flags[At(active)], window.StatusBarVisible);
    if (window.DynamicFlag.Row != 0 && window.DynamicFlag.Visible)
        DrawOne(window, window.DynamicFlag, window.DynamicRecord, false);
}

}  // namespace corvinade::graphics
