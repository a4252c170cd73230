// A place on the way to an exact norm's optimum.
#include "fit/exact_place.h"

#include <algorithm>
#include <cmath>

#include "fit/best_transformation.h"
#include "fit/chain_search.h"
#include "fit/corrections.h"
#include "fit/matrix.h"
#include "fit/normal_equations.h"
#include "fit/rotations.h"
#include "fit/small_svd.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// Sums of weights and of weighted coordinates, by axis: what the sum of weighted rows needs of the points.
std::array<PointForm, 3> SumsOfPoints(const LinearRows& rows, const std::vector<double>& weights) {
    std::array<PointForm, 3> sums{};
    const GatheredPoints& points = *rows.Points;
    for (int axis = 0; axis < 3; ++axis)
        for (int k = 0; k < points.Count; ++k) {
            const int row = axis * points.Padded + k;
            if (rows.InUse[At(row)] == 0) continue;
            const double w = weights[At(row)];
            PointForm& sum = sums[At(axis)];
            sum[0] += w;
            for (std::size_t j = 0; j < 3; ++j) sum[j + 1] += w * points.Start[j][At(k)];
        }
    return sums;
}

double Product(const PointForm& a, const PointForm& b) {
    return a[0] * b[0] + (a[1] * b[1] + a[2] * b[2] + a[3] * b[3]);
}

// The gradient of weighted rows by the inner unknowns, at a linearisation.
std::vector<double> Gradient(const Linearisation& at, const std::array<PointForm, 3>& sums, int unknowns) {
    std::vector<double> gradient(At(unknowns));
    for (int k = 0; k < at.InnerCount; ++k) {
        const InnerDerivative& inner = at.Inner[At(k)];
        for (int axis = 1; axis <= 3; ++axis)
            gradient[At(inner.Unknown - 1)] +=
                Product({at.Held(inner, axis), inner.D(axis, 1), inner.D(axis, 2), inner.D(axis, 3)},
                        sums[At(axis - 1)]);
    }
    return gradient;
}

PlaceUnknowns UnknownsOf(const FitModel& model) {
    const auto all = [&](int first, int last) {
        for (int k = first; k <= last; ++k)
            if (model.UnknownOf[At(k)] == 0) return false;
        return true;
    };
    if (!all(kRotX, kRotZ)) return PlaceUnknowns::Parameters;
    const bool matrix =
        all(kScaleX, kScaleZ) && all(kAngleXY, kAngleZtoXY) && model.UnknownOf[kScaleXYZ] == 0;
    return matrix ? PlaceUnknowns::Elements : PlaceUnknowns::Turns;
}

// 1 to 3 for the unknown of a rotation, else 0.
int TurnOf(const FitModel& model, int unknown) {
    for (int k = 1; k <= 3; ++k)
        if (model.UnknownOf[At(kRotX + k - 1)] == unknown) return k;
    return 0;
}

// How the start points in use lie about their middle.
struct Spread {
    Mat3 Along;           // directions of the largest spread, the next and the least
    Vec3 Squares;         // mean squares along them, mm^2
    double Rounding = 0;  // mm; less is none

    explicit Spread(const GatheredPoints& points) {
        constexpr double kLeast = 1e-10, kDigits = 64 * 2.220446049250313e-16;
        std::vector<int> used;
        for (int k = 0; k < points.Count; ++k) {
            bool any = points.AllInUse;
            for (std::size_t axis = 0; axis < 3 && !any; ++axis) any = points.Weight[axis][At(k)] != 0;
            if (any) used.push_back(k);
        }
        const double count = std::max<double>(1, static_cast<double>(used.size()));
        Vec3 middle;
        const auto each = [&](auto visit) {
            for (const int k : used)
                visit(Vec3(points.Start[0][At(k)], points.Start[1][At(k)], points.Start[2][At(k)]));
        };
        each([&](const Vec3& p) {
            for (int j = 1; j <= 3; ++j) middle(j) += p(j) / count;
        });
        Mat3 products;
        each([&](const Vec3& p) {
            for (int i = 1; i <= 3; ++i)
                for (int j = 1; j <= 3; ++j) products(i, j) += (p(i) - middle(i)) * (p(j) - middle(j));
        });
        Along = Decompose3(products).U;
        double coordinate = 0;
        each([&](const Vec3& p) {
            for (int k = 1; k <= 3; ++k) {
                double length = 0;
                for (int j = 1; j <= 3; ++j) length += Along(j, k) * (p(j) - middle(j));
                Squares(k) += length * length / count;
                coordinate = std::max(coordinate, std::fabs(p(k) + points.StartCentre(k)));
            }
        });
        Rounding = std::max(kLeast * std::sqrt(Squares(1)), kDigits * coordinate);
    }
    double Size(int k) const { return std::sqrt(Squares(k)); }
    // Of the points' arms about the line along a direction.
    double Across(int k) const { return std::sqrt(Squares(k % 3 + 1) + Squares((k + 1) % 3 + 1)); }
};

}  // namespace

