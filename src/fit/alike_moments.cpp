// The sums of a weighted fit where the sigmas are the same for all pairs.
#include "fit/alike_moments.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

#include "fit/any_vectors.h"
#include "fit/lanes.h"

namespace corvinade::fit {

namespace {

constexpr int kAll = 7;        // x, y and z in use
constexpr int kProducts = 28;  // of the seven places, each with itself and those behind

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

std::array<double, 3> UseOf(int choice) {
    return {choice & 1 ? 1.0 : 0.0, choice & 2 ? 1.0 : 0.0, choice & 4 ? 1.0 : 0.0};
}

// Where the product of two places stands, a no greater than b.
constexpr std::size_t PlaceOf(std::size_t a, std::size_t b) {
    return a * kAlikePlaces - a * (a + 1) / 2 + b;
}

using Vector = double __attribute__((vector_size(kLanes * sizeof(double))));

// Eight points, by place.
using LaneRows = std::array<std::array<double, kLanes>, kAlikePlaces>;

struct Lanes {
    alignas(kLaneAlignment) std::array<std::array<double, kLanes>, kProducts> Sums{};
};

// Eight points, place by place; place 0 is 1, or 0 where there is no point.
void AddProducts(const LaneRows& y, Lanes& lanes) {
    std::size_t k = 0;
    for (std::size_t a = 0; a < kAlikePlaces; ++a)
        for (std::size_t b = a; b < kAlikePlaces; ++b, ++k)
            for (std::size_t j = 0; j < kLanes; ++j) lanes.Sums[k][j] += y[a][j] * y[b][j];
}

// The residuals of eight points.
void TakeResiduals(const GatheredPoints& points, const Linearisation& at, std::size_t first, LaneRows& y) {
    const double *const px = &points.Start[0][first], *const py = &points.Start[1][first],
                        *const pz = &points.Start[2][first];
    for (int a = 1; a <= 3; ++a) {
        const double shift = at.Shift(a), m1 = at.M(a, 1), m2 = at.M(a, 2), m3 = at.M(a, 3);
        const double* const target = &points.Target[At(a - 1)][first];
        double* const r = y[At(a + 3)].data();
        for (std::size_t j = 0; j < kLanes; ++j)
            r[j] = (shift - target[j]) + (m1 * px[j] + m2 * py[j] + m3 * pz[j]);
    }
}

AlikeSquare Gathered(const Lanes& lanes) {
    AlikeSquare square{};
    std::size_t k = 0;
    for (std::size_t a = 0; a < kAlikePlaces; ++a)
        for (std::size_t b = a; b < kAlikePlaces; ++b, ++k)
            square[a][b] = square[b][a] = SumOfLanes(lanes.Sums[k].data());
    return square;
}

// Whole groups of points up to `end`, which are in use with all coordinates.
ON_ANY_VECTORS void AddWholeGroups(const GatheredPoints& points, const Linearisation& at, int end,
                                   Lanes& lanes) {
    double m[3][3], shift[3];
    for (int a = 0; a < 3; ++a) {
        shift[a] = at.Shift(a + 1);
        for (int k = 0; k < 3; ++k) m[a][k] = at.M(a + 1, k + 1);
    }
    // Those of the points alone, those with a residual, and the residuals' own: by place without the first.
    Vector ofStart[9] = {}, ofResidual[3][4] = {}, squares[6] = {};
    for (int i = 0; i < end; i += kLanes) {
        Vector p[3], r[3];
        for (std::size_t a = 0; a < 3; ++a) std::memcpy(&p[a], points.Start[a].data() + i, sizeof p[a]);
        for (std::size_t a = 0; a < 3; ++a) {
            std::memcpy(&r[a], points.Target[a].data() + i, sizeof r[a]);
            r[a] = (shift[a] - r[a]) + (m[a][0] * p[0] + m[a][1] * p[1] + m[a][2] * p[2]);
        }
        const Vector ofPoint[9] = {p[0],        p[1],        p[2],        p[0] * p[0], p[0] * p[1],
                                   p[0] * p[2], p[1] * p[1], p[1] * p[2], p[2] * p[2]};
        for (int k = 0; k < 9; ++k) ofStart[k] += ofPoint[k];
        for (int a = 0; a < 3; ++a) {
            ofResidual[a][0] += r[a];
            for (int k = 0; k < 3; ++k) ofResidual[a][k + 1] += r[a] * p[k];
        }
        const Vector ofBoth[6] = {r[0] * r[0], r[0] * r[1], r[0] * r[2],
                                  r[1] * r[1], r[1] * r[2], r[2] * r[2]};
        for (int k = 0; k < 6; ++k) squares[k] += ofBoth[k];
    }
    const auto put = [&lanes](std::size_t a, std::size_t b, const Vector& sum) {
        std::memcpy(lanes.Sums[PlaceOf(a, b)].data(), &sum, sizeof sum);
    };
    for (std::size_t a = 0, k = 3; a < 3; ++a) {
        put(0, a + 1, ofStart[a]);
        for (std::size_t b = a; b < 3; ++b) put(a + 1, b + 1, ofStart[k++]);
        for (std::size_t b = 0; b < 4; ++b) put(b, a + 4, ofResidual[a][b]);
    }
    for (std::size_t a = 0, k = 0; a < 3; ++a)
        for (std::size_t b = a; b < 3; ++b) put(a + 4, b + 4, squares[k++]);
}

// Where all coordinates are in use.
AlikeSquare SquareOfAll(const GatheredPoints& points, const Linearisation& at) {
    Lanes lanes;
    const int whole = points.Count / kLanes * kLanes;
    AddWholeGroups(points, at, whole, lanes);
    if (whole < points.Count) {
        LaneRows y{};
        TakeResiduals(points, at, At(whole), y);
        for (std::size_t axis = 0; axis < 3; ++axis)
            std::copy_n(&points.Start[axis][At(whole)], kLanes, y[axis + 1].begin());
        // The points that fill up the last group are none.
        for (std::size_t place = 0; place < kAlikePlaces; ++place)
            for (int j = 0; j < kLanes; ++j)
                if (whole + j >= points.Count)
                    y[place][At(j)] = 0;
                else if (place == 0)
                    y[place][At(j)] = 1;
        AddProducts(y, lanes);
    }
    AlikeSquare square = Gathered(lanes);
    square[0][0] = points.Count;
    return square;
}

// L S L' of any number of rows.
template <std::size_t rows>
std::array<std::array<double, rows>, rows> Mapped(const std::array<std::array<double, kAlikePlaces>, rows>& L,
                                                  const AlikeSquare& S) {
    std::array<std::array<double, kAlikePlaces>, rows> LS{};
    std::array<std::array<double, rows>, rows> mapped{};
    for (std::size_t i = 0; i < rows; ++i)
        for (std::size_t k = 0; k < kAlikePlaces; ++k)
            for (std::size_t j = 0; j < kAlikePlaces; ++j) LS[i][j] += L[i][k] * S[k][j];
    for (std::size_t i = 0; i < rows; ++i)
        for (std::size_t j = 0; j < rows; ++j)
            for (std::size_t k = 0; k < kAlikePlaces; ++k) mapped[i][j] += LS[i][k] * L[j][k];
    return mapped;
}

// The moments of the same points with the residuals of another linearisation.
AlikeSquare MovedTo(const AlikeMoments& moments, int choice, const Linearisation& at) {
    const std::array<double, 3> use = UseOf(choice);
    AlikeSquare L{};
    for (std::size_t i = 0; i < kAlikePlaces; ++i) L[i][i] = 1;
    for (int a = 1; a <= 3; ++a) {
        if (use[At(a - 1)] == 0) continue;
        L[At(a + 3)][0] = at.Shift(a) - moments.Shift(a);
        for (int j = 1; j <= 3; ++j) L[At(a + 3)][At(j)] = at.M(a, j) - moments.M(a, j);
    }
    return Mapped(L, moments.Of[At(choice)]);
}

Form4 FormOf(const std::array<std::array<double, 4>, 4>& S) {
    return {S[0][0], S[0][1], S[0][2], S[0][3], S[1][1], S[1][2], S[1][3], S[2][2], S[2][3], S[3][3]};
}

void AddTimes(double w, const Form4& form, Form4& sum) {
    for (std::size_t k = 0; k < form.size(); ++k) sum[k] += w * form[k];
}

}  // namespace

AlikeMoments TakeMoments(const GatheredPoints& points, const Column& inUse, const Linearisation& at) {
    AlikeMoments moments;
    moments.M = at.M;
    moments.Shift = at.Shift;
    if (points.AllInUse) {
        moments.Of[kAll] = SquareOfAll(points, at);
        moments.Any[kAll] = true;
        return moments;
    }
    const auto lanes = std::make_unique<std::array<Lanes, 8>>();
    for (int first = 0; first < points.Count; first += kLanes) {
        const int there = std::min(kLanes, points.Count - first);
        std::array<int, kLanes> choice{};
        bool whole = there == kLanes;
        for (int j = 0; j < there; ++j) {
            const double* const use = &inUse[At(3 * (first + j) + 1)];
            choice[At(j)] = (use[0] != 0 ? 1 : 0) + (use[1] != 0 ? 2 : 0) + (use[2] != 0 ? 4 : 0);
            whole = whole && choice[At(j)] == kAll;
        }
        LaneRows y;
        y[0].fill(1);
        for (std::size_t axis = 0; axis < 3; ++axis)
            std::copy_n(&points.Start[axis][At(first)], kLanes, y[axis + 1].begin());
        TakeResiduals(points, at, At(first), y);
        if (whole) {
            AddProducts(y, (*lanes)[kAll]);
            moments.Any[kAll] = true;
            continue;
        }
        for (int j = 0; j < there; ++j) {
            const int of = choice[At(j)];
            if (of == 0) continue;
            LaneRows one{};
            const std::array<double, 3> use = UseOf(of);
            for (std::size_t place = 0; place < kAlikePlaces; ++place)
                one[place][At(j)] = place < 4 || use[place - 4] != 0 ? y[place][At(j)] : 0;
            AddProducts(one, (*lanes)[At(of)]);
            moments.Any[At(of)] = true;
        }
    }
    for (std::size_t of = 1; of < 8; ++of) moments.Of[of] = Gathered((*lanes)[of]);
    return moments;
}

bool HasLostDigits(const AlikeMoments& moments, const Linearisation& at) {
    // Squares of residuals that are smaller by more than this than they were are differences of what has few
    // digits left.
    constexpr double kShare = 1e-6;
    for (int choice = 1; choice < 8; ++choice) {
        if (!moments.Any[At(choice)]) continue;
        const AlikeSquare& before = moments.Of[At(choice)];
        const AlikeSquare now = MovedTo(moments, choice, at);
        for (std::size_t a = 4; a < kAlikePlaces; ++a)
            if (now[a][a] < kShare * before[a][a]) return true;
    }
    return false;
}

WeightedSums SumsByMoments(const AlikeMoments& moments, const PairSigmas& sigmas, const Linearisation& at) {
    WeightedSums sums;
    for (int choice = 1; choice < 8; ++choice) {
        if (!moments.Any[At(choice)]) continue;
        const std::array<double, 3> use = UseOf(choice);
        const PairWeight weight = WeightOf(sigmas, at.M, 0, use.data());
        const AlikeSquare S = MovedTo(moments, choice, at);
        // [1 p - SM W r] and r.
        AlikeSquare L{};
        for (std::size_t i = 0; i < kAlikePlaces; ++i) L[i][i] = 1;
        for (int i = 1; i <= 3; ++i)
            for (int j = 1; j <= 3; ++j)
                for (int k = 1; k <= 3; ++k) L[At(i)][At(j + 3)] -= weight.SM(i, k) * weight.W(k, j);
        const AlikeSquare corrected = Mapped(L, S);
        std::array<std::array<double, 4>, 4> points{};
        for (std::size_t i = 0; i < 4; ++i)
            for (std::size_t j = 0; j < 4; ++j) points[i][j] = corrected[i][j];
        for (int a = 1; a <= 3; ++a)
            for (int b = 1; b <= 3; ++b) {
                const double w = weight.W(a, b);
                if (b >= a) AddTimes(w, FormOf(points), sums.Squares[At(AxisPair(a, b))]);
                for (std::size_t k = 0; k < 4; ++k) sums.Gradient[At(a)][k] += w * corrected[k][At(b + 3)];
                sums.Objective += w * S[At(a + 3)][At(b + 3)];
            }
    }
    return sums;
}

std::array<Form4, kAxisPairs> SquaresByMoments(const AlikeMoments& moments, const PairSigmas& sigmas,
                                               const Linearisation& at) {
    std::array<Form4, kAxisPairs> squares{};
    for (int choice = 1; choice < 8; ++choice) {
        if (!moments.Any[At(choice)]) continue;
        const std::array<double, 3> use = UseOf(choice);
        const Mat3 W = WeightOf(sigmas, at.M, 0, use.data()).W;
        std::array<std::array<double, 4>, 4> points{};
        for (std::size_t i = 0; i < 4; ++i)
            for (std::size_t j = 0; j < 4; ++j) points[i][j] = moments.Of[At(choice)][i][j];
        for (int a = 1; a <= 3; ++a)
            for (int b = a; b <= 3; ++b) AddTimes(W(a, b), FormOf(points), squares[At(AxisPair(a, b))]);
    }
    return squares;
}

}  // namespace corvinade::fit
