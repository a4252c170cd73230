// The rows of the plain model's design matrix as forms of [1 x y z].
#include "fit/axis_forms.h"

#include <cmath>

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// The place of an element of a Form4, from 0.
constexpr std::size_t Place(int i, int j) {
    return i <= j ? At(4 * i - i * (i - 1) / 2 + j - i) : Place(j, i);
}

std::array<double, 4> Times(const Form4& form, const std::array<double, 4>& vector) {
    std::array<double, 4> product{};
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) product[At(i)] += form[Place(i, j)] * vector[At(j)];
    return product;
}

double Dot(const std::array<double, 4>& a, const std::array<double, 4>& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3];
}

}  // namespace

AxisForms FormsOf(const FitModel& model, const Linearisation& at) {
    AxisForms forms;
    forms.Unknowns = model.Unknowns;
    for (int axis = 1; axis <= 3; ++axis) {
        auto& of = forms.Of[At(axis)];
        of.assign(At(model.Unknowns) + 1, {});
        for (int k = 0; k < at.InnerCount; ++k) {
            const InnerDerivative& inner = at.Inner[At(k)];
            of[At(inner.Unknown)] = {at.Held(inner, axis), inner.D(axis, 1), inner.D(axis, 2),
                                     inner.D(axis, 3)};
        }
        if (const int unknown = model.UnknownOf[At(kTraX + axis - 1)]; unknown != 0) of[At(unknown)][0] = 1;
    }
    return forms;
}

Matrix NormalMatrixOf(const AxisForms& forms, const std::array<Form4, kAxisPairs>& sums) {
    const int u = forms.Unknowns;
    Matrix N(u, u);
    for (int a = 1; a <= 3; ++a)
        for (int b = 1; b <= 3; ++b) {
            const Form4& sum = sums[At(AxisPair(a, b))];
            for (int k = 1; k <= u; ++k) {
                const std::array<double, 4> right = Times(sum, forms.Of[At(b)][At(k)]);
                for (int j = 1; j <= u; ++j) N(j, k) += Dot(forms.Of[At(a)][At(j)], right);
            }
        }
    return N;
}

std::array<Form4, kAxisPairs> VarianceForms(const AxisForms& forms, const Matrix& Q) {
    std::array<Form4, kAxisPairs> variances{};
    const int u = forms.Unknowns;
    for (int a = 1; a <= 3; ++a)
        for (int b = a; b <= 3; ++b) {
            Form4& form = variances[At(AxisPair(a, b))];
            for (int j = 1; j <= u; ++j)
                for (int k = 1; k <= u; ++k) {
                    const auto& left = forms.Of[At(a)][At(j)];
                    const auto& right = forms.Of[At(b)][At(k)];
                    for (int i = 0; i < 4; ++i)
                        for (int l = 0; l < 4; ++l) form[Place(i, l)] += Q(j, k) * left[At(i)] * right[At(l)];
                }
        }
    return variances;
}

bool InvertPositive(const Matrix& N, int u, Matrix& Q) {
    constexpr double kSingular = 1e-14;  // of a pivot beside its diagonal
    Q = Matrix(u, u);
    std::vector<double> size(At(u) + 1);
    for (int i = 1; i <= u; ++i) {
        if (!(N(i, i) > 0) || !std::isfinite(N(i, i))) return false;
        size[At(i)] = std::sqrt(N(i, i));
    }
    Matrix L(u, u);
    for (int j = 1; j <= u; ++j)
        for (int i = j; i <= u; ++i) {
            double sum = N(i, j) / (size[At(i)] * size[At(j)]);
            for (int k = 1; k < j; ++k) sum -= L(i, k) * L(j, k);
            if (i == j && !(sum > kSingular)) return false;
            L(i, j) = i == j ? std::sqrt(sum) : sum / L(j, j);
        }
    Matrix inverse(u, u);  // of L
    for (int j = 1; j <= u; ++j)
        for (int i = j; i <= u; ++i) {
            double sum = i == j ? 1 : 0;
            for (int k = j; k < i; ++k) sum -= L(i, k) * inverse(k, j);
            inverse(i, j) = sum / L(i, i);
        }
    for (int i = 1; i <= u; ++i)
        for (int j = 1; j <= i; ++j) {
            double sum = 0;
            for (int k = i; k <= u; ++k) sum += inverse(k, i) * inverse(k, j);
            Q(i, j) = Q(j, i) = sum / (size[At(i)] * size[At(j)]);
        }
    return true;
}

}  // namespace corvinade::fit
