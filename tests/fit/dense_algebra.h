// Adjustment the long way, for tests: matrices of all observations, derivatives by finite differences,
// nothing of the program's own but the transformation of a point.
#pragma once

#include <array>
#include <cmath>
#include <functional>
#include <random>
#include <utility>
#include <vector>

#include "fit/adjustment_statistics.h"
#include "fit/fit.h"

namespace dense {

using namespace corvinade::fit;

inline std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// Rows and columns from 0.
struct Dense {
    int Rows = 0, Columns = 0;
    std::vector<double> Elements;
    Dense(int rows, int columns) : Rows(rows), Columns(columns), Elements(At(rows * columns)) {}
    double& operator()(int i, int j) { return Elements[At(i * Columns + j)]; }
    double operator()(int i, int j) const { return Elements[At(i * Columns + j)]; }
};

inline Dense operator*(const Dense& A, const Dense& B) {
    Dense C(A.Rows, B.Columns);
    for (int i = 0; i < A.Rows; ++i)
        for (int k = 0; k < A.Columns; ++k)
            for (int j = 0; j < B.Columns; ++j) C(i, j) += A(i, k) * B(k, j);
    return C;
}

inline Dense operator-(const Dense& A, const Dense& B) {
    Dense C = A;
    for (std::size_t k = 0; k < C.Elements.size(); ++k) C.Elements[k] -= B.Elements[k];
    return C;
}

inline Dense Transposed(const Dense& A) {
    Dense T(A.Columns, A.Rows);
    for (int i = 0; i < A.Rows; ++i)
        for (int j = 0; j < A.Columns; ++j) T(j, i) = A(i, j);
    return T;
}

// By elimination with the largest pivot of each column.
inline Dense Solved(Dense A, Dense B) {
    for (int k = 0; k < A.Rows; ++k) {
        int best = k;
        for (int i = k; i < A.Rows; ++i)
            if (std::fabs(A(i, k)) > std::fabs(A(best, k))) best = i;
        for (int j = 0; j < A.Columns; ++j) std::swap(A(k, j), A(best, j));
        for (int j = 0; j < B.Columns; ++j) std::swap(B(k, j), B(best, j));
        for (int i = 0; i < A.Rows; ++i) {
            if (i == k) continue;
            const double f = A(i, k) / A(k, k);
            if (f == 0) continue;
            for (int j = k; j < A.Columns; ++j) A(i, j) -= f * A(k, j);
            for (int j = 0; j < B.Columns; ++j) B(i, j) -= f * B(k, j);
        }
    }
    for (int i = 0; i < A.Rows; ++i)
        for (int j = 0; j < B.Columns; ++j) B(i, j) /= A(i, i);
    return B;
}

inline Dense Inverse(const Dense& A) {
    Dense one(A.Rows, A.Rows);
    for (int i = 0; i < A.Rows; ++i) one(i, i) = 1;
    return Solved(A, one);
}

using Columns = std::array<std::vector<double>, 3>;

inline std::array<std::span<const double>, 3> Spans(const Columns& columns) {
    return {columns[0], columns[1], columns[2]};
}

// T + R K S x, by the matrices of the chain one after the other.
inline std::array<double, 3> Image(const Parameters& p, double x, double y, double z) {
    Mat3 R, K;
    RotMatrixXYZ(p[kRotX], p[kRotY], p[kRotZ], R);
    BuildShearMatrix(p[kAngleXY], p[kAzimuth], p[kAngleZtoXY], K);
    const double s[3] = {p[kScaleX] * x, p[kScaleY] * y, p[kScaleZ] * z};
    double k[3] = {};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) k[i] += K(i + 1, j + 1) * s[j];
    std::array<double, 3> image = {p[kTraX], p[kTraY], p[kTraZ]};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) image[At(i)] += R(i + 1, j + 1) * k[j];
    return image;
}

inline Mat3 MatrixOf(const Parameters& p) {
    const auto zero = Image(p, 0, 0, 0), x = Image(p, 1, 0, 0), y = Image(p, 0, 1, 0), z = Image(p, 0, 0, 1);
    Mat3 M;
    for (int i = 0; i < 3; ++i) {
        M(i + 1, 1) = x[At(i)] - zero[At(i)];
        M(i + 1, 2) = y[At(i)] - zero[At(i)];
        M(i + 1, 3) = z[At(i)] - zero[At(i)];
    }
    return M;
}

