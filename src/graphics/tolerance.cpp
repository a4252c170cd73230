// Shown deviation, tolerance class and colour of the pairs.
#include "graphics/tolerance.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>

#include "core/desktop_defaults.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/units.h"
#include "engine/calculation_window.h"
#include "fit/angles.h"
#include "fit/vector.h"
#include "graphics/form_color_bar.h"
#include "graphics/point_trust.h"
#include "graphics/scene.h"
#include "graphics/view_values.h"

namespace corvinade::graphics {

namespace {

constexpr double kWholeTurn = 2 * 3.14159265358979, kQuarterTurn = 3.14159265358979 / 2;
constexpr double kAboveZero = 1e-10;  // so that no deviation at all is in the first class above zero
constexpr double kFarAway = 1e10;

constexpr Colour kRed = Rgb(255, 0, 0), kGreen = Rgb(0, 255, 0), kBlue = Rgb(0, 0, 255);
constexpr Colour kWhite = Rgb(255, 255, 255);
constexpr Colour kNeutral = Rgb(150, 150, 150);  // readable on black and on white

enum class Axes { Cartesian, Cylinder, Sphere };

Axes AxesOf(const ScreenRecord& state) {
    if (state.CS_Type == "CYL") return Axes::Cylinder;
    return state.CS_Type == "SPH" ? Axes::Sphere : Axes::Cartesian;
}

// Two azimuths on the same branch.
void SameBranch(double& first, double& second) {
    if (first > kQuarterTurn && second < -kQuarterTurn)
        second += kWholeTurn;
    else if (second > kQuarterTurn && first < -kQuarterTurn)
        first += kWholeTurn;
}

// The angle from the Z axis. PolarAngle loses half of its digits near the axis and is 0 along -Z too: the
// parts of a deviation there would not add up.
double SpherePolar(double x, double y, double z) {
    return std::atan2(Hypot2(x, y), z);
}

struct Shown {
    double X = 0, Y = 0, Z = 0;      // the shown vector, mm
    std::array<double, 3> Signed{};  // the three components themselves: lengths in mm, angles in rad
};

struct Switches {
    bool First, Second, Third;
};

Shown Cartesian(const Vec3& start, const Vec3& target, const Switches& show) {
    Shown shown;
    shown.Signed = {start(1) - target(1), start(2) - target(2), start(3) - target(3)};
    if (show.First) shown.X = shown.Signed[0];
    if (show.Second) shown.Y = shown.Signed[1];
    if (show.Third) shown.Z = shown.Signed[2];
    return shown;
}

Shown Cylinder(const Vec3& start, const Vec3& target, const Switches& show) {
    double phi = AzimuthAngle(start(1), start(2)), phiTarget = AzimuthAngle(target(1), target(2));
    const double radius = Hypot2(target(1), target(2));
    const double outwards = Hypot2(start(1), start(2)) - radius;
    const double sine = std::sin(phi), cosine = std::cos(phi);
    SameBranch(phi, phiTarget);
    Shown shown;
    shown.Signed = {outwards, phi - phiTarget, start(3) - target(3)};
    if (show.First) {
        shown.X += outwards * cosine;
        shown.Y += outwards * sine;
    }
    if (show.Second) {
        shown.X -= shown.Signed[1] * radius * sine;
        shown.Y += shown.Signed[1] * radius * cosine;
    }
    if (show.Third) shown.Z = shown.Signed[2];
    return shown;
}

// The parts along the unit vectors of the sphere at the start point; the arcs have the radii of the target's
// circle of latitude and of its sphere, so that the three add up to the whole deviation for small angles.
Shown Sphere(const Vec3& start, const Vec3& target, const Switches& show) {
    double phi = AzimuthAngle(start(1), start(2)), phiTarget = AzimuthAngle(target(1), target(2));
    const double theta = SpherePolar(start(1), start(2), start(3));
    const double thetaTarget = SpherePolar(target(1), target(2), target(3));
    const double radius = Hypot3(target(1), target(2), target(3));
    const double outwards = Hypot3(start(1), start(2), start(3)) - radius;
    const double sinPhi = std::sin(phi), cosPhi = std::cos(phi);
    const double sinTheta = std::sin(theta), cosTheta = std::cos(theta);
    SameBranch(phi, phiTarget);
    Shown shown;
    shown.Signed = {outwards, phi - phiTarget, theta - thetaTarget};
    if (show.First) {
        shown.X += outwards * sinTheta * cosPhi;
        shown.Y += outwards * sinTheta * sinPhi;
        shown.Z += outwards * cosTheta;
    }
    if (show.Second) {
        const double arc = shown.Signed[1] * radius * std::sin(thetaTarget);
        shown.X -= arc * sinPhi;
        shown.Y += arc * cosPhi;
    }
    if (show.Third) {
        const double arc = shown.Signed[2] * radius;
        shown.X += arc * cosTheta * cosPhi;
        shown.Y += arc * cosTheta * sinPhi;
        shown.Z -= arc * sinTheta;
    }
    return shown;
}

int SignedComponent(const std::string& colorBased) {
    if (colorBased == "x") return 0;
    if (colorBased == "y") return 1;
    return colorBased == "z" ? 2 : -1;
}

Shown ShownOf(Axes axes, const Vec3& start, const Vec3& target, const Switches& show) {
    return axes == Axes::Cartesian  ? Cartesian(start, target, show)
           : axes == Axes::Cylinder ? Cylinder(start, target, show)
                                    : Sphere(start, target, show);
}

bool IsNegative(const Shown& shown, int component) {
    return component >= 0 && shown.Signed[static_cast<std::size_t>(component)] < 0;
}

// Columns 4, 8, 9, 10.
void FillShown(const ScreenRecord& state) {
    const Axes axes = AxesOf(state);
    const Switches show = {IsTrue(state.showVeX), IsTrue(state.showVeY), IsTrue(state.showVeZ)};
    const bool none = !show.First && !show.Second && !show.Third;
    const int component = SignedComponent(state.ColorBased);
    for (int i = 1; i <= Scene.Ident; ++i) {
        const auto row = static_cast<std::size_t>(i);
        const Vec3 start = TransformedPoint(i), target = TargetPoint(i);
        const Shown shown = ShownOf(axes, start, target, show);
        double size = none ? Hypot3(start(1) - target(1), start(2) - target(2), start(3) - target(3))
                           : std::sqrt(shown.X * shown.X + shown.Y * shown.Y + shown.Z * shown.Z);
        if (IsNegative(shown, component)) size = -size;
        Scene.Points[kSceneVecX][row] = static_cast<float>(shown.X);
        Scene.Points[kSceneVecY][row] = static_cast<float>(shown.Y);
        Scene.Points[kSceneVecZ][row] = static_cast<float>(shown.Z);
        Scene.Points[kSceneSize][row] = static_cast<float>(size);
    }
}

// Where points are coloured by their accuracy or their tests, what is known of these.
void FillMeasures(const ScreenRecord& state) {
    Tolerance.Measures.clear();
    if (!ColoursByTrust(state.ColorBased)) return;
    Tolerance.Measures.assign(static_cast<std::size_t>(Scene.Ident) + 1, 0.0F);
    for (int i = 1; i <= Scene.Ident; ++i)
        Tolerance.Measures[static_cast<std::size_t>(i)] =
            static_cast<float>(TrustOfPair(state.ColorBased, i));
}

// What gives a pair its class.
float MeasureOf(std::size_t row) {
    return row < Tolerance.Measures.size() ? Tolerance.Measures[row] : Scene.Points[kSceneSize][row];
}

enum class Counting : std::uint8_t { All, AnyInUse, FullyInUse };

bool InUse(int pair) {
    return Used(pair, 1) || Used(pair, 2) || Used(pair, 3);
}

bool Counts(int pair, Counting which) {
    if (which == Counting::AnyInUse) return InUse(pair);
    return which == Counting::All || (Used(pair, 1) && Used(pair, 2) && Used(pair, 3));
}

// Which pairs limits come from. What tests and accuracies say holds for points out of use as well.
Counting CountingOf(const ScreenRecord& state) {
    if (IsTrue(state.ShowOnlyUsedComponent)) return Counting::FullyInUse;
    return HasDesktopLimits(state) ? Counting::AnyInUse : Counting::All;
}

// The sizes of column 4 over these pairs.
SizeRange SizesOf(Counting which) {
    SizeRange range{-kFarAway, kFarAway, false};
    for (int i = 1; i <= Scene.Ident; ++i) {
        const auto row = static_cast<std::size_t>(i);
        const double size = MeasureOf(row);
        if (!Counts(i, which) || !std::isfinite(size)) continue;
        range = {std::max(range.Largest, size), std::min(range.Smallest, size), true};
    }
    return range;
}

double RoundedUp(double size, double factor) {
    const double shown = size * factor;
    if (!(shown > 0) || !std::isfinite(shown)) return 0;
    const double step = std::min(0.01, std::pow(10, Int(std::log10(shown)) - 1));
    // What is a whole number of steps but for the last digits stays.
    return std::ceil(shown / step - 1e-6) * step / factor;
}

double LikeLimitsOf(const ScreenRecord& state) {
    SizeRange range = SizesOf(CountingOf(state));
    if (!range.Any) range = SizesOf(Counting::All);
    return range.Any ? RoundedUp(std::max(range.Largest, -range.Smallest), LimitFactor(state)) : 0;
}

// A signed component needs an end on each side of zero. Where one is missing, in the limits of an earlier
// view or of a length, deviations of that side would have the colour of none, or that of the other side.
bool NeedsLikeLimits(const ScreenRecord& state) {
    return IsSigned(state) && HasDesktopLimits(state) && !(state.Max > 0 && state.Min < 0);
}

// Limits that are both 0 are taken from the data; those that follow the data go as the buttons take them.
void FillLimits(ScreenWindow& window) {
    ScreenRecord& state = window.State;
    const bool open = window.SetMinMaxOnChange || (state.Max == 0 && state.Min == 0);
    if (HasDesktopLimits(state) && (open || NeedsLikeLimits(state))) {
        const double limit = LikeLimitsOf(state);
        if (limit > 0) {
            state.Max = limit;
            state.Min = IsSigned(state) ? -limit : 0;
        }
        return;
    }
    if (window.SetMinMaxOnChange) {
        const SizeRange range = SizesOf(CountingOf(state));
        if (!range.Any) return;
        const double factor = LimitFactor(state);
        state.Max = TwoDecimalsDown(range.Largest * factor) / factor;
        state.Min = TwoDecimalsDown(range.Smallest * factor) / factor;
    } else if (state.Max == 0 && state.Min == 0) {
        const SizeRange range = SizesOf(Counting::All);
        if (!range.Any) return;
        state.Max = TwoDecimalsDown(range.Largest);
        state.Min = TwoDecimalsDown(range.Smallest);
    }
}

// One class begins at zero and includes it; the side below has none for zero. So the two sides differ by 1 on
// purpose.
double ClassOf(float size, const ScreenRecord& state) {
    const auto d = static_cast<float>(size + kAboveZero);
    if (!std::isfinite(d)) return 0;  // coordinates that are no numbers have no class
    if (d > 0) return state.Max == 0 ? 0 : Int(state.AnzKlassenPos * static_cast<double>(d) / state.Max + 1);
    return state.Min == 0 ? 0 : Int(-static_cast<double>(d) * state.AnzKlassenNeg / state.Min);
}

void FillClasses(const ScreenRecord& state) {
    for (int i = 1; i <= Scene.Ident; ++i) {
        const auto row = static_cast<std::size_t>(i);
        Scene.Points[kSceneClass][row] = static_cast<float>(ClassOf(MeasureOf(row), state));
    }
}

int Component(double value) {
    return static_cast<int>(std::nearbyint(value));
}

// Blue, cyan, green, yellow, red. The halves do not quite join at -0.5 and 0.5: so wanted.
Colour ScaleColour(float t) {
    const double size = std::abs(static_cast<double>(t));
    if (t < -0.5F) return Rgb(0, Component(std::abs(t + 1.0) * 335), 255);
    if (t < 0) return Rgb(0, Component(255 - size * 200), Component(size / 0.5 * 255));
    if (t == 0) return kGreen;
    if (t <= 0.5F) return Rgb(Component(size / 0.5 * 255), Component(255 - size * 200), 0);
    return Rgb(255, Component(std::abs(t - 1.0) * 335), 0);
}

bool TwoColours(const ScreenWindow& window) {
    const bool bar = window.OwnLook ? window.OwnLook->ColorBar : Main.MenüAnsichtToleranzenColorbar.Checked;
    return bar && IsTrue(window.State.BinärModus);
}

Colour ColourOf(const ScreenWindow& window, double k) {
    const ScreenRecord& state = window.State;
    if (TwoColours(window)) {
        const bool odd = k / 2 != Int(k / 2);
        return odd == (k >= 0) ? kWhite : kGreen;
    }
    if (k > state.AnzKlassenPos || k < -state.AnzKlassenNeg) {
        if (IsTrue(state.AusserhalbTol)) return state.OuterColor & 0xFFFFFF;
        return k > 0 ? kRed : kBlue;
    }
    if (k == 0) return kGreen;
    return ScaleColour(static_cast<float>(k / (k < 0 ? state.AnzKlassenNeg : state.AnzKlassenPos)));
}

// Points that have no deviation in the fit: without a partner, or with no coordinate in use. The target of
// such a pair goes with it.
bool IsNeutral(int row) {
    if (row > 2 * Scene.Ident) return true;
    return !InUse(row > Scene.Ident ? row - Scene.Ident : row);
}

void FindWorst() {
    Tolerance.Worst = 0;
    if (!DesktopDefaults.Fit) return;
    float largest = -1;
    for (int i = 1; i <= Scene.Ident; ++i) {
        const float size = std::abs(MeasureOf(static_cast<std::size_t>(i)));
        if (!(size > largest) || !InUse(i)) continue;
        largest = size;
        Tolerance.Worst = i;
    }
}

void FillBar(const ScreenWindow& window, int count, int below, ColourTable& table) {
    count = std::max(count, 0);
    table.Class.assign(static_cast<std::size_t>(count) + 1, 0.0F);
    table.Colour.assign(static_cast<std::size_t>(count) + 1, 0.0F);
    for (int k = 1; k <= count; ++k) {
        const auto row = static_cast<std::size_t>(k);
        table.Class[row] = static_cast<float>(k - below);
        table.Colour[row] = static_cast<float>(ColourOf(window, k - below));
    }
}

ClassKey KeyOf(const ScreenWindow& window) {
    const ScreenRecord& state = window.State;
    return {Scene.Stamp,         state.AnzKlassenPos,
            state.AnzKlassenNeg, state.Max,
            state.Min,           state.showVeX,
            state.showVeY,       state.showVeZ,
            state.AusserhalbTol, state.OuterColor,
            TwoColours(window),  state.ColorBased,
            state.CS_Type,       ColoursByTrust(state.ColorBased) ? CalculationWindow.Started : 0};
}

}  // namespace

bool IsNegativeDeviation(const ScreenRecord& state, const Vec3& transformed, const Vec3& target) {
    const Shown shown = ShownOf(AxesOf(state), transformed, target, {false, false, false});
    return IsNegative(shown, SignedComponent(state.ColorBased));
}

void ForgetClasses() {
    Tolerance.Key = ClassKey{};
}

void Transform_dev_to_klasse(ScreenWindow& window) {
    ScreenRecord& state = window.State;
    const bool limitsOpen = (state.Max == 0 && state.Min == 0) || NeedsLikeLimits(state);
    if (!limitsOpen && Scene.Stamp != 0 && KeyOf(window) == Tolerance.Key) return;
    FillShown(state);
    FillMeasures(state);
    const double max = state.Max, min = state.Min;
    FillLimits(window);
    FillClasses(state);
    FindWorst();
    Calculate_RGB(window);
    Tolerance.Key = KeyOf(window);
    Scene.PlottedFor = nullptr;  // column 12 may depend on the classes
    if ((state.Max != max || state.Min != min) && &window == Screens().Active) ColorBar_ShowLimits(window);
}

SizeRange ShownSizes(ScreenWindow& window) {
    SceneForWindow(window);
    return SizesOf(CountingOf(window.State));
}

std::array<const char*, 3> ComponentNames(const std::string& form) {
    if (form == "CYL") return {"R", "Phi", "H"};
    if (form == "SPH") return {"Rho", "Phi", "Theta"};
    return {"x", "y", "z"};
}

bool IsSigned(const ScreenRecord& state) {
    return SignedComponent(state.ColorBased) >= 0;
}

bool HasDesktopLimits(const ScreenRecord& state) {
    return DesktopDefaults.ColorLimits && !ColoursByTrust(state.ColorBased);
}

double LikeLimits(ScreenWindow& window) {
    SceneForWindow(window);
    return LikeLimitsOf(window.State);
}

double LimitFactor(const ScreenRecord& state) {
    return state.ColorBased == kByStandardized ? 1 : Units.LengthFactor;
}

double TwoDecimalsDown(double value) {
    return Int(value * 100) / 100;
}

Colour ClassColour(const ScreenWindow& window, int k) {
    return ColourOf(window, k);
}

void Calculate_RGB(ScreenWindow& window) {
    const ScreenRecord& state = window.State;
    // One colour a class; what lies beyond either end is one class more there.
    const int below = std::max<int>(state.AnzKlassenNeg, 0) + 1;
    const int above = std::max<int>(state.AnzKlassenPos, 0) + 1;
    std::vector<float> colours(static_cast<std::size_t>(below + above) + 1);
    for (int k = -below; k <= above; ++k)
        colours[static_cast<std::size_t>(k + below)] = static_cast<float>(ColourOf(window, k));
    const bool twoColours = TwoColours(window);
    std::vector<float>& column = Scene.Points[kSceneColour];
    for (int i = 1; i <= Scene.Rows; ++i) {
        const auto row = static_cast<std::size_t>(i);
        const double k = Scene.Points[kSceneClass][row];
        column[row] = DesktopDefaults.NeutralColor && IsNeutral(i) ? static_cast<float>(kNeutral)
                      : twoColours
                          ? static_cast<float>(ColourOf(window, k))
                          : colours[static_cast<std::size_t>(std::clamp<double>(k, -below, above) + below)];
    }
    FillBar(window, state.AnzKlassenNeg, state.AnzKlassenNeg, Tolerance.Negative);
    FillBar(window, state.AnzKlassenPos, 0, Tolerance.Positive);
    Scene.PaintStale = true;
}

}  // namespace corvinade::graphics
