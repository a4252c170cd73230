// The place where the passes of the fit to a shape stand still.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "core/job.h"
#include "core/run.h"
#include "engine/angles.h"
#include "engine/parameter_kind.h"
#include "paraboloid/paraboloid.h"
#include "paraboloid/shape_passes.h"

namespace {

using Values = std::vector<double>;

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

double Dot(const Values& a, const Values& b) {
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
    return sum;
}

double Length(const Values& a) {
    return std::sqrt(Dot(a, a));
}

// a - factor b
void Subtract(Values& a, double factor, const Values& b) {
    for (std::size_t i = 0; i < a.size(); ++i) a[i] -= factor * b[i];
}

// The parameters that float, each as the millimetres that it moves a point at the cloud's edge by.
struct FloatingParameters {
    std::vector<int> Numbers;
    double Size = 1;  // of the cloud, mm

    explicit FloatingParameters(const NormFit& fit) {
        for (int k = kTraX; k <= kAngleZtoXY; ++k)
            if (fit.ParamText[At(k)] == kFloat) Numbers.push_back(k);
        double largest = 0;
        for (const LaneArray& column : fit.Points.Start)
            for (const double value : column) largest = std::max(largest, std::fabs(value));
        if (largest > 0) Size = largest;
    }
    double Factor(int parameter) const { return parameter <= kTraZ ? 1 : Size; }
    Values Take() const {
        Values values;
        values.reserve(Numbers.size());
        for (const int k : Numbers) values.push_back(ParameterValue(Job, k) * Factor(k));
        return values;
    }
    void Put(const Values& values) const {
        for (std::size_t i = 0; i < Numbers.size(); ++i) {
            const int k = Numbers[i];
            ParameterValue(Job, k) = values[i] / Factor(k);
            if (k == kScaleXYZ) Job.ScaleX = Job.ScaleY = Job.ScaleZ = Job.ScaleXYZ;
        }
    }
    // How far a pass has moved the parameters; angles the short way round.
    Values Moved(const Values& from, const Values& to) const {
        Values moved(from.size());
        for (std::size_t i = 0; i < from.size(); ++i) {
            moved[i] = to[i] - from[i];
            if (KindOf(Numbers[i]) == ParameterKind::Angle) moved[i] = Size * WrapAngle(moved[i] / Size);
        }
        return moved;
    }
};

// What the last passes have shown of how the movement depends on the parameters.
struct Mixing {
    std::vector<Values> Steps, Changes;  // of the parameters, and of the movement with them

    void Clear() {
        Steps.clear();
        Changes.clear();
    }
    void Add(Values step, Values change, std::size_t most) {
        if (Steps.size() == most) {
            Steps.erase(Steps.begin());
            Changes.erase(Changes.begin());
        }
        Steps.push_back(std::move(step));
        Changes.push_back(std::move(change));
    }

    // Where the movement would vanish if it were linear in the parameters: the part of it that the changes
    // explain is taken out, the newest change first, and the steps that belong to that part are taken back.
    void Extrapolate(Values& place, Values movement) const {
        constexpr double kDependent = 1e-10;
        std::vector<Values> directions, steps;
        for (std::size_t k = Steps.size(); k-- > 0;) {
            Values direction = Changes[k], step = Steps[k];
            const double whole = Length(direction);
            for (int twice = 0; twice < 2; ++twice)
                for (std::size_t j = 0; j < directions.size(); ++j) {
                    const double share = Dot(directions[j], direction);
                    Subtract(direction, share, directions[j]);
                    Subtract(step, share, steps[j]);
                }
            const double rest = Length(direction);
            if (!(rest > kDependent * whole)) continue;
            for (double& value : direction) value /= rest;
            for (double& value : step) value /= rest;
            const double share = Dot(direction, movement);
            Subtract(movement, share, direction);
            Subtract(place, share, step);
            directions.push_back(std::move(direction));
            steps.push_back(std::move(step));
        }
        Subtract(place, -1, movement);
    }
};

// The pass that has come nearest so far: that of the least s0 and, where these are the same, of the least
// movement.
struct BestPass {
    Values Place;  // behind it
    double Movement = std::numeric_limits<double>::infinity(), s0 = Movement;

    // Takes a pass that is nearer. `gotOn` tells whether by more than a trifle.
    void Take(const Values& place, double movement, double s0New, bool& gotOn) {
        constexpr double kSame = 1e-9, kTrifle = 1e-5;
        const bool same = std::fabs(s0New - s0) <= kSame * s0;
        gotOn = s0New < s0 * (1 - kTrifle) || (same && movement < Movement / 2);
        if (same ? movement >= Movement : s0New > s0) return;
        Place = place;
        Movement = movement;
        s0 = s0New;
    }
};

bool Stopped() {
    return IsTrue(Run.StopRequested) || IsTrue(ParaboloidRun.ParaStopRequested);
}

}  // namespace

PassEnd GoToRest(ShapePasses& passes) {
    constexpr int kMostTries = 500, kPatience = 40;
    constexpr double kStill = 1e-13;  // of the cloud's size: the rounding of its coordinates
    constexpr double kAstray = 2;     // so many times the least s0
    const FloatingParameters floating(passes.Fit);
    const Values begin = floating.Take();
    Values place = begin, former, formerMovement;
    double s0AtBegin = 0;
    Mixing mixing;
    BestPass best;
    for (int pass = 0, since = 0; pass < kMostTries && since < kPatience; ++pass, ++since) {
        floating.Put(place);
        const PassEnd end = passes.Pass();
        if (end == PassEnd::Lost) return end;
        if (Stopped()) {
            floating.Put(begin);  // what targets and residuals belong to
            return PassEnd::Done;
        }
        if (pass == 0) s0AtBegin = passes.s0;
        const Values after = floating.Take();
        const Values movement = floating.Moved(place, after);
        const double size = Length(movement);
        if (end == PassEnd::Failed || !std::isfinite(size) || passes.s0 > kAstray * best.s0) {
            // Out of reach of the last extrapolation: on from the best place, without what led away.
            if (best.Place.empty()) break;
            mixing.Clear();
            former.clear();
            place = best.Place;
            continue;
        }
        bool gotOn = false;
        best.Take(after, size, passes.s0, gotOn);
        if (gotOn) since = 0;
        if (size <= kStill * floating.Size) break;
        if (!former.empty())
            mixing.Add(floating.Moved(former, place), floating.Moved(formerMovement, movement),
                       floating.Numbers.size());
        former = place;
        formerMovement = movement;
        mixing.Extrapolate(place, movement);
    }
    const bool better = !best.Place.empty() && best.s0 <= s0AtBegin;
    floating.Put(better ? best.Place : begin);
    return PassEnd::Done;
}
