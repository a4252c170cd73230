// The normal equations of a fit from the moments of its points.
#include <algorithm>
#include <cmath>

#include "fit/lanes.h"
#include "fit/moments.h"
#include "fit/require.h"

namespace corvinade::fit {

namespace {

// Below this share the diagonal has lost three digits that the rows would have kept.
constexpr double kLeastShare = 1e-3;

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

using Form = std::array<double, kMostPlaces>;
using Square = std::array<Form, kMostPlaces>;

// The columns of one axis as linear forms of [1 p g].
struct AxisForms {
    static constexpr int kMost = kMostInner + 4;
    int Count = 0;
    std::array<int, kMost> Unknown{};
    std::array<Form, kMost> Forms;

    AxisForms(const FitModel& model, const Linearisation& at, int axis) {
        for (int k = 0; k < at.InnerCount; ++k) {
            const InnerDerivative& inner = at.Inner[At(k)];
            Add(inner.Unknown, {at.Held(inner, axis), inner.D(axis, 1), inner.D(axis, 2), inner.D(axis, 3)});
        }
        if (model.Mode == FitMode::Tool && model.ToolFloats)
            for (int j = 0; j < 3; ++j) {
                Form pose{};
                pose[At(4 + j)] = 1;
                Add(model.UnknownOf[At(kRvecX + j)], pose);
            }
        if (at.AxisFloats[At(axis)]) Add(model.UnknownOf[At(kTraX + axis - 1)], {1});
    }
    void Add(int unknown, const Form& form) {
        Unknown[At(Count)] = unknown;
        Forms[At(Count++)] = form;
    }
};

// Products with the first places of a form; a constant number of them, so that loops have no ends. B is
// symmetric, so its columns are read as rows, and all sums grow side by side.
template <int Places>
Form Times(const Square& B, const Form& form) {
    Form result{};
    for (std::size_t column = 0; column < Places; ++column)
        for (std::size_t row = 0; row < Places; ++row) result[row] += B[column][row] * form[column];
    return result;
}

template <int Places>
double Product(const Form& a, const Form& b) {
    double sum = 0;
    for (std::size_t k = 0; k < Places; ++k) sum += a[k] * b[k];
    return sum;
}

// The largest that f'B f could be with these absolute values: what its rounding goes by.
template <int Places>
double ProductWithoutSigns(const Square& B, const Form& form) {
    double sum = 0;
    for (std::size_t row = 0; row < Places; ++row) {
        double ofRow = 0;
        for (std::size_t column = 0; column < Places; ++column)
            ofRow += std::fabs(B[row][column] * form[column]);
        sum += std::fabs(form[row]) * ofRow;
    }
    return sum;
}

// What shift, matrix and tool have changed by since the moments were taken, as a form of [1 p g].
Form Change(const Linearisation& at, const PointMoments& moments, int axis) {
    Form change = {at.Shift(axis) - moments.Shift(axis), at.M(axis, 1) - moments.M(axis, 1),
                   at.M(axis, 2) - moments.M(axis, 2), at.M(axis, 3) - moments.M(axis, 3)};
    if (moments.Places == kMostPlaces)
        for (int j = 1; j <= 3; ++j) change[At(3 + j)] = at.Tool(j) - moments.Tool(j);
    return change;
}

template <int Places>
void AddAxis(const FitModel& model, const Linearisation& at, const PointMoments& moments, int axis, Matrix& N,
             Column& w, std::array<double, kParameterEnd>& withoutSigns) {
    const AxisForms forms(model, at, axis);
    const Square& B = moments.B[At(axis)];
    Form l = Times<Places>(B, Change(at, moments, axis));
    for (std::size_t k = 0; k < Places; ++k) l[k] = moments.m[At(axis)][k] - l[k];
    for (int i = 0; i < forms.Count; ++i) {
        const int row = forms.Unknown[At(i)];
        w[At(row)] += Product<Places>(forms.Forms[At(i)], l);
        withoutSigns[At(row)] += ProductWithoutSigns<Places>(B, forms.Forms[At(i)]);
        const Form BForm = Times<Places>(B, forms.Forms[At(i)]);
        double* const sums = N.Row(row);
        for (int j = 0; j <= i; ++j) sums[forms.Unknown[At(j)]] += Product<Places>(BForm, forms.Forms[At(j)]);
    }
}

// The columns of one axis with the unknowns side by side in lanes, and the observations behind them as one
// column more. `Whole` lanes, eight or sixteen, are of meaning.
struct LaneColumns {
    int Count = 0;  // of unknowns that have a column
    std::array<int, AxisForms::kMost> Place;
    double Root[4];  // of the diagonal of B
    alignas(kLaneAlignment) double Of[4][kMostSmall + 1];

