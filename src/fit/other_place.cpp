// A second result for flat points, where held values and floating scales leave them one.
#include "fit/other_place.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

#include "fit/best_transformation.h"
#include "fit/chain_search.h"
#include "fit/equal_forms.h"
#include "fit/matrix.h"
#include "fit/moments.h"
#include "fit/small_svd.h"
#include "fit/statistics.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

bool Floats(const FitModel& model, int from, int to) {
    return std::any_of(&model.UnknownOf[At(from)], &model.UnknownOf[At(to)] + 1,
                       [](int unknown) { return unknown != 0; });
}

bool Applies(const FitModel& model) {
    if (model.Mode != FitMode::Coincide || !Floats(model, kScaleX, kScaleZ)) return false;
    if (!Floats(model, kRotX, kRotZ)) return false;
    return std::any_of(&model.UnknownOf[kTraX], &model.UnknownOf[kScaleZ] + 1,
                       [](int unknown) { return unknown == 0; });
}

// The coordinates in use, and how well the result fits them.
struct InUse {
    Column Weights;       // three a pair
    double Sum = 0;       // of squares, mm^2
    double Noise = 0;     // of a coordinate, mm
    double Rounding = 0;  // of one deviation, mm

    explicit InUse(const JudgedResult& result) : Weights(At(3 * result.Points.Count) + 1) {
        const GatheredPoints& points = result.Points;
        constexpr double kGross = 20, kDigits = 64 * 2.220446049250313e-16;
        std::vector<double> deviations;
        deviations.reserve(At(points.Count));
        double largest = 0;
        for (int i = 0; i < points.Count; ++i) deviations.push_back(DeviationOf(result, i, largest));
        Rounding = kDigits * largest;
        const double most =
            result.Robust ? kGross * MiddleDeviation(deviations, result.Model.Unknowns) + Rounding : HUGE_VAL;
        int observations = 0;
        for (int i = 0; i < points.Count; ++i) {
            if (!(deviations[At(i)] <= most)) continue;
            Sum += deviations[At(i)] * deviations[At(i)];
            for (int axis = 1; axis <= 3; ++axis) {
                if (!result.Used(i, axis)) continue;
                Weights[At(3 * i + axis)] = 1;
                ++observations;
            }
        }
        const int spare = observations - result.Model.Unknowns;
        Noise = std::max(spare > 0 ? std::sqrt(Sum / spare) : 0, Rounding);
    }

private:
    static double DeviationOf(const JudgedResult& result, int i, double& largest) {
        const GatheredPoints& points = result.Points;
        const Linearisation& at = result.At;
        double squares = 0;
        for (int axis = 1; axis <= 3; ++axis) {
            if (!result.Used(i, axis)) continue;
            const double target = points.Target[At(axis - 1)][At(i)];
            double off = at.Shift(axis) - target;
            for (int j = 1; j <= 3; ++j) off += at.M(axis, j) * points.Start[At(j - 1)][At(i)];
            squares += off * off;
            largest = std::max(largest, std::fabs(target + points.TargetCentre(axis)));
        }
        return std::sqrt(squares);
    }
};

// Along one direction at least the start points are within a tenth of their extent.
bool IsFlat(const PointMoments& moments) {
    constexpr double kFlat = 0.01;  // squares
    Mat3 spread;
    for (int axis = 1; axis <= 3; ++axis) {
        const Mat3 products = StartProducts(moments, axis);
        for (int j = 1; j <= 3; ++j)
            for (int k = 1; k <= 3; ++k) spread(j, k) += products(j, k);
    }
    const auto svd = Decompose3(spread);
    return svd.s(3) < kFlat * svd.s(1);
}

// Each start with every choice of signs of the scales that float.
std::vector<ChainValues> WithSigns(const std::vector<ChainValues>& starts, const ChainChoice& choice) {
    std::vector<ChainValues> all;
    for (const ChainValues& start : starts)
        for (int signs = 0; signs < 8; ++signs) {
            ChainValues signedStart = start;
            bool possible = true;
            for (int k = 0; k < 3; ++k) {
                if ((signs >> k & 1) == 0) continue;
                possible = possible && choice.Floats[At(kScaleX + k)];
                signedStart.Value[At(kScaleX + k)] *= -1;
            }
            if (possible) all.push_back(signedStart);
        }
    return all;
}

double LargestOf(const Mat3& M) {
    double largest = 0;
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column) largest = std::max(largest, std::fabs(M(row, column)));
    return largest;
}

double Between(const Mat3& a, const Mat3& b) {
    Mat3 change;
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column) change(row, column) = a(row, column) - b(row, column);
    return LargestOf(change);
}

// What is another there, in the form that is nearest to that of the result.
std::array<bool, kParameterEnd> MovesTo(const ChainValues& other, const JudgedResult& result, double noise) {
    const FitModel& model = result.Model;
    constexpr double kLeast = 1e-3, kNoises = 10;
    const Parameters& here = result.Values;
    Parameters there = here;
    for (int k = kTraX; k <= kAngleZtoXY; ++k)
        if (model.UnknownOf[At(k)] != 0) there[k] = other.Value[At(k)];
    TakeNearestForm(model, EqualForms(model, here), here, there);
    std::array<bool, kParameterEnd> moves{};
    for (int k = kTraX; k <= kAngleZtoXY; ++k) {
        if (model.UnknownOf[At(k)] == 0) continue;
        const bool angle = (k >= kRotX && k <= kRotZ) || k >= kAngleXY;
        const double change =
            std::fabs(angle ? std::remainder(there[k] - here[k], 2 * std::numbers::pi) : there[k] - here[k]);
        const double least = k <= kTraZ ? kNoises * noise : angle ? kLeast : kLeast * std::fabs(here[k]);
        moves[At(k)] = change > least;
    }
    return moves;
}

}  // namespace

OtherPlace FindOtherPlace(const JudgedResult& result) {
    constexpr double kTimes = 2, kNoises = 25, kAnother = 0.01;
    OtherPlace other;
    const GatheredPoints& points = result.Points;
    const FitModel& model = result.Model;
    const Linearisation& at = result.At;
    if (!Applies(model)) return other;
    const InUse use(result);
    GatheredPoints equal = points;
    SetWeights(use.Weights, equal);
    PointMoments moments;
    SumMoments(equal, at, moments);
    if (!IsFlat(moments)) return other;

    ChainChoice choice;
    choice.StartCentre = points.StartCentre;
    choice.TargetCentre = points.TargetCentre;
    for (int k = kTraX; k <= kAngleZtoXY; ++k) {
        choice.Floats[At(k)] = model.UnknownOf[At(k)] != 0;
        if (!choice.Floats[At(k)]) choice.Held.Value[At(k)] = result.Values[k];
    }
    const bool mirrored = Determinant3(at.M) < 0;
    const double most = (kTimes - 1) * use.Sum + kNoises * use.Noise * use.Noise;
    for (const ChainValues& start : WithSigns(StartsOf(moments, choice), choice)) {
        const auto found = Climb(moments, choice, start);
        if (!found || -found->Gain > most || found->Proper == mirrored) continue;
        const Mat3 M = MatrixOf(found->Values);
        if (Between(M, at.M) < kAnother * std::max(LargestOf(M), LargestOf(at.M))) continue;
        const auto moves = MovesTo(found->Values, result, use.Noise);
        for (int k = kTraX; k < kParameterEnd; ++k) other.Moves[At(k)] = other.Moves[At(k)] || moves[At(k)];
        other.Found = true;
    }
    return other;
}

}  // namespace corvinade::fit
