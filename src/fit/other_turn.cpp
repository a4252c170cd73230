// A second place for points on one line, where held values leave them two.
#include "fit/other_turn.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <utility>

#include "fit/chain.h"
#include "fit/chain_search.h"
#include "fit/matrix.h"
#include "fit/turn_forms.h"
#include "fit/turns_left.h"
#include "fit/vector.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

constexpr double kTurn = 2 * std::numbers::pi;

using Angles = std::vector<int>;  // 1 to 3

// p turned about the unit vector w by t, less p (O. Rodrigues).
Vec3 Moved(const Vec3& w, double t, const Vec3& p) {
    Vec3 once, twice;
    VecCross(w, p, once);
    VecCross(w, once, twice);
    Vec3 moved;
    for (int k = 1; k <= 3; ++k) moved(k) = std::sin(t) * once(k) + (1 - std::cos(t)) * twice(k);
    return moved;
}

// The result turned about an axis.
class Road {
public:
    Road(const TurnPairs& pairs, const JudgedResult& result, const Vec3& w)
        : pairs_(pairs),
          model_(result.Model),
          shown_(result.Values[kRotX], result.Values[kRotY], result.Values[kRotZ]),
          followers_(pairs, model_, result.Still),
          w_(w) {
        RotMatrixXYZ(shown_(1), shown_(2), shown_(3), R_);
    }

    TurnFollowers::Rest RestAt(double t) const {
        std::vector<double> column;
        const Vec3 ofMiddle = Moved(w_, t, pairs_.Arm);
        for (const TurnPair& pair : pairs_.List) {
            const Vec3 moved = Moved(w_, t, pair.Image);
            for (int row = 1; row <= 3; ++row)
                if (pair.InUse[At(row)])
                    column.push_back(moved(row) + pair.Off(row) +
                                     (Floats(kTraX + row - 1) ? 0 : ofMiddle(row)));
        }
        return followers_.Left(std::move(column));
    }
    double SumAt(double t) const {
        const std::vector<double> left = RestAt(t).Column;
        return TurnDot(left, left);
    }

    // The angles there, in the form whose angles of these are nearest to those of the result.
    Vec3 AnglesAt(double t, const Angles& held) const {
        const Vec3 angles = AnglesOf(TurnedBy(t));
        const Vec3 other(angles(1) + kTurn / 2, kTurn / 2 - angles(2), angles(3) + kTurn / 2);
        return OffSquares(other, held) < OffSquares(angles, held) ? other : angles;
    }
    // What the sum of squares would be where the points as a whole turn on, to keep the held angles as well.
    double SumThatKeeps(double t, const Angles& held, double images) const {
        return SumAt(t) + images * images * OffSquares(AnglesAt(t, held), held);
    }
    // Angle k there, of the form whose Rot y is no more than a right angle, is that of the result.
    bool ShowsAt(double t, int k) const {
        constexpr double kSame = 1e-6;
        return std::fabs(Off(AnglesOf(TurnedBy(t)), k)) < kSame;
    }
    // cos Rot y there: where it is 0, Rot x and Rot z turn about one axis, and either may be any angle.
    double FromPole(double t) const {
        const Mat3 R = TurnedBy(t);
        return std::hypot(R(1, 1), R(2, 1));
    }
    double Off(const Vec3& angles, int k) const { return std::remainder(angles(k) - shown_(k), kTurn); }

    double OffSquares(const Vec3& angles, const Angles& held) const {
        double squares = 0;
        for (const int k : held) squares += Off(angles, k) * Off(angles, k);
        return squares;
    }

    bool Floats(int parameter) const { return model_.UnknownOf[At(parameter)] != 0; }

    // What is another there, by more than so much.
    std::array<bool, kParameterEnd> MovesTo(double t, const Angles& held, double least) const {
        constexpr double kLeastAngle = 1e-4;
        std::array<bool, kParameterEnd> moves{};
        const Vec3 angles = AnglesAt(t, held), ofMiddle = Moved(w_, t, pairs_.Arm);
        const TurnFollowers::Rest rest = RestAt(t);
        for (int k = 1; k <= 3; ++k) {
            moves[At(kRotX + k - 1)] = Floats(kRotX + k - 1) && std::fabs(Off(angles, k)) > kLeastAngle;
            moves[At(kTraX + k - 1)] =
                Floats(kTraX + k - 1) && std::fabs(rest.Translation(k) + ofMiddle(k)) > least;
            moves[At(kRvecX + k - 1)] = model_.ToolFloats && std::fabs(rest.Tool(k)) > least;
        }
        return moves;
    }

private:
    Mat3 TurnedBy(double t) const {
        Mat3 turn;
        for (int j = 1; j <= 3; ++j) {
            const Vec3 moved = Moved(w_, t, TurnUnit(j));
            for (int i = 1; i <= 3; ++i) turn(i, j) = moved(i) + (i == j ? 1 : 0);
        }
        return MatrixProduct(turn, R_);
    }

    const TurnPairs& pairs_;
    const FitModel& model_;
    Vec3 shown_;  // the angles of the result
    TurnFollowers followers_;
    Vec3 w_;
    Mat3 R_;
};

// The points, or their targets, lie along w: a turn about it moves them by a tenth of what others do.
bool LieAlong(const Vec3& w, const TurnForms& forms) {
    constexpr double kShort = 0.01;  // squares
    const auto shortOf = [&w](const Mat3& form) {
        double along = 0;
        for (int j = 1; j <= 3; ++j)
            for (int k = 1; k <= 3; ++k) along += w(j) * form(j, k) * w(k);
        return along < kShort * (form(1, 1) + form(2, 2) + form(3, 3));
    };
    return shortOf(forms.Images) || shortOf(forms.Targets);
}

