// Results whose scale has gone to 0, or to what noise makes of 0.
#include "engine/collapse.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "core/job.h"
#include "core/notes.h"
#include "core/parameter_names.h"
#include "engine/calculation.h"
#include "fit/small_svd.h"
#include "fit/statistics.h"

namespace corvinade::engine {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// What a pair's image is to lie on.
using Place = std::function<Vec3(int)>;  // by pair, from 1

Place PlacesOf(const FitModel& model, const GatheredPoints& points, const Linearisation& at) {
    if (model.Mode != FitMode::Tool) return TargetPoint;
    return [&points, &at](int i) {
        Vec3 tip = TargetPoint(i);
        for (int axis = 1; axis <= 3; ++axis)
            for (int k = 1; k <= 3; ++k)
                tip(axis) -= points.Pose[At(3 * (axis - 1) + k - 1)][At(i - 1)] * at.Tool(k);
        return tip;
    };
}

// How far the points in use reach along each axis of the start system, and the target's along any.
struct Reach {
    std::array<double, 4> Start{};
    double Target = 0, LargestTarget = 0;

    explicit Reach(const Place& place = TargetPoint) {
        std::array<double, 4> least{}, most{}, leastTarget{}, mostTarget{};
        bool first = true;
        for (int i = 1; i <= Job.Pairs(); ++i) {
            const Vec3 p = StartPoint(i), q = place(i);
            if (!Used(i, 1) && !Used(i, 2) && !Used(i, 3)) continue;
            for (int k = 1; k <= 3; ++k) {
                least[At(k)] = first ? p(k) : std::min(least[At(k)], p(k));
                most[At(k)] = first ? p(k) : std::max(most[At(k)], p(k));
                leastTarget[At(k)] = first ? q(k) : std::min(leastTarget[At(k)], q(k));
                mostTarget[At(k)] = first ? q(k) : std::max(mostTarget[At(k)], q(k));
                LargestTarget = std::max(LargestTarget, std::fabs(q(k)));
            }
            first = false;
        }
        for (int k = 1; k <= 3; ++k) {
            Start[At(k)] = most[At(k)] - least[At(k)];
            Target = std::max(Target, mostTarget[At(k)] - leastTarget[At(k)]);
        }
    }
};

// Root mean squares about the middle, mm: of the start points in use, of their images, each as a whole and
// along its least direction, of the target points, and of the deviations. And the deviation that half of the
// points reach, which gross errors leave as it is.
struct Spreads {
    double Start = 0, LeastStart = 0, Image = 0, LeastImage = 0, Target = 0, Deviation = 0, HalfDeviation = 0;

    Spreads(const Mat3& M, const Place& place) {
        std::vector<Vec3> points, targets;
        std::vector<double> deviations;
        Vec3 middle, targetMiddle;
        double squares = 0;
        for (int i = 1; i <= Job.Pairs(); ++i) {
            bool any = false;
            double ofPoint = 0;
            for (int axis = 1; axis <= 3; ++axis) {
                if (!Used(i, axis)) continue;
                const std::size_t row = At(3 * (i - 1) + axis);
                any = true;
                ofPoint += Calculation.v[row] * Calculation.v[row];
            }
            squares += ofPoint;
            if (any) deviations.push_back(std::sqrt(ofPoint));
            if (any) points.push_back(StartPoint(i));
            if (any) targets.push_back(place(i));
        }
        const double count = std::max<double>(1, static_cast<double>(points.size()));
        for (const Vec3& p : points)
            for (int k = 1; k <= 3; ++k) middle(k) += p(k) / count;
        for (const Vec3& q : targets)
            for (int k = 1; k <= 3; ++k) targetMiddle(k) += q(k) / count;
        double targetSquares = 0;
        for (const Vec3& q : targets)
            for (int k = 1; k <= 3; ++k)
                targetSquares += (q(k) - targetMiddle(k)) * (q(k) - targetMiddle(k)) / count;
        Target = std::sqrt(targetSquares);
        Mat3 start;
        for (const Vec3& p : points)
            for (int i = 1; i <= 3; ++i)
                for (int j = 1; j <= 3; ++j) start(i, j) += (p(i) - middle(i)) * (p(j) - middle(j)) / count;
        Mat3 turned, image;
        for (int i = 1; i <= 3; ++i)
            for (int j = 1; j <= 3; ++j)
                for (int k = 1; k <= 3; ++k) turned(i, j) += M(i, k) * start(k, j);
        for (int i = 1; i <= 3; ++i)
            for (int j = 1; j <= 3; ++j)
                for (int k = 1; k <= 3; ++k) image(i, j) += turned(i, k) * M(j, k);
        Take(start, Start, LeastStart);
        Take(image, Image, LeastImage);
        Deviation = std::sqrt(squares / count);
        HalfDeviation = MiddleOf(std::move(deviations));
    }

private:
    static void Take(const Mat3& products, double& whole, double& least) {
        whole = std::sqrt(products(1, 1) + products(2, 2) + products(3, 3));
        least = std::sqrt(Decompose3(products).s(3));
    }
};

// Points (of the target, or their images) less than a thousandth as far apart as they should be, whose images
// are hardly farther apart than the deviations are long: their scale is what the noise makes of none. A fit
// of many parameters takes up most of the noise of few points, whatever the norm. Metres that were read as
// millimetres are a thousandth, and with gross errors among them deviate as much: they stay above.
constexpr double kSmall = 8e-4, kMostOfDeviation = 10;
bool Drowned(double apart, double image, double whole, const Spreads& spreads) {
    return apart <= kSmall * whole && image <= kMostOfDeviation * spreads.Deviation;
}

// The same of images, however far apart their targets are, as targets on one line can be: far nearer to each
// other than most deviations are long. Few gross errors among points of another unit do not make it so.
bool ImagesDrowned(const Spreads& spreads) {
    constexpr double kMostOfHalf = 0.1;
    return spreads.Image <= kSmall * spreads.Start && spreads.Image <= kMostOfHalf * spreads.HalfDeviation;
}

// Of tips that are all at one place.
bool TipsDrowned(const Spreads& spreads) {
    constexpr double kSmallScale = 0.1, kMostOfHalf = 3;
    return spreads.Image <= kSmallScale * spreads.Start &&
           spreads.Image <= kMostOfHalf * spreads.HalfDeviation;
}

}  // namespace

