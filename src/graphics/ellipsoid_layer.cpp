// The layer of the ellipsoids.
//
// A picture is parallel, so the outline of an ellipsoid with semi-axes a1, a2, a3 is the ellipse of
// S = sum u u' over their pictures u: the points L (cos t, sin t) with L L' = S.
#include <array>
#include <charconv>
#include <cmath>

#include "core/job.h"
#include "core/numbers.h"
#include "core/settings.h"
#include "fit/require.h"
#include "graphics/ellipsoids.h"
#include "graphics/point_trust.h"
#include "graphics/scene.h"
#include "graphics/strokes.h"

namespace corvinade::graphics {

namespace {

constexpr int kSegments = 36;
constexpr double kTurn = 2 * 3.14159265358979;
constexpr Colour kColour = Rgb(230, 120, 20);

void DrawOutline(ScreenWindow& window, const PicturePoint& centre, const std::array<PicturePoint, 3>& axes) {
    double xx = 0, xy = 0, yy = 0;
    for (const PicturePoint& u : axes) {
        xx += u.X * u.X;
        xy += u.X * u.Y;
        yy += u.Y * u.Y;
    }
    const double l11 = std::sqrt(xx), l21 = l11 > 0 ? xy / l11 : 0;
    const double l22 = std::sqrt(std::fmax(0, yy - l21 * l21));
    PicturePoint before = {centre.X + l11, centre.Y + l21};
    for (int k = 1; k <= kSegments; ++k) {
        const double t = kTurn * k / kSegments;
        const PicturePoint next = {centre.X + l11 * std::cos(t),
                                   centre.Y + l21 * std::cos(t) + l22 * std::sin(t)};
        DrawStroke(window.Screen, before, next, kColour, 1);
        before = next;
    }
    for (const PicturePoint& u : axes)
        DrawStroke(window.Screen, {centre.X - u.X, centre.Y - u.Y}, {centre.X + u.X, centre.Y + u.Y}, kColour,
                   1);
}

}  // namespace

const EllipsoidsRecord& EllipsoidSettings() {
    if (Ellipsoids.Read) return Ellipsoids;
    Ellipsoids.Read = true;
    Ellipsoids.Show = FindIniWert("ShowEllipsoids").value_or("") == "True";
    double factor = 0;
    if (const auto text = FindIniWert("EllipsoidFactor");
        text && TextToNumber(*text, '.', factor) && factor > 0 && factor <= kLargestEllipsoidFactor)
        Ellipsoids.Factor = factor;
    return Ellipsoids;
}

void StoreEllipsoidSettings(bool show, double factor) {
    Require(factor > 0 && factor <= kLargestEllipsoidFactor);
    const EllipsoidsRecord before = EllipsoidSettings();
    if (before.Show == show && before.Factor == factor) return;
    Ellipsoids.Show = show;
    Ellipsoids.Factor = factor;
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), factor).ptr;
    IniWerteSchreiben({{"GraphicsSettings", "ShowEllipsoids", show ? "True" : "False"},
                       {"GraphicsSettings", "EllipsoidFactor", std::string(digits.data(), end)}});
}

void DrawEllipsoids(ScreenWindow& window) {
    const EllipsoidsRecord& settings = EllipsoidSettings();
    if (!settings.Show) return;
    const AdjustmentStatistics* s = StatisticsForPictures();
    if (s == nullptr || !std::isfinite(s->VarianceFactor) || !std::isfinite(s->EllipsoidFactor)) return;
    const int points = Scene.Ident + Scene.MCSOnly;
    for (int i = 1; i <= points && i <= Job.Start.Count() && i <= Job.Transformed.Count(); ++i) {
        const int row = i <= Scene.Ident ? i : Scene.Ident + i;
        if (row > Scene.Rows || !IsSeen(row)) continue;
        const Ellipsoid ellipsoid =
            EllipsoidOf(CovarianceOfTransformed(*s, StartPoint(i)), settings.Factor * s->EllipsoidFactor);
        const Vec3 p = TransformedPoint(i);
        const PicturePoint centre = PlaceOf(window, p);
        std::array<PicturePoint, 3> axes;
        for (int k = 1; k <= 3; ++k) {
            Vec3 end = p;
            for (int axis = 1; axis <= 3; ++axis)
                end(axis) += ellipsoid.SemiAxes(k) * ellipsoid.Directions(k, axis);
            const PicturePoint place = PlaceOf(window, end);
            axes[static_cast<std::size_t>(k - 1)] = {place.X - centre.X, place.Y - centre.Y};
        }
        DrawOutline(window, centre, axes);
    }
}

}  // namespace corvinade::graphics
