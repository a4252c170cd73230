// Shown deviation, tolerance class and colour of each pair.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

// Fills columns 4, 5, 8, 9, 10 of the identical rows of ScenePoints, and column 6 of all rows with them
// (Calculate_RGB). Does nothing where neither scene nor settings of the window have changed since. Limits
// that are both 0, and all limits of a window with SetMinMaxOnChange, are taken from the sizes; column 12 is
// then to be filled anew (Scene.PlottedFor).
void Transform_dev_to_klasse(ScreenWindow& window);
// Is the component of a deviation that ColorBased names, in the coordinate form of the view, below 0? It
// gives the size of a deviation its sign. Points in mm.
bool IsNegativeDeviation(const ScreenRecord& state, const Vec3& transformed, const Vec3& target);
// The shown sizes (column 4) of the pairs of the window: of all of them, or with ShowOnlyUsedComponent of
// those of which every coordinate is in use. Sizes that are no numbers do not count.
struct SizeRange {
    double Largest, Smallest;  // mm
    bool Any;                  // false: no pair counts, and the sizes say nothing
};
SizeRange ShownSizes(ScreenWindow& window);
// What the three components are called in a coordinate form ("CART", "CYL", "SPH").
std::array<const char*, 3> ComponentNames(const std::string& form);
// Does the colour follow a component that has both signs?
bool IsSigned(const ScreenRecord& state);
// Do limits of the desktop hold for this view: of points in use, and alike on both sides of a signed
// component?
bool HasDesktopLimits(const ScreenRecord& state);
// The size that both limits have where they are alike: the largest of both signs, rounded up to two decimals
// of the shown unit, or to two digits where it is smaller; nothing where no pair counts or all are 0.
double LikeLimits(ScreenWindow& window);
double LimitFactor(const ScreenRecord& state);  // from limits to what is shown of them: the length unit, or 1
double TwoDecimalsDown(double value);           // how limits are taken from the data
// Forces the next call to work.
void ForgetClasses();

// The colour of class k by the window's settings (negative: below zero), with OuterColor and two-colour mode.
Colour ClassColour(const ScreenWindow& window, int k);

// The colours of the bar, one a class: the negative table has rows 1 .. AnzKlassenNeg for class k -
// AnzKlassenNeg, the positive 1 .. AnzKlassenPos for class k. Filled by Calculate_RGB, read by
// Zeichne_ColorBar.
struct ColourTable {
    std::vector<float> Class, Colour;  // columns 5 and 6, from 1
};
// What classes and colours were last computed from.
struct ClassKey {
    std::uint64_t Stamp = 0;  // of the scene; 0 = nothing has been computed
    std::int16_t Pos = 0, Neg = 0;
    double Max = 0, Min = 0;
    Flag ShowX = kFalse, ShowY = kFalse, ShowZ = kFalse, Outside = kFalse;
    Colour OuterColor = 0;
    bool TwoColours = false;
    std::string ColorBased, CS_Type;
    std::uint64_t Calculation = 0;  // where points are coloured by its statistics
    bool operator==(const ClassKey&) const = default;
};
struct ToleranceRecord {
    ColourTable Negative, Positive;
    ClassKey Key;
    int Worst = 0;  // the pair in use that is farthest from its target, 0 = none; with DesktopDefaults.Fit
    std::vector<float> Measures;  // what colours the pairs in the place of their sizes; empty: the sizes do
};
inline ToleranceRecord Tolerance;
void Calculate_RGB(ScreenWindow& window);

}  // namespace corvinade::graphics
