// Searching the tool model.
#include "fit/tool_search.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "fit/best_transformation.h"
#include "fit/damped_step.h"
#include "fit/matrix.h"
#include "fit/rotations.h"
#include "fit/small_svd.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

double Product(const ToolForm::Elements& a, const Mat3& D) {
    double sum = 0;
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j) sum += a[At(3 * (i - 1) + j - 1)] * D(i, j);
    return sum;
}

bool ScalesFloat(const ChainChoice& choice) {
    for (int k = kScaleX; k <= kScaleXYZ; ++k)
        if (choice.Floats[At(k)]) return true;
    return false;
}

void TakeFactor(const ChainChoice& choice, double factor, ChainValues& values) {
    for (int k = kScaleX; k <= kScaleXYZ; ++k)
        if (choice.Floats[At(k)]) values.Value[At(k)] = factor;
    if (choice.Floats[kScaleXYZ])
        for (int k = kScaleX; k <= kScaleZ; ++k) values.Value[At(k)] = factor;
}

// What floats begins with these; the rotation is to be put in.
ChainValues FirstValues(const ChainChoice& choice) {
    ChainValues first = choice.Held;
    TakeFactor(choice, 1, first);
    for (int k = kAngleXY; k <= kAngleZtoXY; ++k)
        if (choice.Floats[At(k)]) first.Value[At(k)] = k == kAngleXY ? 0 : 1e-3;
    return first;
}

ChainValues StartAt(const Mat3& R, const Vec3& angles, const ChainChoice& choice) {
    ChainValues start = FirstValues(choice);
    start.R = R;
    for (int k = 1; k <= 3; ++k) start.Value[At(kRotX + k - 1)] = angles(k);
    return start;
}

// Of angles that are held by their values.
ChainValues StartAt(const Vec3& angles, const ChainChoice& choice) {
    Vec3 kept = angles;
    for (int k = 1; k <= 3; ++k)
        if (!choice.Floats[At(kRotX + k - 1)]) kept(k) = choice.Held.Value[At(kRotX + k - 1)];
    Mat3 R;
    RotMatrixXYZ(kept(1), kept(2), kept(3), R);
    return StartAt(R, kept, choice);
}

ChainValues StartAt(const Mat3& nearest, const ChainChoice& choice) {
    const Vec3 angles = AnglesOf(nearest);
    return choice.RotatesFreely() ? StartAt(nearest, angles, choice) : StartAt(angles, choice);
}

std::vector<ChainValues> RotationsToTry(const Mat3& nearest, const ChainChoice& choice) {
    std::vector<ChainValues> rotations;
    const Vec3 around = AnglesOf(nearest);
    if (choice.RotatesFreely()) {
        // The second cube stands on a corner in the first one's middle.
        const Mat3 between = RotationAbout({0.6, 0.6, 0.6});
        for (const Mat3& turn : CubeRotations())
            rotations.push_back(StartAt(MatrixProduct(nearest, turn), around, choice));
        for (const Mat3& turn : CubeRotations())
            rotations.push_back(
                StartAt(MatrixProduct(nearest, MatrixProduct(turn, between)), around, choice));
        return rotations;
    }
    constexpr double kQuarter = 1.5707963267948966;
    std::array<int, 3> quarters{};
    for (int k = 0; k < 3; ++k) quarters[At(k)] = choice.Floats[At(kRotX + k)] ? 4 : 1;
    for (int a = 0; a < quarters[0]; ++a)
        for (int b = 0; b < quarters[1]; ++b)
            for (int c = 0; c < quarters[2]; ++c)
                rotations.push_back(StartAt(
                    Vec3(around(1) + kQuarter * a, around(2) + kQuarter * b, around(3) + kQuarter * c),
                    choice));
    return rotations;
}

// With the scales that fit it best, of either sign.
ChainValues WithBestFactor(const ToolForm& form, const ChainChoice& choice, ChainValues start, bool proper) {
    if (!ScalesFloat(choice)) return start;
    double factor = form.BestFactor(MatrixOf(start));
    if (proper) factor = std::fabs(factor);
    TakeFactor(choice, factor != 0 ? factor : 1, start);
    return start;
}

// Root mean square of its columns' lengths.
double SizeOf(const Mat3& M) {
    double squares = 0;
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j) squares += M(i, j) * M(i, j);
    return std::sqrt(squares / 3);
}