constexpr int kSteps = 720;
constexpr double kSamePlace = 0.015;  // rad

bool IsAway(double t) {
    return std::fabs(std::remainder(t, kTurn)) > kSamePlace;
}

// Turns about which such a sum rises on both sides, by thirds.
std::vector<double> LeastTurns(const std::function<double(double t)>& sumAt) {
    constexpr int kThirds = 60;
    std::vector<double> sums, found;
    for (int i = 0; i < kSteps; ++i) sums.push_back(sumAt(kTurn * i / kSteps));
    for (int i = 0; i < kSteps; ++i) {
        const double here = sums[At(i)];
        if (here > sums[At((i + 1) % kSteps)] || here >= sums[At((i + kSteps - 1) % kSteps)]) continue;
        double a = kTurn * (i - 1) / kSteps, b = kTurn * (i + 1) / kSteps;
        for (int third = 0; third < kThirds; ++third) {
            const double left = a + (b - a) / 3, right = b - (b - a) / 3;
            const bool falls = sumAt(left) >= sumAt(right);
            (falls ? a : b) = falls ? left : right;
        }
        if (IsAway(a)) found.push_back(a);
    }
    return found;
}

constexpr double kPole = 1e-9;

// Where the turns are looked at: all round in even steps, and closer and closer at the poles of the angles.
// At a distance d from one, Rot x and Rot z go half a turn within d.
std::vector<double> StepsOf(const std::vector<double>& poles, const Road& road) {
    constexpr double kCloser = 1.2;
    std::vector<double> steps;
    for (int i = 0; i <= kSteps; ++i) steps.push_back(kTurn * i / kSteps);
    for (const double pole : poles) {
        steps.push_back(pole);
        for (double u = 2 * kTurn / kSteps; u > std::max(road.FromPole(pole), kPole) / 20; u /= kCloser)
            for (const double t : {pole - u, pole + u})
                if (t > 0 && t < kTurn) steps.push_back(t);
    }
    std::sort(steps.begin(), steps.end());
    return steps;
}

// Turns that keep a held angle, by a change of sign and halving.
std::vector<double> TurnsThatKeep(const Road& road, int k, bool asShown) {
    constexpr double kNear = 0.5, kNearPole = 0.05;
    constexpr int kHalvings = 50;
    const auto off = [&](double t) { return road.Off(road.AnglesAt(t, {k}), k); };
    std::vector<double> found, poles;
    if (k != 2) poles = LeastTurns([&](double t) { return road.FromPole(t); });
    std::erase_if(poles, [&](double t) { return road.FromPole(t) > kNearPole; });
    for (const double pole : poles)
        if (road.FromPole(pole) < kPole) found.push_back(pole);
    const std::vector<double> steps = StepsOf(poles, road);
    double before = off(0);
    for (std::size_t i = 1; i < steps.size(); ++i) {
        double a = steps[i - 1], b = steps[i];
        const double here = off(b);
        if (std::fabs(before) < kNear && std::fabs(here) < kNear && (before < 0) != (here < 0)) {
            const bool below = before < 0;
            for (int halving = 0; halving < kHalvings; ++halving) {
                const double middle = (a + b) / 2;
                ((off(middle) < 0) == below ? a : b) = middle;
            }
            if (IsAway(a) && (!asShown || road.ShowsAt(a, k))) found.push_back(a);
        }
        before = here;
    }
    return found;
}

}  // namespace

OtherTurn FindOtherTurn(const JudgedResult& result, bool asShown) {
    constexpr int kSample = 256;
    constexpr double kTimes = 2, kNoises = 25, kMoved = 10;
    OtherTurn other;
    const FitModel& model = result.Model;
    if (model.Mode == FitMode::Distance) return other;
    FitModel free = model;
    int held = 0;
    Angles angles;
    for (int k = kTraX; k <= kRotZ; ++k) {
        if (model.UnknownOf[At(k)] != 0) continue;
        ++held;
        if (k >= kRotX) angles.push_back(k - kRotX + 1);
        free.UnknownOf[At(k)] = ++free.Unknowns;
    }
    if (held == 0) return other;
    const TurnPairs pairs = [&] {
        TurnPairs all(result, std::max(1, result.Points.Count / kSample));
        if (result.Robust) all.LeaveOutGrossErrors(model.Unknowns);
        return all;
    }();
    const JudgedResult ifFree = {result.Points, free,          result.At,   result.Values,
                                 result.InUse,  result.Robust, result.Still};
    for (const LooseTurn& loose : FindTurnsLeft(ifFree)) {
        if (!LieAlong(loose.Axis, TurnForms(pairs, free, result.Still))) continue;
        const Road road(pairs, result, loose.Axis);
        const TurnForms forms(pairs, model, result.Still);
        const double most = kTimes * road.SumAt(0) + kNoises * forms.Noise * forms.Noise;
        const auto sumAt = [&](double t) { return road.SumThatKeeps(t, angles, forms.Image); };
        std::vector<double> turns;
        if (angles.size() == 1)
            for (const double t : TurnsThatKeep(road, angles.front(), asShown))
                if (road.SumAt(t) <= most) turns.push_back(t);
        if (angles.size() != 1 || held > 1)
            for (const double t : LeastTurns(sumAt))
                if (sumAt(t) <= most) turns.push_back(t);
        for (const double t : turns) {
            other.Moves = road.MovesTo(t, angles, kMoved * forms.Noise);
            if (std::find(other.Moves.begin(), other.Moves.end(), true) == other.Moves.end()) continue;
            other.Angle = std::fabs(std::remainder(t, kTurn));
            return other;
        }
    }
    return other;
}

}  // namespace corvinade::fit
