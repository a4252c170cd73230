// The texts of a flag and its size.
#include <algorithm>
#include <cmath>

#include "core/job.h"
#include "core/job_tolerance.h"
#include "core/numbers.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/tolerance_check.h"
#include "fit/coordinate_forms.h"
#include "fit/require.h"
#include "graphics/flags.h"
#include "graphics/scene.h"
#include "graphics/tolerance.h"

namespace corvinade::graphics {

namespace {

constexpr int kTwips = 15;                                     // to the pixel
constexpr double kWidthDivisor = 14.9, kHeightDivisor = 14.7;  // from twips to the size of a flag
constexpr double kSideRoom = 3, kLineRoom = 1;                 // pixels around a text
constexpr float kLeastSize = 4, kLargestSize = 144;            // points

constexpr std::array<const char*, kFlagCols> kHeadings = {"",    "x",   "y",     "z",      "R",
                                                          "Phi", "Rho", "Theta", "3D Dev."};

struct RowPoints {
    int Pair = 0;  // 0: a point without a partner
    bool HasActual = false, HasNominal = false;
    Vec3 Actual, Nominal;
};

// The points behind a row of the scene; both rows of a pair show the pair.
RowPoints PointsOfRow(int row) {
    RowPoints points;
    const int ident = Scene.Ident, startOnly = Scene.MCSOnly;
    int start = 0, target = 0;
    if (row <= 2 * ident) {
        start = target = points.Pair = row <= ident ? row : row - ident;
    } else if (row <= 2 * ident + startOnly) {
        start = row - ident;
    } else {
        target = row - ident - startOnly;
    }
    // The scene may be of points that are gone.
    points.HasActual = start >= 1 && start <= Job.Transformed.Count();
    points.HasNominal = target >= 1 && target <= Job.Target.Count();
    if (points.HasActual) points.Actual = TransformedPoint(start);
    if (points.HasNominal) points.Nominal = TargetPoint(target);
    return points;
}

std::string LengthText(double value_mm) {
    return FormatNumber(value_mm * Units.LengthFactor, Units.FmtLength);
}

using RowTexts = std::array<std::string, kFlagCols>;

void WritePoint(const Vec3& point, RowTexts& texts) {
    const CoordinateForms forms = FormsOf(point);
    for (int axis = 1; axis <= 3; ++axis)
        texts[static_cast<std::size_t>(kFlagX + axis - 1)] = LengthText(point(axis));
    texts[kFlagR] = LengthText(forms.CylRadius);
    texts[kFlagPhi] = WinkelFormat(forms.Phi);
    texts[kFlagRho] = LengthText(forms.SphRadius);
    texts[kFlagTheta] = WinkelFormat(forms.Theta);
}

// The 3D deviation with the sign of the component that colours the points, as their class has it.
double SignedDeviation(const ScreenRecord& state, const RowPoints& points, const Vec3& deviation) {
    const double size =
        std::sqrt(deviation(1) * deviation(1) + deviation(2) * deviation(2) + deviation(3) * deviation(3));
    return IsNegativeDeviation(state, points.Actual, points.Nominal) ? -size : size;
}

void WriteDeviation(const ScreenRecord& state, const RowPoints& points, RowTexts& texts) {
    const Vec3 deviation = {points.Actual(1) - points.Nominal(1), points.Actual(2) - points.Nominal(2),
                            points.Actual(3) - points.Nominal(3)};
    const CoordinateForms nominal = FormsOf(points.Nominal);
    const CoordinateForms forms = FormDifference(FormsOf(points.Actual), nominal);
    for (int axis = 1; axis <= 3; ++axis)
        texts[static_cast<std::size_t>(kFlagX + axis - 1)] = LengthText(deviation(axis));
    texts[kFlagR] = LengthText(forms.CylRadius);
    texts[kFlagRho] = LengthText(forms.SphRadius);
    if (IsTrue(Settings.PhiThetaAsQ)) {
        // Along the circle on which the target point lies.
        texts[kFlagPhi] = "Q = " + LengthText(nominal.CylRadius * forms.Phi);
        texts[kFlagTheta] = "Q = " + LengthText(nominal.SphRadius * forms.Theta);
    } else {
        texts[kFlagPhi] = WinkelFormat(forms.Phi);
        texts[kFlagTheta] = WinkelFormat(forms.Theta);
    }
    texts[kFlag3D] = LengthText(SignedDeviation(state, points, deviation));
}

// Where nothing is drawn the sizes are those of a common font.
double WidthOf(const Surface& screen, const TextFont& font, const std::string& text) {
    if (screen.FontWidth != nullptr) return screen.FontWidth(font, text);
    constexpr double kLetter = 0.6;  // of the letter's height
    return kLetter * font.Size * 96 / 72 * static_cast<double>(text.size());
}
double HeightOf(const Surface& screen, const TextFont& font) {
    if (screen.FontHeight != nullptr) return screen.FontHeight(font);
    return std::ceil(1.2 * font.Size * 96 / 72);
}

bool ShowsColumn(const FlagRecord& record, int column) {
    if (IsTrue(record.ShowPointNumber)) return column == kFlagName;
    const std::array<Flag, kFlagCols> shown = {record.ShowLegendeName, record.showX,     record.showY,
                                               record.showZ,           record.showR,     record.showPhi,
                                               record.showRho,         record.showTheta, record.show3D};
    return IsTrue(shown[static_cast<std::size_t>(column)]);
}
bool ShowsRow(const FlagRecord& record, int row) {
    if (IsTrue(record.ShowPointNumber)) return row == kFlagHeading;
    const std::array<Flag, kFlagRows> shown = {record.ShowLegendeXYZ, record.ShowActual, record.ShowNominal,
                                               record.ShowDev, record.ShowUseNotUse};
    return IsTrue(shown[static_cast<std::size_t>(row)]);
}

void SizeLabel(const Surface& screen, const FlagRecord& record, FlagLabel& label) {
    const double height = HeightOf(screen, label.Font) + 2 * kLineRoom;
    int width = 0, rows = 0;
    for (int column = 0; column < kFlagCols; ++column) {
        const auto at = static_cast<std::size_t>(column);
        label.ColWidth[at] = 0;
        if (!ShowsColumn(record, column)) continue;
        double widest = 0;
        for (const RowTexts& texts : label.Text)
            if (!texts[at].empty()) widest = std::max(widest, WidthOf(screen, label.Font, texts[at]));
        label.ColWidth[at] = static_cast<int>(std::lround((widest + 2 * kSideRoom) * kTwips));
        width += label.ColWidth[at];
    }
    for (int row = 0; row < kFlagRows; ++row) {
        const auto at = static_cast<std::size_t>(row);
        label.RowHeight[at] = ShowsRow(record, row) ? static_cast<int>(std::lround(height * kTwips)) : 0;
        rows += label.RowHeight[at];
    }
    label.Width = static_cast<float>(width / kWidthDivisor);
    label.Height = static_cast<float>(rows / kHeightDivisor);
}

template <std::size_t Cells>
std::array<float, Cells + 1> EdgesOf(const std::array<int, Cells>& twips, double divisor) {
    std::array<float, Cells + 1> edges{};
    int sum = 0;
    for (std::size_t i = 0; i < Cells; ++i) {
        sum += twips[i];
        edges[i + 1] = static_cast<float>(sum / divisor);
    }
    return edges;
}

}  // namespace

TextFont FontOfFlag(const FlagRecord& record) {
    TextFont font;
    font.Name = record.Name;
    font.Size =
        std::isfinite(record.Size) && record.Size > 0 ? std::clamp(record.Size, kLeastSize, kLargestSize) : 8;
    font.Bold = IsTrue(record.Bold) || record.Weight >= 600;
    font.Italic = IsTrue(record.Italic);
    font.Underline = IsTrue(record.Underline);
    font.Strikethrough = IsTrue(record.Strikethrough);
    return font;
}

void FillFlagLabel(const ScreenWindow& window, int row, const FlagRecord& record, FlagLabel& label) {
    label = FlagLabel{};
    label.Row = row;
    label.Font = FontOfFlag(record);
    for (std::size_t column = kFlagX; column < kFlagCols; ++column)
        label.Text[kFlagHeading][column] = kHeadings[column];
    label.Text[kFlagHeading][kFlagName] = ScenePointName(row);
    label.Text[kFlagActual][kFlagName] = "Actual";
    label.Text[kFlagNominal][kFlagName] = "Nominal";
    label.Text[kFlagDev][kFlagName] = "Dev.";
    label.Text[kFlagUse][kFlagName] = "use";
    if (row >= 1 && row <= Scene.Rows) {
        const RowPoints points = PointsOfRow(row);
        if (points.HasActual) WritePoint(points.Actual, label.Text[kFlagActual]);
        if (points.HasNominal) WritePoint(points.Nominal, label.Text[kFlagNominal]);
        if (points.HasActual && points.HasNominal) WriteDeviation(window.State, points, label.Text[kFlagDev]);
        for (std::size_t axis = 0; axis < 3 && points.Pair != 0; ++axis) {
            label.InUse[axis] = Used(points.Pair, static_cast<int>(axis) + 1);
            label.Beyond[axis] = points.HasActual && points.HasNominal &&
                                 IsBeyond(points.Pair, static_cast<int>(axis) + 1, ToleranceOf(Job));
            if (label.InUse[axis]) label.Text[kFlagUse][kFlagX + axis] = "X";
        }
    }
    SizeLabel(window.Screen, record, label);
}

std::array<float, kFlagCols + 1> FlagColumnEdges(const FlagLabel& label) {
    return EdgesOf(label.ColWidth, kWidthDivisor);
}
std::array<float, kFlagRows + 1> FlagRowEdges(const FlagLabel& label) {
    return EdgesOf(label.RowHeight, kHeightDivisor);
}

std::string FlagText(const FlagLabel& label) {
    std::string text;
    for (std::size_t row = 0; row < kFlagRows; ++row) {
        if (label.RowHeight[row] == 0) continue;
        if (!text.empty()) text += kLineEnd;
        bool first = true;
        for (std::size_t column = 0; column < kFlagCols; ++column) {
            if (label.ColWidth[column] == 0) continue;
            if (!first) text += '\t';
            first = false;
            text += label.Text[row][column];
        }
    }
    return text;
}

}  // namespace corvinade::graphics