// The unknowns of a model in their order, changed.
inline void Change(const FitModel& model, int unknown, double by, Parameters& p) {
    for (int k = kTraX; k < kParameterEnd; ++k) {
        if (model.UnknownOf[At(k)] != unknown) continue;
        p[k] += by;
        if (k == kScaleXYZ) p[kScaleX] = p[kScaleY] = p[kScaleZ] = p[k];
    }
}

// A step for central differences: moves points by some hundredths of a mm.
inline double StepOf(const FitModel& model, int unknown) {
    for (int k = kTraX; k < kParameterEnd; ++k)
        if (model.UnknownOf[At(k)] == unknown) return KindOf(k) == ParameterKind::Length ? 1e-1 : 1e-5;
    return 0;
}

// Derivatives of the three image coordinates of a point with respect to unknowns 0 to u - 1.
inline Dense RowsAt(const FitModel& model, const Parameters& p, double x, double y, double z) {
    Dense rows(3, model.Unknowns);
    for (int k = 1; k <= model.Unknowns; ++k) {
        const double step = StepOf(model, k);
        Parameters more = p, less = p;
        Change(model, k, step, more);
        Change(model, k, -step, less);
        const auto a = Image(more, x, y, z), b = Image(less, x, y, z);
        for (int i = 0; i < 3; ++i) rows(i, k - 1) = (a[At(i)] - b[At(i)]) / (2 * step);
    }
    return rows;
}

inline StartChoice Floating(const std::vector<int>& parameters) {
    StartChoice choice;
    for (const int k : parameters) choice.Floats[At(k)] = true;
    return choice;
}

inline const std::vector<int> kSix = {kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ};
inline const std::vector<int> kSeven = {kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ, kScaleXYZ};
inline const std::vector<int> kNine = {kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ, kScaleX, kScaleY, kScaleZ};
inline const std::vector<int> kTwelve = {kTraX,   kTraY,   kTraZ,   kRotX,    kRotY,    kRotZ,
                                         kScaleX, kScaleY, kScaleZ, kAngleXY, kAzimuth, kAngleZtoXY};

// Points of a cell, where a transformation takes them, and errors of both systems.
struct Example {
    Columns Start, Target;
    std::vector<double> InUse;

    int Count() const { return static_cast<int>(Start[0].size()); }
    PairColumns Pairs() const { return {.Start = Spans(Start), .Target = Spans(Target)}; }
};

inline const Parameters kTruth{
    {0, 1200, -350, 80, 0.2, -0.35, 0.6, 1.001, 0.999, 1.0005, 1, 0.02, 0.9, 0.03}};

inline Example MakeExample(int count, double noise_mm, unsigned seed, const std::vector<int>& floats) {
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> place(-900, 900);
    std::normal_distribution<double> error(0, noise_mm);
    Parameters truth;
    for (const int k : floats) truth[k] = kTruth[k];
    Example example;
    for (int i = 0; i < count; ++i) {
        const double p[3] = {place(random), place(random), place(random)};
        const auto q = Image(truth, p[0], p[1], p[2]);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            example.Start[axis].push_back(p[axis]);
            example.Target[axis].push_back(q[axis] + error(random));
        }
    }
    example.InUse.assign(At(3 * count), 1);
    return example;
}

inline FitResult FitOf(const Example& example, const std::vector<int>& floats,
                       const std::optional<PairSigmas>& sigmas = {}) {
    FitProblem problem;
    problem.Pairs = example.Pairs();
    problem.InUse = example.InUse;
    problem.Choice = Floating(floats);
    problem.Sigmas = sigmas;
    return Fit(problem);
}

inline AdjustmentStatistics StatisticsOfFit(const Example& example, const FitResult& fit,
                                            const PairSigmas* sigmas = nullptr,
                                            const TestLevels& levels = {}) {
    Column inUse(1, 0);
    inUse.insert(inUse.end(), example.InUse.begin(), example.InUse.end());
    GatheredPoints points;
    GatherPoints(example.Pairs(), inUse, false, points);
    SetWeights(inUse, points);
    return StatisticsOf({.Points = points,
                         .Model = fit.Model,
                         .Result = fit.Values,
                         .InUse = inUse,
                         .Residuals = fit.Residuals,
                         .Sigmas = sigmas,
                         .Levels = levels});
}

}  // namespace dense