ExactPlace::ExactPlace(FitRun& run, const GatheredPoints& points, const FitModel& model)
    : Run(run), Points(points), Model(model), Kind(UnknownsOf(model)) {
    const Spread spread(points);
    Along = spread.Along;
    // About a place that is held even points on a line can be turned about it.
    bool held = false;
    for (int k = kTraX; k <= kTraZ; ++k) held = held || model.UnknownOf[At(k)] == 0;
    for (int k = 1; k <= 3; ++k) {
        spreads_[At(k - 1)] = held || spread.Size(k) > spread.Rounding;
        turns_[At(k - 1)] = held || spread.Across(k) > spread.Rounding;
    }
}

std::array<Vec3, 3> ExactPlace::Axes() const {
    const Mat3& M = Run.Chain.Product;
    Vec3 image;
    for (int row = 1; row <= 3; ++row)
        for (int j = 1; j <= 3; ++j) image(row) += M(row, j) * Along(j, 1);
    // A frame whose first direction is the image of the points' own; the others' are about across it.
    Mat3 frame;
    for (int row = 1; row <= 3; ++row) frame(row, 1) = image(row);
    const Svd3 svd = Decompose3(frame);
    std::array<Vec3, 3> axes;
    for (int k = 1; k <= 3; ++k) axes[At(k - 1)] = {svd.U(1, k), svd.U(2, k), svd.U(3, k)};
    return axes;
}

Linearisation ExactPlace::LineariseAbout(const std::array<Vec3, 3>& axes) const {
    Linearisation at = fit::Linearise(Model, Run.Now, Points, Run.Chain);
    if (Kind == PlaceUnknowns::Parameters) return at;
    for (int k = 0; k < at.InnerCount; ++k) {
        InnerDerivative& inner = at.Inner[At(k)];
        if (Kind == PlaceUnknowns::Elements) {
            const int row = k / 3 + 1, direction = k % 3 + 1;
            inner.D = Mat3{};
            for (int j = 1; j <= 3 && spreads_[At(direction - 1)]; ++j) inner.D(row, j) = Along(j, direction);
        } else {
            const int turn = TurnOf(Model, inner.Unknown);
            if (turn == 0) continue;
            inner.D = turns_[At(turn - 1)] ? Turned(axes[At(turn - 1)], at.M) : Mat3{};
        }
        inner.OnlyColumn = 0;
        for (int axis = 1; axis <= 3; ++axis) {
            inner.AtCentre(axis) = 0;
            for (int j = 1; j <= 3; ++j) inner.AtCentre(axis) += inner.D(axis, j) * Points.StartCentre(j);
        }
    }
    return at;
}

void ExactPlace::Linearise() {
    fit::Linearise(Model, Run.Now, Points, Run.Chain);  // the chain at the present parameters
    axes_ = Axes();
    Here = LineariseAbout(axes_);
    AllTold = MakeLinearRows(Points, Model, Here, Rows, T);
}

void ExactPlace::MoveInner(const Column& x) const {
    if (Kind == PlaceUnknowns::Parameters) return AddCorrections(Model, x, Run.Now);
    if (Kind == PlaceUnknowns::Elements) {
        Mat3 M = Here.M;
        for (int k = 0; k < Here.InnerCount; ++k) {
            const InnerDerivative& inner = Here.Inner[At(k)];
            for (int row = 1; row <= 3; ++row)
                for (int j = 1; j <= 3; ++j) M(row, j) += x[At(inner.Unknown)] * inner.D(row, j);
        }
        const ChainValues values = ValuesOf(M, PlainModel::Affine);
        for (int k = kRotX; k <= kAngleZtoXY; ++k)
            if (Model.UnknownOf[At(k)] != 0) Run.Now[k] = values.Value[At(k)];
        return;
    }
    Column others = x;
    Vec3 turn;
    for (int k = 1; k <= 3; ++k) {
        const int unknown = Model.UnknownOf[At(kRotX + k - 1)];
        for (int j = 1; j <= 3; ++j) turn(j) += x[At(unknown)] * axes_[At(k - 1)](j);
        others[At(unknown)] = 0;
    }
    Mat3 R;
    RotMatrixXYZ(Run.Now[kRotX], Run.Now[kRotY], Run.Now[kRotZ], R);
    const Vec3 angles = AnglesOf(MatrixProduct(RotationAbout(turn), R));
    AddCorrections(Model, others, Run.Now);
    Run.Now[kRotX] = angles(1);
    Run.Now[kRotY] = angles(2);
    Run.Now[kRotZ] = angles(3);
}

