// How far the result of a fit by least squares can be trusted: accuracies of its parameters and of points
// that it transforms, and the reliability of its observations (Baarda 1968, Pope 1976). Of the plain model,
// points that are to coincide. Nothing here is of a size n by n: a pair has a block of 3 by 3.
#pragma once

#include <array>
#include <string>

#include "fit/arrays.h"
#include "fit/axis_forms.h"
#include "fit/design.h"
#include "fit/gathered_points.h"
#include "fit/pair_weights.h"
#include "fit/parameters.h"

namespace corvinade::fit {

struct TestLevels {
    double AlphaSingle = 0.001;  // error of the first kind of the test of one coordinate, two-sided
    double AlphaGlobal = 0.05;   // of the global test, two-sided
    double Power = 0.8;          // with which a bias of the size of the MDB is found
    double Confidence = 0.95;    // of the ellipsoids
};

struct StatisticsProblem {
    const GatheredPoints& Points;  // with the weights InUse set (SetWeights) where there are no sigmas
    const FitModel& Model;
    const Parameters& Result;
    const Column& InUse;                 // three a pair, from 1 on: 0 takes no part
    const Column& Residuals;             // likewise, transformed minus target, mm
    const PairSigmas* Sigmas = nullptr;  // a-priori; null: all weights are 1, and s0 says how large they are
    TestLevels Levels = {};
};

// A number that cannot be had is NaN.
struct AdjustmentStatistics {
    FitModel Model;
    TestLevels Levels;
    bool APriori = false;  // there are a-priori standard deviations
    int Observations = 0, Unknowns = 0;
    int Redundancy = 0;  // r = n - u
    double Vtpv = 0;     // sum of v' W v: mm^2, with a-priori sigmas none
    double s0 = 0;       // sqrt(vtpv / r): mm, with a-priori sigmas none
    // Parameters that the coordinates in use do not tell apart, by number; where there is one everything
    // below is without meaning.
    std::array<bool, kParameterEnd> Undetermined{};
    bool Singular = false;
    bool OfRounding = false;    // the residuals are no more than the rounding of the coordinates: no test
    Matrix Q;                   // (sum A' W A)^-1 of the parameters, mm and rad; with unit weights per mm^2
    double VarianceFactor = 0;  // of Q: s0^2, with a-priori sigmas 1
    double CriticalValue = 0;   // of |standardized| of a coordinate in use
    double CriticalPredicted = 0;  // of one out of use
    double Shift = 0;              // delta: non-centrality that the test finds with Levels.Power
    double EllipsoidFactor = 0;    // from standard ellipsoid to that of Levels.Confidence
    double ChiSquareLow = 0, ChiSquareHigh = 0;  // limits of vtpv in the global test; with a-priori sigmas
    // Three a pair, from 1 on; x y z.
    Column Redundancies;  // (Qvv W)_ii, NaN out of use
    Column Standardized;  // Baarda's w, without a-priori sigmas Pope's tau; out of use that of the prediction
    Column Control;       // (W Qvv W)_ii, with a-priori sigmas; without them it is the redundancy

    // A Q A' as forms of the start point about this centre.
    Vec3 Centre;
    std::array<Form4, kAxisPairs> Variances{};

    // Is the residual of this coordinate too large? False where there is no test.
    bool IsOutlier(std::size_t index, bool inUse) const {
        const double size = Standardized[index] < 0 ? -Standardized[index] : Standardized[index];
        return size > (inUse ? CriticalValue : CriticalPredicted);
    }
    double Mdb(std::size_t index) const;  // smallest bias of the target coordinate that the test finds, mm
    double Sigma(int unknown) const;      // of an unknown 1 to u, mm or rad
    double Covariance(int i, int j) const { return VarianceFactor * Q(i, j); }
    double Correlation(int i, int j) const;
};

// With fewer observations than unknowns the redundancy is below 0, and all is undetermined.
AdjustmentStatistics StatisticsOf(const StatisticsProblem& problem);

// Covariance of a transformed point by that of the parameters alone, mm^2: A (s^2 Q) A'.
//   start  the point before the transformation, mm
Mat3 CovarianceOfTransformed(const AdjustmentStatistics& statistics, const Vec3& start);

// The roots of its diagonal, mm.
Vec3 SigmaOfTransformed(const AdjustmentStatistics& statistics, const Vec3& start);

// The ellipsoid of a covariance matrix times the square of a factor.
struct Ellipsoid {
    Vec3 SemiAxes;    // mm, the largest first
    Mat3 Directions;  // rows: their unit vectors, the greatest component above 0
};
Ellipsoid EllipsoidOf(const Mat3& covariance, double factor);

}  // namespace corvinade::fit
