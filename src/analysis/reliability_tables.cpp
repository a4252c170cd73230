// What the window "Reliability" shows, as sentences and cells.
#include "analysis/reliability_tables.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "analysis/form_reliability.h"
#include "core/job.h"
#include "core/job_tolerance.h"
#include "core/numbers.h"
#include "core/parameter_names.h"
#include "core/units.h"
#include "engine/adjustment.h"
#include "engine/calculation.h"
#include "engine/norm_table.h"
#include "engine/parameter_kind.h"
#include "engine/result_statistics.h"
#include "engine/tolerance_check.h"

namespace corvinade::analysis {

namespace {

// Grounds that dark text reads well on; red in the low byte.
constexpr std::int32_t kOutlierGround = 0x9A9AF2, kPredictedGround = 0x66D1FF, kOpenGround = 0xE3D3C3;

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

std::string Plain(double value, const char* picture) {
    return std::isfinite(value) ? FormatNumber(value, picture) : "";
}

std::string Length(double value_mm) {
    return std::isfinite(value_mm) ? ShownLength(value_mm) : "";
}

std::string UnitOf(ParameterKind kind) {
    return kind == ParameterKind::Length  ? Job.LengthUnitName
           : kind == ParameterKind::Angle ? Job.AngleUnitName
                                          : "";
}

int PairOf(std::size_t index) {
    return static_cast<int>((index - 1) / 3) + 1;
}
int AxisOf(std::size_t index) {
    return static_cast<int>((index - 1) % 3) + 1;
}

bool IsOfJob(std::size_t index) {
    return index >= 1 && PairOf(index) <= Job.Pairs() && index < Calculation.v.size();
}

}  // namespace

std::string GlobalTestInWords(const AdjustmentStatistics& s) {
    if (!s.APriori || s.Singular || s.Redundancy == 0) return "";
    const std::string limits = Plain(s.Vtpv, "0.00") + ", limits " + Plain(s.ChiSquareLow, "0.00") + " to " +
                               Plain(s.ChiSquareHigh, "0.00");
    if (s.Vtpv > s.ChiSquareHigh)
        return "failed, too large (" + limits +
               "): the deviations are larger than the standard deviations explain";
    if (s.Vtpv < s.ChiSquareLow)
        return "failed, too small (" + limits +
               "): the deviations are smaller than the standard deviations let expect";
    return "passed (" + limits + "): the deviations are as large as the standard deviations let expect";
}

std::string GlobalTestSentence(const AdjustmentStatistics& s) {
    if (s.Singular) return "No numbers: " + NoteOfStatistics(s) + ".";
    if (s.Redundancy == 0) return "No test: " + NoteOfStatistics(s) + ".";
    if (!s.APriori)
        return "No standard deviations are given, so there is no global test: the deviations themselves are the "
               "measure of the accuracy, s0 = " +
               Length(s.s0) + " " + Job.LengthUnitName + " of a coordinate.";
    const char* const advice = s.Vtpv > s.ChiSquareHigh  ? " Look for a wrong point first."
                               : s.Vtpv < s.ChiSquareLow ? " The measurement is better than you said."
                                                         : "";
    return "Global test " + GlobalTestInWords(s) + "." + advice;
}

std::string WhyNoStatistics() {
    if (!CalculationIsOfThisJob() || Calculation.Refused)
        return "There is no calculation yet. The tables are filled behind each one.";
    if (!Calculation.Converged || !Calculation.Finite)
        return "The calculation did not converge: its result has no accuracies.";
    if (IsTrue(Job.IsParaboloid)) return "A fit to a shape has no statistics of this kind.";
    if (!IsLeastSquares(NormOfJob())) return "There are statistics of the norm L2 alone.";
    return "There are statistics of points that are to coincide alone, not of R_Dist and the tool vector.";
}

std::vector<std::size_t> WorstFirst(const AdjustmentStatistics& s) {
    std::vector<std::size_t> order(s.Standardized.empty() ? 0 : s.Standardized.size() - 1);
    std::iota(order.begin(), order.end(), std::size_t{1});
    const auto size = [&s](std::size_t i) {
        return std::isfinite(s.Standardized[i]) ? std::fabs(s.Standardized[i]) : -1;
    };
    std::stable_sort(order.begin(), order.end(),
                     [&size](std::size_t a, std::size_t b) { return size(a) > size(b); });
    return order;
}

std::string CoordinateText(const AdjustmentStatistics& s, std::size_t index, int col) {
    if (!IsOfJob(index)) return "";
    const int pair = PairOf(index), axis = AxisOf(index);
    switch (col) {
        case kRelPoint:
            return Job.Start.Name[At(pair)];
        case kRelAxis:
            return std::string(1, "wxyz"[axis]);
        case kRelResidual:
            return Length(Calculation.v[index]);
        case kRelRedundancy:
            return Plain(s.Redundancies[index], "0.000");
        case kRelStandardized:
            return Plain(s.Standardized[index], "0.00");
        case kRelMdb:
            return Length(s.Mdb(index));
        case kRelVerdict:
            if (IsTurned(index))
                return Used(pair, axis) ? "in from the next calculation" : "out from the next calculation";
            return VerdictOf(s, pair, axis);
        default:
            return "";
    }
}

std::int32_t CoordinateColour(const AdjustmentStatistics& s, std::size_t index, int col) {
    if (!IsOfJob(index) || IsTurned(index)) return kSystemColour;
    if (col == kRelResidual && IsBeyond(PairOf(index), AxisOf(index), ToleranceOf(Job)))
        return kBeyondTolerance;
    if (col != kRelVerdict && col != kRelStandardized) return kSystemColour;
    const bool used = Used(PairOf(index), AxisOf(index));
    if (s.IsOutlier(index, used)) return used ? kOutlierGround : kPredictedGround;
    return used && col == kRelVerdict && !std::isfinite(s.Standardized[index]) ? kOpenGround : kSystemColour;
}

std::vector<int> FloatingParameters(const AdjustmentStatistics& s) {
    std::vector<int> parameters;
    for (int k = kTraX; k < kParameterEnd; ++k)
        if (s.Model.UnknownOf[At(k)] != 0) parameters.push_back(k);
    return parameters;
}

std::int32_t CorrelationColour(double correlation) {
    constexpr double kShadedFrom = 0.3;
    constexpr std::array<double, 3> kLight = {0xF4, 0xF0, 0xDC},
                                    kDark = {0xF2, 0x9A, 0x7A};  // red, green, blue
    const double size = std::min(1.0, std::fabs(correlation));
    if (!(size >= kShadedFrom)) return kSystemColour;
    const double share = (size - kShadedFrom) / (1 - kShadedFrom);
    std::int32_t colour = 0;
    for (std::size_t k = 3; k-- > 0;)
        colour =
            colour * 256 + static_cast<std::int32_t>(std::lround(kLight[k] + share * (kDark[k] - kLight[k])));
    return colour;
}

int AccuracyRows(const AdjustmentStatistics& s) {
    return 1 + static_cast<int>(FloatingParameters(s).size()) + Job.Start.Count();
}

std::string AccuracyText(const AdjustmentStatistics& s, int row, int col) {
    if (row == 0) {
        static constexpr std::array<const char*, kAccCols> kTitles = {
            "Parameter, point", "sigma",   "with s0", "unit",   "sigma x",
            "sigma y",          "sigma z", "axis 1",  "axis 2", "axis 3"};
        return kTitles[At(col)];
    }
    const std::vector<int> floating = FloatingParameters(s);
    const int parameters = static_cast<int>(floating.size());
    if (row <= parameters) {
        const int k = floating[At(row - 1)];
        const double sigma = s.Sigma(s.Model.UnknownOf[At(k)]);
        const auto shown = [k](double value) {
            return std::isfinite(value) ? ShownAs(KindOf(k), value) : "";
        };
        if (col == kAccName) return ParameterName(k);
        if (col == kAccSigma) return shown(sigma);
        if (col == kAccPosterior) return s.APriori ? shown(sigma * s.s0) : "";
        return col == kAccUnit ? UnitOf(KindOf(k)) : "";
    }
    const int point = row - parameters;
    if (point > Job.Start.Count()) return "";
    if (col == kAccName) return Job.Start.Name[At(point)];
    if (col == kAccUnit) return UnitOf(KindOf(kTraX));
    if (col < kAccX || !std::isfinite(s.VarianceFactor)) return "";
    if (col <= kAccZ) return Length(SigmaOfTransformed(s, StartPoint(point))(col - kAccX + 1));
    const Ellipsoid ellipsoid = EllipsoidOf(CovarianceOfTransformed(s, StartPoint(point)), s.EllipsoidFactor);
    return Length(ellipsoid.SemiAxes(col - kAccAxis1 + 1));
}

}  // namespace corvinade::analysis