ToolSolution SolutionOf(const ToolForm& form, const ChainValues& values) {
    const Mat3 M = MatrixOf(values);
    return {values, M, form.ShiftOf(M), form.ToolOf(M), form.Gain(M)};
}

}  // namespace

std::optional<ToolSolution> ClimbTool(const ToolForm& form, const ChainChoice& choice,
                                      const ChainValues& start, double bound, double share) {
    constexpr int kMostSteps = 300;
    const double rounding = form.RoundingNearby();
    ChainValues at = start;
    double gain = form.Gain(MatrixOf(at)), damping = 1e-3;
    if (!std::isfinite(gain)) return {};
    bool still = false;
    for (int step = 0; step < kMostSteps && !still; ++step) {
        const ChainDerivatives by(choice, at);
        const int u = static_cast<int>(by.Inner.size());
        if (u == 0) break;
        const ToolForm::Elements slope = form.SlopeAt(MatrixOf(at));
        std::vector<double> N(At(u * u)), g(At(u));
        for (int i = 0; i < u; ++i) {
            const ToolForm::Elements curved = form.Curved(by.Inner[At(i)]);
            g[At(i)] = Product(slope, by.Inner[At(i)]);
            for (int j = 0; j <= i; ++j)
                N[At(i * u + j)] = N[At(j * u + i)] = Product(curved, by.Inner[At(j)]);
        }
        const double before = gain;
        const auto moved = [&](const std::vector<double>& x) { return MovedInner(choice, at, by, x.data()); };
        const auto gainOf = [&form](const ChainValues& to) { return form.Gain(MatrixOf(to)); };
        if (!StepUp(N, g, moved, gainOf, at, gain, damping)) break;
        still = gain - before <= share * std::max(0.0, bound - gain) + rounding;
    }
    TakeAnglesOfTurns(choice, at);
    return SolutionOf(form, at);
}

ToolSolutions SearchTool(const ToolForm& form, const ChainChoice& choice, bool affine, double known) {
    ToolSolutions found;
    const ToolForm::LeastOfAll least = form.Least();
    const auto keep = [&found](const std::optional<ToolSolution>& solution) {
        if (!solution) return;
        auto& best = Determinant3(solution->M) < 0 ? found.Mirrored : found.Proper;
        if (!best || solution->Gain > best->Gain) best = solution;
    };
    found.Starts = 1;
    if (affine) {
        ChainValues values = ValuesOf(least.M, PlainModel::Affine);
        const Vec3 angles = AnglesOf(values.R);
        for (int k = 1; k <= 3; ++k) values.Value[At(kRotX + k - 1)] = angles(k);
        keep(ClimbTool(form, choice, values));
        return found;
    }
    double trace = 0;
    constexpr double kRoughly = 1e-3, kFinely = 1e-13;
    const Mat3 nearest = NearestRotation(least.M, 1, trace);
    keep(ClimbTool(form, choice, WithBestFactor(form, choice, StartAt(nearest, choice), true), least.Gain,
                   kFinely));
    if (found.Proper) known = std::max(known, found.Proper->Gain);
    constexpr double kSmall = 0.5;  // beside the length of a column of M
    const double length = SizeOf(least.M);
    if (least.Gain - known <= least.Stiffness * kSmall * kSmall * length * length) return found;
    const std::vector<ChainValues> rotations = RotationsToTry(nearest, choice);
    // A rotation far off makes the best factor a small one, on the way to a solution that presses all points
    // together; so solutions with scales as they are expected to be are looked for as well.
    for (const ChainValues& start : rotations) {
        keep(ClimbTool(form, choice, WithBestFactor(form, choice, start, false), least.Gain, kRoughly));
        ++found.Starts;
    }
    if (ScalesFloat(choice)) {
        ChainChoice rigid = choice;
        for (int k = kScaleX; k <= kScaleXYZ; ++k) rigid.Floats[At(k)] = false;
        for (const double factor : {1.0, SizeOf(least.M)}) {
            std::optional<ToolSolution> best;
            for (ChainValues start : rotations) {
                TakeFactor(choice, factor, start);
                const auto end = ClimbTool(form, rigid, start, least.Gain, kRoughly);
                ++found.Starts;
                if (end && (!best || end->Gain > best->Gain)) best = end;
            }
            if (best) keep(ClimbTool(form, choice, best->Values, least.Gain, kRoughly));
        }
    }
    for (auto* best : {&found.Proper, &found.Mirrored})
        if (*best) *best = ClimbTool(form, choice, (*best)->Values, least.Gain, kFinely);
    return found;
}

}  // namespace corvinade::fit
