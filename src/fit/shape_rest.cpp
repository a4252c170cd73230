// The place where the passes of the fit to a shape stand still.
#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "fit/held_directions.h"
#include "fit/shape_run.h"

namespace corvinade::fit {

namespace {

using Values = std::vector<double>;

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

// Along the directions that the shape holds: the way there from where the search began, and back.
struct HeldWay {
    const FloatingParameters& Floating;
    Values Begin;
    HeldDirections Directions;

    Values Shares(const Values& way) const {
        Values shares;
        shares.reserve(Directions.Held.size());
        for (const Values& direction : Directions.Held) shares.push_back(Dot(direction, way));
        return shares;
    }
    void Put(const Values& shares, Parameters& into) const {
        Values place = Begin;
        for (std::size_t k = 0; k < shares.size(); ++k) Subtract(place, -shares[k], Directions.Held[k]);
        Floating.Put(place, into);
    }
    // Where these parameters are.
    Values At(const Parameters& now) const { return Shares(Floating.Moved(Begin, Floating.Take(now))); }

    // Ways along which the sum falls by no more than its rounding are none.
    void DropIdleWays(Values& shares) const {
        for (std::size_t k = 0; k < shares.size(); ++k)
            if (!(shares[k] * shares[k] * Directions.Weight[k] > Directions.Rounding)) shares[k] = 0;
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

}  // namespace

PassEnd GoToRest(ShapeRun& run, bool& moved) {
    constexpr int kMostTries = 500, kPatience = 40;
    constexpr double kStill = 1e-13;  // of the cloud's size: the rounding of its coordinates
    constexpr double kAstray = 2;     // so many times the least s0
    moved = false;
    const FloatingParameters floating(run);
    // A shape of revolution does not hold the rotation about its axis: that stays where it is.
    const HeldWay held{floating, floating.Take(run.Now), FindHeldDirections(run, floating, kRotZ)};
    if (held.Directions.Held.empty()) return PassEnd::Done;
    Values place(held.Directions.Held.size()), former, formerMovement;
    double s0AtBegin = 0;
    Mixing mixing;
    BestPass best;
    for (int pass = 0, since = 0; pass < kMostTries && since < kPatience; ++pass, ++since) {
        held.Put(place, run.Now);
        const PassEnd end = Pass(run);
        if (end == PassEnd::Lost) return end;
        if (run.Listener.StopsOrRests()) {
            floating.Put(held.Begin, run.Now);  // what targets and residuals belong to
            return PassEnd::Done;
        }
        if (pass == 0) s0AtBegin = run.s0;
        const Values after = held.At(run.Now);
        Values movement = after;
        Subtract(movement, 1, place);
        const double size = Length(movement);
        if (end == PassEnd::Failed || !std::isfinite(size) || run.s0 > kAstray * best.s0) {
            // Out of reach of the last extrapolation: on from the best place, without what led away.
            if (best.Place.empty()) break;
            mixing.Clear();
            former.clear();
            place = best.Place;
            continue;
        }
        bool gotOn = false;
        best.Take(after, size, run.s0, gotOn);
        if (gotOn) since = 0;
        if (size <= kStill * floating.Size) break;
        if (!former.empty()) {
            Values step = place, change = movement;
            Subtract(step, 1, former);
            Subtract(change, 1, formerMovement);
            mixing.Add(std::move(step), std::move(change), place.size());
        }
        former = place;
        formerMovement = movement;
        mixing.Extrapolate(place, movement);
    }
    floating.Put(held.Begin, run.Now);
    if (best.Place.empty() || best.s0 > s0AtBegin) return PassEnd::Done;
    held.DropIdleWays(best.Place);
    moved = Length(best.Place) > 0;
    if (moved) held.Put(best.Place, run.Now);
    return PassEnd::Done;
}

}  // namespace corvinade::fit
