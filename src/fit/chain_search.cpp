// Searching the floating parameters of the plain model on the sums of a point set.
#include "fit/chain_search.h"

#include <algorithm>
#include <cmath>

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

// The image of the start centre less the target centre.
Vec3 ShiftOf(const ChainChoice& choice, const ChainValues& values, const Mat3& M) {
    Vec3 shift;
    for (int axis = 1; axis <= 3; ++axis) {
        shift(axis) = values.Value[At(kTraX + axis - 1)] - choice.TargetCentre(axis);
        for (int j = 1; j <= 3; ++j) shift(axis) += M(axis, j) * choice.StartCentre(j);
    }
    return shift;
}

void FollowOneScale(const ChainChoice& choice, ChainValues& values) {
    if (choice.Floats[kScaleXYZ])
        values.Value[kScaleX] = values.Value[kScaleY] = values.Value[kScaleZ] = values.Value[kScaleXYZ];
}

// Where the searches stand: the unknowns are the floating translations, then the inner parameters.
struct Climber {
    const PointMoments& Moments;
    const ChainChoice& Choice;
    std::vector<int> Translations;

    Climber(const PointMoments& moments, const ChainChoice& choice) : Moments(moments), Choice(choice) {
        for (int axis = 1; axis <= 3; ++axis)
            if (choice.Floats[At(kTraX + axis - 1)]) Translations.push_back(axis);
    }

    double Gain(const ChainValues& values) const {
        const Mat3 M = MatrixOf(values);
        return GainOf(Moments, M, ShiftOf(Choice, values, M));
    }

    // Normal equations of the unknowns; N row by row. The translations are those of the centres' images, so
    // that an inner parameter moves the points about their centre along the axes whose translation floats.
    void Equations(const ChainValues& at, const ChainDerivatives& by, std::vector<double>& N,
                   std::vector<double>& g) const {
        const int t = static_cast<int>(Translations.size()), u = t + static_cast<int>(by.Inner.size());
        N.assign(At(u * u), 0);
        g.assign(At(u), 0);
        const Mat3 M = MatrixOf(at);
        const Vec3 Shift = ShiftOf(Choice, at, M);
        for (int axis = 1; axis <= 3; ++axis) {
            const auto& B = Moments.B[At(axis)];
            const RowChange change = ChangeOf(Moments, M, Shift, axis);
            std::array<double, 4> l{};
            for (std::size_t k = 0; k < 4; ++k) {
                l[k] = Moments.m[At(axis)][k];
                for (std::size_t j = 0; j < 4; ++j) l[k] -= B[k][j] * change[j];
            }
            const bool moves = Choice.Floats[At(kTraX + axis - 1)];
            std::vector<RowChange> forms(At(u));
            for (int k = 0; k < t; ++k) forms[At(k)] = {Translations[At(k)] == axis ? 1.0 : 0.0, 0, 0, 0};
            for (int k = t; k < u; ++k) {
                const Mat3& D = by.Inner[At(k - t)];
                forms[At(k)] = {0, D(axis, 1), D(axis, 2), D(axis, 3)};
                for (int j = 1; j <= 3 && !moves; ++j) forms[At(k)][0] += D(axis, j) * Choice.StartCentre(j);
            }
            for (int i = 0; i < u; ++i) {
                std::array<double, 4> BForm{};
                for (std::size_t row = 0; row < 4; ++row)
                    for (std::size_t column = 0; column < 4; ++column)
                        BForm[row] += B[row][column] * forms[At(i)][column];
                for (std::size_t k = 0; k < 4; ++k) g[At(i)] += forms[At(i)][k] * l[k];
                for (int j = 0; j <= i; ++j) {
                    double sum = 0;
                    for (std::size_t k = 0; k < 4; ++k) sum += BForm[k] * forms[At(j)][k];
                    N[At(i * u + j)] += sum;
                    if (j != i) N[At(j * u + i)] += sum;
                }
            }
        }
    }

    ChainValues Stepped(const ChainValues& at, const ChainDerivatives& by,
                        const std::vector<double>& x) const {
        const auto t = Translations.size();
        ChainValues to = MovedInner(Choice, at, by, x.data() + t);
        // The corrections of the translations are those of the centre's image.
        const Mat3 before = MatrixOf(at), now = MatrixOf(to);
        for (std::size_t k = 0; k < t; ++k) {
            const int axis = Translations[k];
            double& T = to.Value[At(kTraX + axis - 1)];
            T += x[k];
            for (int j = 1; j <= 3; ++j) T -= (now(axis, j) - before(axis, j)) * Choice.StartCentre(j);
        }
        return to;
    }
};

}  // namespace