    void Take(const FitModel& model, const Linearisation& at, const PointMoments& moments, int axis,
              int whole) {
        for (std::size_t c = 0; c < 4; ++c) std::fill_n(Of[c], whole, 0.0);
        for (int k = 0; k < at.InnerCount; ++k) {
            const InnerDerivative& inner = at.Inner[At(k)];
            const int place = Place[At(Count++)] = inner.Unknown - 1;
            Of[0][place] = at.Held(inner, axis);
            for (int j = 1; j <= 3; ++j) Of[j][place] = inner.D(axis, j);
        }
        if (at.AxisFloats[At(axis)]) {
            const int place = Place[At(Count++)] = model.UnknownOf[At(kTraX + axis - 1)] - 1;
            Of[0][place] = 1;
        }
        const Form change = Change(at, moments, axis);
        for (std::size_t c = 0; c < 4; ++c) {
            Of[c][model.Unknowns] = -change[c];
            Root[c] = std::sqrt(moments.B[At(axis)][c][c]);
        }
    }
};

// What a pass adds up: the equations, and for each unknown no less than the diagonal would be without the
// signs of its terms.
struct LaneSums {
    SmallEquations& Equations;
    alignas(kLaneAlignment) double Most[kMostSmall + 1];
};

#define LANES_BODY "fit/moment_equations.inl"
#include "fit/all_widths.inl"

using Equation = void (*)(const PointMoments&, const LaneColumns*, int, int, LaneSums&);

Equation EquationOf(VectorWidth width) {
    switch (width) {
#if defined(__x86_64__) && !defined(CORVINADE_NO_CLONES)
        case VectorWidth::Eight:
            return lanes512::Equate;
        case VectorWidth::Four:
            return lanes256::Equate;
#endif
        default:
            return lanes128::Equate;
    }
}

// What is left of the digits, term by term.
bool DigitsAreLeft(const FitModel& model, const Linearisation& at, const PointMoments& moments,
                   const SmallEquations& equations) {
    std::array<double, kParameterEnd> withoutSigns{};
    for (int axis = 1; axis <= 3; ++axis) {
        const AxisForms forms(model, at, axis);
        for (int k = 0; k < forms.Count; ++k)
            withoutSigns[At(forms.Unknown[At(k)] - 1)] +=
                ProductWithoutSigns<4>(moments.B[At(axis)], forms.Forms[At(k)]);
    }
    for (std::size_t i = 0; i < At(model.Unknowns); ++i)
        if (equations.N[i][i] < kLeastShare * withoutSigns[i]) return false;
    return true;
}

}  // namespace

bool NormalEquations(const FitModel& model, const Linearisation& at, const PointMoments& moments,
                     VectorWidth width, SmallEquations& equations) {
    const int u = model.Unknowns;
    Require(u <= kMostSmall && moments.Places == 4 && width <= WidestVectors());
    const int whole = WholeLanes(u + 1);
    LaneColumns columns[3];
    for (int axis = 1; axis <= 3; ++axis) columns[axis - 1].Take(model, at, moments, axis, whole);
    LaneSums sums{equations};
    EquationOf(width)(moments, columns, u, whole, sums);
    // The sums without signs are worth their time only where this bound of them is not enough.
    for (std::size_t i = 0; i < At(u); ++i)
        if (!(equations.N[i][i] >= kLeastShare * sums.Most[i]))
            return DigitsAreLeft(model, at, moments, equations);
    return true;
}

bool NormalEquations(const FitModel& model, const Linearisation& at, const PointMoments& moments,
                     SmallEquations& equations) {
    static const VectorWidth widest = WidestVectors();
    return NormalEquations(model, at, moments, widest, equations);
}

bool NormalEquations(const FitModel& model, const Linearisation& at, const PointMoments& moments, Matrix& N,
                     Column& w) {
    const int u = model.Unknowns;
    std::array<double, kParameterEnd> withoutSigns{};
    for (int i = 1; i <= u; ++i) {
        w[At(i)] = 0;
        for (int j = 1; j <= u; ++j) N(i, j) = 0;
    }
    const bool tool = moments.Places == kMostPlaces;
    for (int axis = 1; axis <= 3; ++axis)
        tool ? AddAxis<kMostPlaces>(model, at, moments, axis, N, w, withoutSigns)
             : AddAxis<4>(model, at, moments, axis, N, w, withoutSigns);
    // An axis adds a product once, on whatever side of the diagonal.
    for (int i = 1; i <= u; ++i)
        for (int j = 1; j < i; ++j) N(i, j) = N(j, i) = N(i, j) + N(j, i);
    for (int i = 1; i <= u; ++i)
        if (N(i, i) < kLeastShare * withoutSigns[At(i)]) return false;
    return true;
}

double MovedSince(const Linearisation& at, const PointMoments& moments) {
    double moved = 0, size = 0;
    for (int axis = 1; axis <= 3; ++axis) {
        const Square& B = moments.B[At(axis)];
        const Form change = Change(at, moments, axis);
        double way = std::fabs(change[0]);
        for (std::size_t k = 1; k < At(moments.Places); ++k) {
            const double extent = B[0][0] > 0 ? std::sqrt(B[k][k] / B[0][0]) : 0;
            way += std::fabs(change[k]) * extent;
            if (k < 4) size = std::fmax(size, extent);
        }
        moved = std::fmax(moved, way);
    }
    return size > 0 ? moved / size : 1;
}

}  // namespace corvinade::fit
