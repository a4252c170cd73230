// A place on the way to an exact norm's optimum.
#include "engine/exact_place.h"

#include "core/job.h"
#include "engine/corrections.h"
#include "engine/normal_equations.h"

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

}  // namespace

ParameterArray JobParameters() {
    ParameterArray parameters{};
    for (int k = kTraX; k < kParameterEnd; ++k) parameters[At(k)] = ParameterValue(Job, k);
    return parameters;
}

void SetJobParameters(const ParameterArray& parameters) {
    for (int k = kTraX; k < kParameterEnd; ++k) ParameterValue(Job, k) = parameters[At(k)];
}

void ExactPlace::Linearise() {
    Here = ::Linearise(Model, Points);
    AllTold = MakeLinearRows(Points, Model, Here, Rows, T);
}

Column ExactPlace::Corrections(const std::vector<double>& y) const {
    Column x(static_cast<std::size_t>(Model.Unknowns) + 1);
    for (std::size_t c = 0; c < T.size(); ++c)
        for (std::size_t i = 1; i < x.size(); ++i) x[i] += y[c] * T[c][i - 1];
    FromCentre(Model, Here, x);
    return x;
}

void ExactPlace::Step(const std::vector<double>& y) {
    Vec3 wanted = Here.Shift;
    for (int axis = 1; axis <= 3; ++axis) {
        const int unknown = Model.UnknownOf[At(kTraX + axis - 1)];
        for (std::size_t c = 0; unknown != 0 && c < T.size(); ++c)
            wanted(axis) += y[c] * T[c][At(unknown - 1)];
    }
    AddCorrections(Model, Corrections(y));
    const Linearisation there = ::Linearise(Model, Points);
    for (int axis = 1; axis <= 3; ++axis)
        if (there.AxisFloats[At(axis)])
            ParameterValue(Job, kTraX + axis - 1) += wanted(axis) - there.Shift(axis);
    Linearise();
}

std::vector<double> ExactPlace::Curvature(const std::vector<double>& weights) const {
    constexpr double kStep = 1e-5;  // rad, and of scales about 1
    const std::array<PointForm, 3> sums = SumsOfPoints(Rows, weights);
    const int u = Model.Unknowns;
    const std::size_t m = T.size();
    const ParameterArray before = JobParameters();
    std::vector<double> W(At(u * u));
    for (int k = 0; k < Here.InnerCount; ++k) {
        const int unknown = Here.Inner[At(k)].Unknown;
        std::array<std::vector<double>, 2> gradients;
        for (const int side : {0, 1}) {
            Column x(At(u) + 1);
            x[At(unknown)] = side == 0 ? -kStep : kStep;
            AddCorrections(Model, x);
            gradients[At(side)] = Gradient(::Linearise(Model, Points), sums, u);
            SetJobParameters(before);
        }
        for (int i = 0; i < u; ++i)
            W[At(i * u + unknown - 1)] = (gradients[1][At(i)] - gradients[0][At(i)]) / (2 * kStep);
    }
    // T'W T, and symmetric to the last digit.
    std::vector<double> curvature(m * m);
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

std::vector<double> WeightedSum(const LinearRows& rows, const std::vector<double>& weights) {
    const std::array<PointForm, 3> sums = SumsOfPoints(rows, weights);
    std::vector<double> gradient(At(rows.Columns));
    for (int k = 0; k < rows.Columns; ++k)
        for (std::size_t axis = 0; axis < 3; ++axis)
            gradient[At(k)] += Product(rows.Forms[axis][At(k)], sums[axis]);
    return gradient;
}