void NoteCollapsed(std::string text) {
    Job.Collapsed = kTrue;
    AddNote(NoteCode::CollapsedScale, std::move(text));
}

void NoteTooNear(const FitModel& model) {
    constexpr double kNear = 1e-70;    // mm
    constexpr int kMostPoints = 1000;  // many points that are measured at all are not so near
    if (Job.Pairs() > kMostPoints) return;
    const Reach reach;
    const double start = std::max({reach.Start[1], reach.Start[2], reach.Start[3]}), target = reach.Target;
    const auto near = [](double length) { return length > 0 && length < kNear; };
    if (!near(start) && !near(target)) return;
    for (int k = kRotX; k <= kRotZ; ++k)
        if (model.UnknownOf[At(k)] != 0) Job.LeftOpen[At(k)] = 1;
    AddNote(
        NoteCode::PointsTooNear,
        "The points in use are nearer to each other than 1e-70 mm: products of such lengths have no digits, "
        "so neither the rotation nor the deviations are to be trusted");
}

bool NoteCollapse(const FitModel& model, const GatheredPoints& points, const Linearisation& at) {
    constexpr double kNoUnits = 1e-9;  // two units of length are not so far apart
    constexpr double kNothing = 1e-9, kOnePlace = 1e-6, kRounding = 64 * 2.220446049250313e-16;
    const bool one = model.UnknownOf[kScaleXYZ] != 0;
    bool any = one;
    for (int k = kScaleX; k <= kScaleZ; ++k) any = any || model.UnknownOf[At(k)] != 0;
    if (!any) return false;
    const Place place = PlacesOf(model, points, at);
    const bool tool = model.Mode == FitMode::Tool;
    const Reach reach(place);
    const double start = std::max({reach.Start[1], reach.Start[2], reach.Start[3]});
    if (!(start > 0)) return false;
    Spreads spreads(at.M, place);
    // The residual of a distance is no way to the target point.
    if (model.Mode == FitMode::Distance) spreads.Deviation = spreads.HalfDeviation = 0;
    // Targets of another unit are near to each other too, and their images then fit them. Those of a shape
    // are wherever the points are carried to, and shrink with them.
    const bool images = IsTrue(Job.IsParaboloid) || spreads.Image <= kMostOfDeviation * spreads.HalfDeviation;
    const bool onePlace = reach.Target <= kRounding * reach.LargestTarget ||
                          reach.Target <= kNoUnits * start || (reach.Target <= kOnePlace * start && images);
    if (onePlace || Drowned(spreads.Target, spreads.Image, spreads.Start, spreads) ||
        (tool && TipsDrowned(spreads))) {
        NoteCollapsed(
            IsTrue(Job.IsParaboloid)
                ? "The scale has all but gone to 0: it carries all points to one place of the shape, which fits "
                  "whatever the points are, so this is no fit, and the rotation is arbitrary"
            : tool
                ? "The tips of the poses in use are all at one place, or all but so: a scale of 0 fits them whatever "
                  "the start points are, so this is no fit, and the rotation is arbitrary; hold the scale at 1, or "
                  "touch points that are apart"
                : "The target points in use are all at one place, or all but so: a scale of 0 fits them "
                  "whatever the start points are, so this is no fit, and the rotation is arbitrary");
        return true;
    }
    bool noted = false;
    for (int k = 1; k <= 3; ++k) {
        const int parameter = kScaleX + k - 1;
        if (!one && model.UnknownOf[At(parameter)] == 0) continue;
        const double image = std::fabs(ParameterValue(Job, parameter)) * reach.Start[At(k)];
        if (reach.Start[At(k)] <= kNothing * start || image > kNothing * reach.Target) continue;
        NoteCollapsed(std::string(ParameterName(one ? kScaleXYZ : parameter)) +
                      " has gone to 0: it carries points that are apart onto each other");
        noted = true;
        if (one) break;
    }
    if (!noted && ImagesDrowned(spreads)) {
        NoteCollapsed(
            "The scale has all but gone to 0: it carries the points onto places that are far nearer to each other "
            "than the deviations are long, so it is what the deviations make of none");
        noted = true;
    }
    constexpr double kFlat = 1e-2;
    if (!noted && !one && spreads.LeastStart > kFlat * spreads.Start &&
        Drowned(spreads.LeastImage, spreads.LeastImage, spreads.Image, spreads))
        NoteCollapsed(
            "The result carries the points all but into one plane, about as near to it as the deviations are "
            "long: along one direction the scale is what the noise makes of none");
    return false;
}

}  // namespace corvinade::engine