void ExactPlace::Step(const std::vector<double>& y) {
    Column x(At(Model.Unknowns) + 1);
    for (std::size_t c = 0; c < T.size(); ++c)
        for (std::size_t i = 1; i < x.size(); ++i) x[i] += y[c] * T[c][i - 1];
    Vec3 wanted = Here.Shift;
    for (int axis = 1; axis <= 3; ++axis)
        if (const int unknown = Model.UnknownOf[At(kTraX + axis - 1)]; unknown != 0) {
            wanted(axis) += x[At(unknown)];
            x[At(unknown)] = 0;
        }
    MoveInner(x);
    const Linearisation there = fit::Linearise(Model, Run.Now, Points, Run.Chain);
    for (int axis = 1; axis <= 3; ++axis)
        if (there.AxisFloats[At(axis)]) Run.Now[kTraX + axis - 1] += wanted(axis) - there.Shift(axis);
    Linearise();
}

std::vector<double> ExactPlace::Curvature(const std::vector<double>& weights) const {
    constexpr double kStep = 1e-5;  // rad, and of scales about 1
    const int u = Model.Unknowns;
    const std::size_t m = T.size();
    std::vector<double> curvature(m * m);
    if (Kind == PlaceUnknowns::Elements) return curvature;
    const std::array<PointForm, 3> sums = SumsOfPoints(Rows, weights);
    const Parameters before = Run.Now;
    std::vector<double> W(At(u * u));
    for (int k = 0; k < Here.InnerCount; ++k) {
        const int unknown = Here.Inner[At(k)].Unknown;
        std::array<std::vector<double>, 2> gradients;
        for (const int side : {0, 1}) {
            Column x(At(u) + 1);
            x[At(unknown)] = side == 0 ? -kStep : kStep;
            MoveInner(x);
            gradients[At(side)] = Gradient(LineariseAbout(axes_), sums, u);
            Run.Now = before;
        }
        for (int i = 0; i < u; ++i)
            W[At(i * u + unknown - 1)] = (gradients[1][At(i)] - gradients[0][At(i)]) / (2 * kStep);
    }
    // T'W T, and symmetric to the last digit.
    for (std::size_t a = 0; a < m; ++a)
        for (std::size_t b = 0; b < m; ++b) {
            double sum = 0;
            for (int i = 0; i < u; ++i)
                for (int j = 0; j < u; ++j) sum += T[a][At(i)] * W[At(i * u + j)] * T[b][At(j)];
            curvature[a * m + b] += sum / 2;
            curvature[b * m + a] += sum / 2;
        }
    return curvature;
}

bool ExactPlace::PointsTellAll() const {
    ExactPlace plain(Run, Points, Model);
    plain.Along = Mat3{};
    for (int k = 1; k <= 3; ++k) plain.Along(k, k) = 1;
    plain.spreads_.fill(true);
    plain.turns_.fill(true);
    LinearRows rows;
    std::vector<std::vector<double>> columns;
    // About the axes of the start system, as Rot x turns about its x.
    Mat3 R;
    RotMatrixXYZ(Run.Now[kRotX], Run.Now[kRotY], Run.Now[kRotZ], R);
    std::array<Vec3, 3> axes;
    for (int k = 1; k <= 3; ++k) axes[At(k - 1)] = {R(1, k), R(2, k), R(3, k)};
    return MakeLinearRows(Points, Model, plain.LineariseAbout(axes), rows, columns);
}

std::vector<double> WeightedSum(const LinearRows& rows, const std::vector<double>& weights) {
    const std::array<PointForm, 3> sums = SumsOfPoints(rows, weights);
    std::vector<double> gradient(At(rows.Columns));
    for (int k = 0; k < rows.Columns; ++k)
        for (std::size_t axis = 0; axis < 3; ++axis)
            gradient[At(k)] += Product(rows.Forms[axis][At(k)], sums[axis]);
    return gradient;
}

}  // namespace corvinade::fit
