// The residuals of a fit made linear.
#include "fit/linear_rows.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

PointForm Combined(const std::array<PointForm, kMostLinearColumns>& forms, int columns, const double* y) {
    PointForm form{};
    for (int k = 0; k < columns; ++k)
        for (std::size_t j = 0; j < 4; ++j) form[j] += forms[At(k)][j] * y[k];
    return form;
}

void EvaluateForm(const GatheredPoints& points, const PointForm& form, double* out) {
    const double *x = points.Start[0].data(), *y = points.Start[1].data(), *z = points.Start[2].data();
    const double c0 = form[0], c1 = form[1], c2 = form[2], c3 = form[3];
    for (int k = 0; k < points.Padded; ++k) out[k] = c0 + (c1 * x[k] + c2 * y[k] + c3 * z[k]);
}

// The forms of the centred unknowns, by axis and unknown.
void TakeForms(const FitModel& model, const Linearisation& at, LinearRows& rows) {
    rows.Columns = model.Unknowns;
    for (int axis = 1; axis <= 3; ++axis) {
        auto& forms = rows.Forms[At(axis - 1)];
        forms = {};
        for (int k = 0; k < at.InnerCount; ++k) {
            const InnerDerivative& inner = at.Inner[At(k)];
            forms[At(inner.Unknown - 1)] = {at.Held(inner, axis), inner.D(axis, 1), inner.D(axis, 2),
                                            inner.D(axis, 3)};
        }
        if (at.AxisFloats[At(axis)]) forms[At(model.UnknownOf[At(kTraX + axis - 1)] - 1)] = {1, 0, 0, 0};
    }
}

void TakeResiduals(const GatheredPoints& points, const Linearisation& at, LinearRows& rows) {
    rows.v.assign(At(3 * points.Padded), 0);
    rows.InUse.assign(rows.v.size(), 0);
    rows.Used = 0;
    for (int axis = 1; axis <= 3; ++axis) {
        const LaneArray& target = points.Target[At(axis - 1)];
        for (int k = 0; k < points.Count; ++k) {
            const int row = (axis - 1) * points.Padded + k;
            if (!points.AllInUse && points.Weight[At(axis - 1)][At(k)] == 0) continue;
            rows.InUse[At(row)] = 1;
            ++rows.Used;
            rows.v[At(row)] =
                (at.M(axis, 1) * points.Start[0][At(k)] + at.M(axis, 2) * points.Start[1][At(k)] +
                 at.M(axis, 3) * points.Start[2][At(k)]) -
                (target[At(k)] - at.Shift(axis));
        }
    }
}

// A'A over the rows in use.
std::vector<double> Products(const LinearRows& rows) {
    const int u = rows.Columns;
    std::vector<double> N(At(u * u));
    std::vector<double> a(At(u));
    // The columns of a block of rows are multiplied with each other, so that no sum grows by rows for long.
    constexpr int kRows = 256;
    std::vector<double> block(At(u * kRows));
    for (int first = 0; first < rows.Count();) {
        int count = 0;
        for (; first < rows.Count() && count < kRows; ++first) {
            if (rows.InUse[At(first)] == 0) continue;
            rows.Row(first, a.data());
            for (int k = 0; k < u; ++k) block[At(k * kRows + count)] = a[At(k)];
            ++count;
        }
        for (int i = 0; i < u; ++i)
            for (int j = 0; j <= i; ++j) {
                double sum = 0;
                for (int r = 0; r < count; ++r) sum += block[At(i * kRows + r)] * block[At(j * kRows + r)];
                N[At(i * u + j)] += sum;
                if (i != j) N[At(j * u + i)] += sum;
            }
    }
    return N;
}

}  // namespace

void LinearRows::Row(int row, double* a) const {
    const int axis = row / Points->Padded, k = row % Points->Padded;
    const double x = Points->Start[0][At(k)], y = Points->Start[1][At(k)], z = Points->Start[2][At(k)];
    for (int c = 0; c < Columns; ++c) {
        const PointForm& form = Forms[At(axis)][At(c)];
        a[c] = form[0] + (form[1] * x + form[2] * y + form[3] * z);
    }
}

void LinearRows::Times(const double* y, std::vector<double>& result) const {
    result.resize(v.size());
    for (int axis = 0; axis < 3; ++axis)
        EvaluateForm(*Points, Combined(Forms[At(axis)], Columns, y), result.data() + axis * Points->Padded);
}

void LinearRows::Move(const double* y) {
    std::vector<double> way;
    Times(y, way);
    for (std::size_t i = 0; i < v.size(); ++i) v[i] += way[i];
}

void LinearRows::TakeColumns(const std::vector<std::vector<double>>& Z) {
    for (auto& forms : Forms) {
        std::array<PointForm, kMostLinearColumns> taken{};
        for (std::size_t c = 0; c < Z.size(); ++c) taken[c] = Combined(forms, Columns, Z[c].data());
        forms = taken;
    }
    Columns = static_cast<int>(Z.size());
}