ChainDerivatives::ChainDerivatives(const ChainChoice& choice, const ChainValues& at) {
    Mat3 K, S;
    BuildShearMatrix(at.Value[kAngleXY], at.Value[kAzimuth], at.Value[kAngleZtoXY], K);
    for (int k = 1; k <= 3; ++k) S(k, k) = at.Value[At(kScaleX + k - 1)];
    const Mat3 KS = MatrixProduct(K, S), RK = MatrixProduct(at.R, K);
    if (choice.RotatesFreely()) {
        const Mat3 M = MatrixProduct(at.R, KS);
        for (int k = 1; k <= 3; ++k)
            Add(kRotX + k - 1, Turned({k == 1 ? 1.0 : 0.0, k == 2 ? 1.0 : 0.0, k == 3 ? 1.0 : 0.0}, M));
    } else {
        const std::array<Circle, 3> circles = {Circle(at.Value[kRotX]), Circle(at.Value[kRotY]),
                                               Circle(at.Value[kRotZ])};
        constexpr std::array<RotationAngle, 3> kAngles = {RotationAngle::X, RotationAngle::Y,
                                                          RotationAngle::Z};
        for (int k = 0; k < 3; ++k)
            if (choice.Floats[At(kRotX + k)])
                Add(kRotX + k,
                    MatrixProduct(RotationDerivative(kAngles[At(k)], circles[0], circles[1], circles[2]),
                                  KS));
    }
    for (int k = 1; k <= 3; ++k) {
        if (!choice.Floats[At(kScaleX + k - 1)]) continue;
        Mat3 D;
        for (int row = 1; row <= 3; ++row) D(row, k) = RK(row, k);
        Add(kScaleX + k - 1, D);
    }
    if (choice.Floats[kScaleXYZ]) Add(kScaleXYZ, RK);
    AddFrame(choice, at, S);
}

void ChainDerivatives::Add(int parameter, const Mat3& D) {
    Inner.push_back(D);
    Parameter.push_back(parameter);
}

void ChainDerivatives::AddFrame(const ChainChoice& choice, const ChainValues& at, const Mat3& S) {
    const double xy = at.Value[kAngleXY], az = at.Value[kAzimuth], zt = at.Value[kAngleZtoXY];
    const auto add = [&](int parameter, int column, const Vec3& d) {
        if (!choice.Floats[At(parameter)]) return;
        Mat3 dK;
        for (int row = 1; row <= 3; ++row) dK(row, column) = d(row);
        Add(parameter, MatrixProduct(MatrixProduct(at.R, dK), S));
    };
    add(kAngleXY, 2, {std::cos(xy), -std::sin(xy), 0});
    add(kAzimuth, 3, {-std::sin(az) * std::sin(zt), std::cos(az) * std::sin(zt), 0});
    add(kAngleZtoXY, 3, {std::cos(az) * std::cos(zt), std::sin(az) * std::cos(zt), -std::sin(zt)});
}

ChainValues MovedInner(const ChainChoice& choice, const ChainValues& at, const ChainDerivatives& by,
                       const double* x) {
    ChainValues to = at;
    Vec3 turn;
    for (std::size_t k = 0; k < by.Inner.size(); ++k) {
        const int parameter = by.Parameter[k];
        if (parameter <= kRotZ && choice.RotatesFreely())
            turn(parameter - kRotX + 1) = x[k];
        else
            to.Value[At(parameter)] += x[k];
    }
    FollowOneScale(choice, to);
    if (choice.RotatesFreely()) {
        to.R = MatrixProduct(RotationAbout(turn), at.R);
    } else {
        RotMatrixXYZ(to.Value[kRotX], to.Value[kRotY], to.Value[kRotZ], to.R);
    }
    return to;
}

ChainValues::ChainValues() {
    for (int k = kScaleX; k <= kScaleXYZ; ++k) Value[At(k)] = 1;
    for (int k = 1; k <= 3; ++k) R(k, k) = 1;
}

Mat3 MatrixOf(const ChainValues& values) {
    Mat3 K, M;
    BuildShearMatrix(values.Value[kAngleXY], values.Value[kAzimuth], values.Value[kAngleZtoXY], K);
    M = MatrixProduct(values.R, K);
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column) M(row, column) *= values.Value[At(kScaleX + column - 1)];
    return M;
}

Vec3 AnglesOf(const Mat3& R) {
    // Column 1 is (cos b cos c, -cos b sin c, sin b). What is left of R once c is taken off has rows 2
    // (0, cos a, sin a); so a and c fit each other even where column 1 hardly tells c.
    const double c = std::atan2(-R(2, 1), R(1, 1));
    const double sine = std::sin(c), cosine = std::cos(c);
    const double b = std::atan2(R(3, 1), cosine * R(1, 1) - sine * R(2, 1));
    const double a = std::atan2(sine * R(1, 3) + cosine * R(2, 3), sine * R(1, 2) + cosine * R(2, 2));
    return {a, b, c};
}

