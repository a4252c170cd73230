// The colours of the tolerance classes as a bar at the right edge, lowest class at its lower end.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include "core/desktop_defaults.h"
#include "core/job.h"
#include "core/job_tolerance.h"
#include "core/numbers.h"
#include "core/window.h"
#include "graphics/drawing.h"
#include "graphics/point_trust.h"
#include "graphics/projection.h"
#include "graphics/strokes.h"
#include "graphics/tolerance.h"

namespace corvinade::graphics {

namespace {

constexpr double kWidestBar = 75;  // pixels kept free at the right edge

struct Bar {
    double Left, Bottom, Thickness;
    int Lines = 0;  // drawn so far, from below
};

// One side of zero: `height` lines shared evenly by its classes.
void DrawClasses(ScreenWindow& window, const ColourTable& table, int count, double height, Bar& bar) {
    const int classes = std::min(count, static_cast<int>(table.Colour.size()) - 1);
    const int lines = count > 0 ? static_cast<int>(Round(height / count)) : 0;
    for (int k = 1; k <= classes; ++k) {
        const auto colour = static_cast<Colour>(table.Colour[static_cast<std::size_t>(k)]);
        for (int line = 0; line < lines; ++line, ++bar.Lines) {
            const double y = bar.Bottom - bar.Lines;
            DrawStroke(window.Screen, {bar.Left, y}, {bar.Left + bar.Thickness, y}, colour, 1);
        }
    }
}

Bar BarOf(const ScreenWindow& window) {
    const double W = PictureWidth(window), H = PictureHeight(window);
    const double height = Round(H / 3);
    return {Round(W - std::min(Round(W / 7), kWidestBar)), Round((H - 2 * height) * 2.5), Round(height / 9)};
}

// --- The bar of the desktop -------------------------------------------------------------------------------

constexpr double kGap = 6;          // pixels between the bar and its texts
constexpr double kLetter = 7;       // pixels a letter, where nobody measures texts
constexpr double kLineHeight = 15;  // pixels
constexpr double kWidestText = 64;  // of a limit that room is kept for, pixels

// Texts do not end at their letters: a line of them has a border of this width, pixels.
constexpr double kTextBorder = 3;

double TextWidth(const ScreenWindow& window, const std::string& text) {
    const Surface& screen = window.Screen;
    const double letters = screen.FontWidth != nullptr ? screen.FontWidth(window.LabelFont, text)
                                                       : kLetter * static_cast<double>(text.size());
    return letters + 2 * kTextBorder;
}

// A text whose right end stands at x, and whose middle at y.
void TextUpTo(ScreenWindow& window, const std::string& text, double x, double y) {
    SetLabelToPos(window, text, static_cast<float>(std::max(x - TextWidth(window, text), 0.0)),
                  static_cast<float>(y - kLineHeight / 2));
}

std::string UnitOf(const ScreenRecord& state) {
    return state.ColorBased == kByStandardized ? "" : "[" + Job.LengthUnitName + "]";
}

// A limit with two decimals, or so many that two of its digits are seen.
std::string LimitText(double value) {
    const double size = std::abs(value);
    std::string format = "0.00";
    for (double least = 0.1; size > 0 && size < least && format.size() < 8; least /= 10) format += '0';
    return FormatNumber(value, format);
}

// What the colours are of, line by line.
std::vector<std::string> TitleOf(const ScreenRecord& state) {
    if (state.ColorBased == kByStandardized) return {"standardised", "residual"};
    if (state.ColorBased == kByAccuracy) return {"accuracy", UnitOf(state)};
    const std::array<const char*, 3> names = ComponentNames(state.CS_Type);
    const std::array<Flag, 3> shown = {state.showVeX, state.showVeY, state.showVeZ};
    const auto count = std::count_if(shown.begin(), shown.end(), [](Flag flag) { return IsTrue(flag); });
    std::string name;
    for (std::size_t i = 0; i < shown.size(); ++i)
        if (count == 0 || IsTrue(shown[i]))
            name += (name.empty() || state.CS_Type == "CART" ? "" : "_") + std::string(names[i]);
    std::vector<std::string> lines = {"ve." + name, UnitOf(state)};
    // The size is that of all shown components; one of them gives it its sign.
    const std::size_t sign = state.ColorBased == "x" ? 0 : state.ColorBased == "y" ? 1 : 2;
    if (IsSigned(state) && (count != 1 || !IsTrue(shown[sign])))
        lines.insert(lines.begin() + 1, std::string("sign of ve.") + names[sign]);
    return lines;
}

// Each end bears its own limit, and zero a mark. What has no sign has no side below zero: its bar begins
// there.
void DrawDesktopBar(ScreenWindow& window) {
    const ScreenRecord& state = window.State;
    Bar bar = BarOf(window);
    const double height = Round(PictureHeight(window) / 3.0), bottom = bar.Bottom;
    const bool both = IsSigned(state);
    if (both) DrawClasses(window, Tolerance.Negative, state.AnzKlassenNeg, height, bar);
    const double zero = bottom - bar.Lines;
    DrawClasses(window, Tolerance.Positive, state.AnzKlassenPos, both ? height : 2 * height, bar);
    const double top = bottom - bar.Lines;

    const Colour ink = QbColor(window.BackColor == QbColor(15) ? 0 : 15);
    const double end = bar.Left - kGap;
    DrawStroke(window.Screen, {end + 1, zero}, {bar.Left + bar.Thickness + 3, zero}, ink, 1);
    TextUpTo(window, "0", end, zero);
    const double factor = LimitFactor(state);
    if (both) TextUpTo(window, LimitText(state.Min * factor), end, bottom);
    TextUpTo(window, LimitText(state.Max * factor), end, top);

    // The tolerance, where it lies within the bar and the colours are of a length.
    const double tolerance = ToleranceOf(Job);
    if (tolerance > 0 && tolerance < state.Max && state.ColorBased != kByStandardized &&
        state.ColorBased != kByAccuracy) {
        const auto mark = [&](double y) {
            DrawStroke(window.Screen, {bar.Left - 3, y}, {bar.Left + bar.Thickness + 3, y}, ink, 2);
        };
        mark(zero + (top - zero) * tolerance / state.Max);
        if (both && state.Min < -tolerance) mark(zero + (bottom - zero) * tolerance / -state.Min);
    }

    const std::vector<std::string> title = TitleOf(state);
    double y = top - kLineHeight * (static_cast<double>(title.size()) + 0.5);
    for (const std::string& line : title) {
        TextUpTo(window, line, PictureWidth(window) - kGap, y);
        y += kLineHeight;
    }
}

}  // namespace

double ColorBarLeft(const ScreenWindow& window) {
    return BarOf(window).Left - kGap - kWidestText;
}

void Zeichne_ColorBar(ScreenWindow& window) {
    if (DesktopDefaults.ColorBar) return DrawDesktopBar(window);
    const double H = PictureHeight(window);
    const double height = Round(H / 3), thickness = Round(height / 9);
    Bar bar = BarOf(window);
    const ScreenRecord& state = window.State;
    DrawClasses(window, Tolerance.Negative, state.AnzKlassenNeg, height, bar);
    // The stroke at zero is upright and as a rule lies to the right of the bar.
    const double zero = bar.Left + bar.Lines;
    DrawStroke(window.Screen, {zero, bar.Bottom}, {zero, bar.Bottom + thickness}, QbColor(0), 1);
    DrawClasses(window, Tolerance.Positive, state.AnzKlassenPos, height, bar);

    const auto label = [&](double value, double y) {
        SetLabelToPos(window, FormatNumber(value * LimitFactor(state), "0.00"),
                      static_cast<float>(bar.Left - 1.5 * thickness), static_cast<float>(y - thickness / 2));
    };
    label(state.Min, bar.Bottom);
    label(state.Max, bar.Bottom - 2 * height);
}

}  // namespace corvinade::graphics