void LinearRows::SumOfSigns(double* g) const {
    for (int k = 0; k < Columns; ++k) g[k] = 0;
    for (int axis = 0; axis < 3; ++axis) {
        double s0 = 0, s1 = 0, s2 = 0, s3 = 0;
        const double *x = Points->Start[0].data(), *y = Points->Start[1].data(), *z = Points->Start[2].data();
        const int first = axis * Points->Padded;
        for (int k = 0; k < Points->Padded; ++k) {
            const double sign = InUse[At(first + k)] == 0 ? 0 : v[At(first + k)] < 0 ? -1 : 1;
            s0 += sign;
            s1 += sign * x[k];
            s2 += sign * y[k];
            s3 += sign * z[k];
        }
        for (int k = 0; k < Columns; ++k) {
            const PointForm& form = Forms[At(axis)][At(k)];
            g[k] += form[0] * s0 + (form[1] * s1 + form[2] * s2 + form[3] * s3);
        }
    }
}

bool MakeLinearRows(const GatheredPoints& points, const FitModel& model, const Linearisation& at,
                    LinearRows& rows, std::vector<std::vector<double>>& T) {
    rows.Points = &points;
    TakeForms(model, at, rows);
    TakeResiduals(points, at, rows);
    return MakeOrthonormal(rows, T);
}

bool MakeOrthonormal(LinearRows& rows, std::vector<std::vector<double>>& T) {
    // Below this share of its own size a column is one that the others make up.
    constexpr double kDependent = 1e-11;
    const int u = rows.Columns;
    const std::vector<double> N = Products(rows);
    // Gram and Schmidt on unit vectors in the metric of N, each twice.
    T.clear();
    int without = 0;
    for (int c = 0; c < u; ++c) {
        std::vector<double> t(At(u));
        const auto product = [&](const std::vector<double>& a, const std::vector<double>& b) {
            double sum = 0;
            for (int i = 0; i < u; ++i)
                for (int j = 0; j < u; ++j) sum += a[At(i)] * N[At(i * u + j)] * b[At(j)];
            return sum;
        };
        const double size = N[At(c * u + c)];
        if (size == 0) ++without;
        if (!(size > 0)) continue;
        t[At(c)] = 1 / std::sqrt(size);
        for (int pass = 0; pass < 2; ++pass)
            for (const std::vector<double>& before : T) {
                const double share = product(before, t);
                for (int i = 0; i < u; ++i) t[At(i)] -= share * before[At(i)];
            }
        const double left = product(t, t);
        if (!(left > kDependent)) continue;
        for (double& entry : t) entry /= std::sqrt(left);
        T.push_back(std::move(t));
    }
    rows.TakeColumns(T);
    return static_cast<int>(T.size()) + without == u;
}

double LargestOf(const LinearRows& rows) {
    double largest = 0;
    for (int i = 0; i < rows.Count(); ++i)
        if (rows.InUse[At(i)] != 0) largest = std::max(largest, std::fabs(rows.v[At(i)]));
    return largest;
}

double SumOf(const LinearRows& rows) {
    double sum = 0;
    for (int i = 0; i < rows.Count(); ++i)
        if (rows.InUse[At(i)] != 0) sum += std::fabs(rows.v[At(i)]);
    return sum;
}

bool SolveSquare(std::vector<double> A, int n, double* b) {
    for (int k = 0; k < n; ++k) {
        int pivot = k;
        for (int i = k + 1; i < n; ++i)
            if (std::fabs(A[At(i * n + k)]) > std::fabs(A[At(pivot * n + k)])) pivot = i;
        if (!(std::fabs(A[At(pivot * n + k)]) > 0)) return false;
        if (pivot != k) {
            for (int j = 0; j < n; ++j) std::swap(A[At(k * n + j)], A[At(pivot * n + j)]);
            std::swap(b[k], b[pivot]);
        }
        for (int i = k + 1; i < n; ++i) {
            const double factor = A[At(i * n + k)] / A[At(k * n + k)];
            if (factor == 0) continue;
            for (int j = k; j < n; ++j) A[At(i * n + j)] -= factor * A[At(k * n + j)];
            b[i] -= factor * b[k];
        }
    }
    for (int k = n - 1; k >= 0; --k) {
        for (int j = k + 1; j < n; ++j) b[k] -= A[At(k * n + j)] * b[j];
        b[k] /= A[At(k * n + k)];
        if (!std::isfinite(b[k])) return false;
    }
    return true;
}

bool SolveTransposed(const std::vector<double>& A, int n, double* b) {
    std::vector<double> transposed(A.size());
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) transposed[At(j * n + i)] = A[At(i * n + j)];
    return SolveSquare(std::move(transposed), n, b);
}

}  // namespace corvinade::fit