std::optional<ChainResult> Climb(const PointMoments& moments, const ChainChoice& choice,
                                 const ChainValues& start) {
    constexpr int kMostSteps = 300;
    constexpr double kStill = 1e-15;
    const Climber climber(moments, choice);
    ChainValues at = start;
    FollowOneScale(choice, at);
    double gain = climber.Gain(at), damping = 1e-3;
    if (!std::isfinite(gain)) return {};
    std::vector<double> N, g;
    int idle = 0;
    for (int step = 0; step < kMostSteps && idle < 3; ++step) {
        const ChainDerivatives by(choice, at);
        climber.Equations(at, by, N, g);
        const double before = gain;
        const auto moved = [&](const std::vector<double>& x) { return climber.Stepped(at, by, x); };
        const auto gainOf = [&climber](const ChainValues& to) { return climber.Gain(to); };
        if (!StepUp(N, g, moved, gainOf, at, gain, damping)) break;
        idle = gain - before < kStill * std::fabs(gain) ? idle + 1 : 0;
    }
    TakeAnglesOfTurns(choice, at);
    return ChainResult{at, gain, Determinant3(MatrixOf(at)) >= 0};
}

ChainSearch SearchChain(const PointMoments& moments, const ChainChoice& choice,
                        const std::vector<ChainValues>& starts) {
    ChainSearch search;
    for (const ChainValues& start : starts) {
        const std::optional<ChainResult> result = Climb(moments, choice, start);
        ++search.Starts;
        if (!result) continue;
        auto& best = result->Proper ? search.Proper : search.Mirrored;
        if (!best || result->Gain > best->Gain) best = result;
    }
    return search;
}

std::vector<ChainValues> StartsOf(const PointMoments& moments, const ChainChoice& choice) {
    double trace = 0;
    const Mat3 H = CrossProducts(moments);
    const Mat3 nearest = NearestRotation(H, 1, trace);
    double spread = 0;
    for (int axis = 1; axis <= 3; ++axis) {
        const Mat3 C = StartProducts(moments, axis);
        spread += (C(1, 1) + C(2, 2) + C(3, 3)) / 3;
    }
    const double scale = spread > 0 && trace > 0 ? trace / spread : 1;
    std::vector<ChainValues> starts;
    ChainValues first = choice.Held;
    for (int k = kScaleX; k <= kScaleXYZ; ++k)
        if (choice.Floats[At(k)]) first.Value[At(k)] = scale;
    if (choice.Floats[kAngleZtoXY]) first.Value[kAngleZtoXY] = first.Value[kAzimuth] = 1e-3;
    FollowOneScale(choice, first);
    const auto add = [&](const Mat3& R, const Vec3& angles) {
        ChainValues start = first;
        start.R = R;
        for (int k = 1; k <= 3; ++k) start.Value[At(kRotX + k - 1)] = angles(k);
        // A floating translation begins where the centres fall together.
        const Mat3 M = MatrixOf(start);
        const Vec3 best = BestShift(moments, M);
        const Vec3 none = ShiftOf(choice, start, M);
        for (int axis = 1; axis <= 3; ++axis)
            if (choice.Floats[At(kTraX + axis - 1)])
                start.Value[At(kTraX + axis - 1)] += best(axis) - none(axis);
        starts.push_back(start);
    };
    if (choice.RotatesFreely()) {
        for (const Mat3& turn : CubeRotations()) {
            const Mat3 R = MatrixProduct(nearest, turn);
            add(R, AnglesOf(R));
        }
        return starts;
    }
    // Quarter turns of each angle that floats, about the nearest rotation's.
    constexpr double kQuarter = 1.5707963267948966;
    const Vec3 around = AnglesOf(nearest);
    std::array<int, 3> quarters{};
    for (int k = 0; k < 3; ++k) quarters[At(k)] = choice.Floats[At(kRotX + k)] ? 4 : 1;
    for (int a = 0; a < quarters[0]; ++a)
        for (int b = 0; b < quarters[1]; ++b)
            for (int c = 0; c < quarters[2]; ++c) {
                const std::array<int, 3> turn = {a, b, c};
                Vec3 angles;
                for (int k = 1; k <= 3; ++k)
                    angles(k) = choice.Floats[At(kRotX + k - 1)] ? around(k) + kQuarter * turn[At(k - 1)]
                                                                 : choice.Held.Value[At(kRotX + k - 1)];
                Mat3 R;
                RotMatrixXYZ(angles(1), angles(2), angles(3), R);
                add(R, angles);
            }
    return starts;
}

const std::vector<Mat3>& CubeRotations() {
    static const std::vector<Mat3> kRotations = [] {
        std::vector<Mat3> rotations;
        constexpr std::array<std::array<int, 3>, 6> kOrders = {
            {{1, 2, 3}, {2, 3, 1}, {3, 1, 2}, {2, 1, 3}, {1, 3, 2}, {3, 2, 1}}};
        for (const auto& order : kOrders)
            for (int signs = 0; signs < 8; ++signs) {
                Mat3 R;
                for (int k = 0; k < 3; ++k)
                    R(k + 1, order[static_cast<std::size_t>(k)]) = (signs >> k & 1) != 0 ? -1 : 1;
                if (Determinant3(R) > 0) rotations.push_back(R);
            }
        return rotations;
    }();
    return kRotations;
}

}  // namespace corvinade::fit
