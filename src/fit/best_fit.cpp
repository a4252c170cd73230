// From the solution that the iteration has found to the best one there is.
#include "fit/best_fit.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>

#include "fit/best_tool_fit.h"
#include "fit/best_transformation.h"
#include "fit/chain_search.h"
#include "fit/corrections.h"
#include "fit/double_double.h"
#include "fit/found_values.h"
#include "fit/handedness.h"
#include "fit/matrix.h"
#include "fit/mirror.h"
#include "fit/moments.h"
#include "fit/norms.h"
#include "fit/small_svd.h"
#include "fit/thin_points.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

constexpr double kEpsilon = 2.220446049250313e-16;

double SumOfSquares(const NormRun& fit) {
    double sum = 0;
    for (int i = 1; i <= fit.Rows(); ++i) sum += fit.P[At(i)] * fit.Result.v[At(i)] * fit.Result.v[At(i)];
    return sum;
}

// The choice as one of the presets, all of whose parameters float and whose others are neutral.
std::optional<PlainModel> PresetOf(const FitModel& model, const Parameters& parameters) {
    const auto floats = [&](int parameter) { return model.UnknownOf[At(parameter)] != 0; };
    const auto all = [&](int first, int last) {
        for (int k = first; k <= last; ++k)
            if (!floats(k)) return false;
        return true;
    };
    const auto neutral = [&](int first, int last, double value) {
        for (int k = first; k <= last; ++k)
            if (floats(k) || parameters[k] != value) return false;
        return true;
    };
    if (!all(kTraX, kRotZ)) return {};
    const bool frame = all(kAngleXY, kAngleZtoXY);
    const bool rightAngled = neutral(kAngleXY, kAngleZtoXY, 0);
    if (floats(kScaleXYZ)) return rightAngled ? std::optional(PlainModel::Similarity) : std::nullopt;
    if (all(kScaleX, kScaleZ)) {
        if (frame) return PlainModel::Affine;
        return rightAngled ? std::optional(PlainModel::AxisScales) : std::nullopt;
    }
    if (neutral(kScaleX, kScaleXYZ, 1) && rightAngled) return PlainModel::Rigid;
    return {};
}

// What the user has said about where the iteration begins and what it keeps.
struct Wishes {
    bool OwnStart = false;  // a floating parameter begins at a value of the user's own
    bool NegativeScale = false;

    explicit Wishes(const NormRun& fit)
        : OwnStart(StartsAreOwn(fit.Choice)), NegativeScale(NegativeScaleIsWanted(fit.Choice)) {}
};

// A solution to be held against the present one.
struct Solution {
    Mat3 M;
    Mat3 OfMoments;  // the same of the points as they are in the moments
    Vec3 Shift;      // of the centred points
    ChainValues Values;
    double Gain = 0;
};

struct Solutions {
    std::optional<Solution> Proper, Mirrored;
    bool ClosedForm = false, ProperIsLeast = true;
    int Starts = 1;
};

// The sums that solutions are found and compared by: about the axes of the coordinates, or of thin points
// along their own.
struct Sums {
    PointMoments Moments;
    std::optional<Mat3> Axes;

    // M of the points as they are outside.
    Mat3 Outside(const Mat3& M) const {
        if (!Axes) return M;
        Mat3 back;
        MatrixTranspose(*Axes, 3, 3, back);
        return MatrixProduct(M, back);
    }
};

// Takes the sums at a linearisation, and finds the solutions of a preset in them.
Solutions FindPresets(const NormRun& fit, PlainModel preset, Linearisation at, Sums& sums) {
    BestTransformations best;
    sums.Axes = AxesOfThinPoints(fit.Points, sums.Moments, preset);
    if (sums.Axes) {
        const GatheredPoints along = AlongAxes(fit.Points, *sums.Axes);
        at.M = MatrixProduct(at.M, *sums.Axes);
        SumMoments(along, at, sums.Moments);
        best = BestOfThinPoints(along, sums.Moments, preset);
    }
    if (!best.Proper && !best.Mirrored) best = BestOfModel(sums.Moments, preset);
    Solutions found;
    const auto take = [&](const std::optional<CentredTransformation>& from, std::optional<Solution>& to) {
        if (!from || !std::isfinite(from->Gain)) return;
        const Mat3 M = sums.Outside(from->M);
        to = Solution{M, from->M, from->Shift, ValuesOf(M, preset), from->Gain};
    };
    take(best.Proper, found.Proper);
    take(best.Mirrored, found.Mirrored);
    found.ClosedForm = best.ClosedForm;
    found.ProperIsLeast = best.ProperIsLeast;
    found.Starts = best.Starts;
    return found;
}

Solutions FindSolutions(const NormRun& fit, const Linearisation& at, Sums& sums) {
    SumMoments(fit.Points, at, sums.Moments);
    sums.Axes.reset();
    const FitModel& model = fit.Model;
    if (const std::optional<PlainModel> preset = PresetOf(model, fit.Run.Now))
        return FindPresets(fit, *preset, at, sums);
    Solutions found;
    ChainChoice choice;
    choice.StartCentre = fit.Points.StartCentre;
    choice.TargetCentre = fit.Points.TargetCentre;
    for (int k = kTraX; k <= kAngleZtoXY; ++k) {
        choice.Floats[At(k)] = model.UnknownOf[At(k)] != 0;
        // What floats begins at the values of the search, not at those of a run that may have gone astray.
        if (!choice.Floats[At(k)]) choice.Held.Value[At(k)] = fit.Run.Now[k];
    }
    const ChainSearch search = SearchChain(sums.Moments, choice, StartsOf(sums.Moments, choice));
    const auto take = [&](const std::optional<ChainResult>& from, std::optional<Solution>& to) {
        if (!from) return;
        const Mat3 M = MatrixOf(from->Values);
        Solution solution{M, M, {}, from->Values, from->Gain};
        for (int axis = 1; axis <= 3; ++axis) {
            DoubleDouble sum{from->Values.Value[At(kTraX + axis - 1)], 0};
            for (int j = 1; j <= 3; ++j) sum.AddProduct(solution.M(axis, j), choice.StartCentre(j));
            sum.Add(-choice.TargetCentre(axis));
            solution.Shift(axis) = sum.Value();
        }
        to = solution;
    };
    take(search.Proper, found.Proper);
    take(search.Mirrored, found.Mirrored);
    found.Starts = search.Starts;
    return found;
}

// What rounding of the coordinates themselves adds to a sum of squares, mm^2.
double RoundingOfSum(const NormRun& fit, const Sums& sums) {
    const PointMoments& moments = sums.Moments;
    const Mat3 M = sums.Outside(moments.M);
    double largest = 0, rows = 0;
    for (int axis = 1; axis <= 3; ++axis) {
        const auto& B = moments.B[At(axis)];
        rows += B[0][0];
        double size = 0;
        for (int j = 1; j <= 3; ++j)
            size += std::fabs(M(axis, j)) * std::fabs(fit.Points.StartCentre(j)) +
                    std::fabs(moments.M(axis, j)) * std::sqrt(B[At(j)][At(j)]);
        largest = std::max({largest, size, std::fabs(fit.Points.TargetCentre(axis))});
    }
    const double each = 8 * kEpsilon * largest;
    return rows * each * each;
}

// One who seeks: the told run first, then what is better.
class Seeker {
public:
    explicit Seeker(NormRun& fit) : fit_(fit), wishes_(fit) {}

    // False when the job's points were replaced meanwhile.
    bool Run() {
        constexpr int kMostRounds = 4;
        // Start values of the user's own that lead beyond all numbers are for the user to mend.
        if (wishes_.OwnStart && !fit_.Run.State.Finite) return true;
        for (int round = 0; round < kMostRounds; ++round) {
            Look();
            const Solution* better = Better();
            if (better == nullptr) break;
            if (!BeginAgain(*better)) return false;
            if (fit_.Stops()) break;
        }
        Look();
        Certify();
        return true;
    }

private:
    // The sums at the present parameters, or where these are of no use at those that do nothing.
    void Look() {
        usable_ = fit_.Run.State.Finite && fit_.Run.State.Converged;
        Linearisation at = Linearise(fit_.Model, fit_.Run.Now, fit_.Points, fit_.Run.Chain);
        if (!usable_) {
            at.M = Mat3{};
            for (int k = 1; k <= 3; ++k) at.M(k, k) = 1;
            at.Shift = {};
        }
        found_ = FindSolutions(fit_, at, sums_);
        mirrored_ = usable_ && IsMirrored(fit_.Run.Chain);
        rounding_ = RoundingOfSum(fit_, sums_);
        sum_.reset();
    }

    double Sum() {
        if (!sum_) sum_ = SumOfSquares(fit_);
        return *sum_;
    }

    // The sum of a solution: from that of the present parameters where the moments stand there.
    double SumOf(const Solution& solution) {
        if (usable_) return std::max(0.0, Sum() - solution.Gain);
        double sum = 0;
        const GatheredPoints& points = fit_.Points;
        for (int axis = 1; axis <= 3; ++axis)
            for (int k = 0; k < points.Count; ++k) {
                const auto i = At(k);
                const double l =
                    points.Target[At(axis - 1)][i] - solution.Shift(axis) -
                    (solution.M(axis, 1) * points.Start[0][i] + solution.M(axis, 2) * points.Start[1][i] +
                     solution.M(axis, 3) * points.Start[2][i]);
                sum += (points.AllInUse ? 1 : points.Weight[At(axis - 1)][i]) * l * l;
            }
        return sum;
    }

    // The one of both sides of the mirror that is wanted; null where nothing was found.
    const Solution* Wanted() {
        const Solution* proper = found_.Proper ? &*found_.Proper : nullptr;
        const Solution* mirrored = found_.Mirrored ? &*found_.Mirrored : nullptr;
        if (proper == nullptr || mirrored == nullptr) return proper != nullptr ? proper : mirrored;
        if (fit_.ProperAlone) return proper;
        if (wishes_.NegativeScale) {
            if (usable_ && mirrored_) return mirrored;
            return mirrored->Gain > proper->Gain ? mirrored : proper;
        }
        if (!(mirrored->Gain > proper->Gain)) return proper;
        const int redundancy = static_cast<int>(rows_()) - fit_.Model.Unknowns;
        const auto told = [&] {
            return HandednessOf(fit_.Points, mirrored->M, mirrored->Shift, FitNorm::LeastSquares,
                                fit_.Model.Unknowns, SizeRatio(fit_.Points, FitNorm::LeastSquares));
        };
        const bool stands = MirrorMayStand(SumOf(*proper), SumOf(*mirrored), rounding_, redundancy,
                                           FitNorm::LeastSquares, told);
        return stands ? mirrored : proper;
    }

    double rows_() const {
        return sums_.Moments.B[1][0][0] + sums_.Moments.B[2][0][0] + sums_.Moments.B[3][0][0];
    }

    // How far the points move from here to a solution, mean square, mm^2.
    double MoveTo(const Solution& other) const {
        double squares = 0;
        for (int axis = 1; axis <= 3; ++axis) {
            const auto& B = sums_.Moments.B[At(axis)];
            const auto d = ChangeOf(sums_.Moments, other.OfMoments, other.Shift, axis);
            for (std::size_t i = 0; i < 4; ++i)
                for (std::size_t j = 0; j < 4; ++j) squares += d[i] * B[i][j] * d[j];
        }
        return squares / std::max(1.0, rows_());
    }

    // The same solution but for what the iteration's own end leaves: a correction below its threshold.
    bool IsHere(const Solution& other) const {
        double spread = 0;
        for (int axis = 1; axis <= 3; ++axis)
            for (std::size_t k = 1; k <= 3; ++k) spread = std::max(spread, sums_.Moments.B[At(axis)][k][k]);
        const double arm = 1 + std::sqrt(spread / std::max(1.0, rows_() / 3));
        const double move = 10 * fit_.Run.Limits.Threshold * arm;
        return MoveTo(other) < move * move;
    }

    // A solution that the present one has to give way to; null where it stands.
    const Solution* Better() {
        constexpr double kSame = 5e-10;  // of the sum
        const Solution* wanted = Wanted();
        if (wanted == nullptr) return nullptr;
        if (!usable_) return wanted;
        const bool otherSide = mirrored_ && Determinant3(wanted->OfMoments) > 0 && !wishes_.NegativeScale;
        const double least = rounding_ + RoundingOfGain(sums_.Moments, wanted->OfMoments, wanted->Shift);
        const bool isBetter = wanted->Gain > least && wanted->Gain > kSame * Sum() + least;
        if (!isBetter && !otherSide) return nullptr;
        if (wishes_.OwnStart && !otherSide) {
            if (!begun_ && !IsHere(*wanted))
                Remark(FitRemark::What::OtherSolutionIsLess, TimesAsMuch(Sum(), SumOf(*wanted)));
            return nullptr;
        }
        if (begun_ && !(wanted->Gain > least)) return nullptr;
        return wanted;
    }

    void Remark(FitRemark::What what, double times) {
        fit_.Remarks.push_back({.Kind = what, .Times = times});
    }

    // The solution as it stands, and the iteration from there on where that leads to the same.
    bool BeginAgain(const Solution& better) {
        const bool told = usable_;
        const bool polished = told && !mirrored_ && IsHere(better);
        const int iterations = fit_.Run.State.Iterations;
        const double before = told ? Sum() : 0;
        TakeFoundValues(fit_, better.Values, better.M, better.Shift);
        SettleFit(fit_);
        const FitOutcome settled(fit_);
        const double sum = SumOfSquares(fit_);
        const bool side = IsMirrored(fit_.Run.Chain);
        if (polished) {  // its last digits, and no other solution
            fit_.Run.State.Iterations = iterations;
            return true;
        }
        if (begun_) return true;  // the iteration has been there, and did not stay
        IterateFit(fit_);
        if (fit_.Abandoned()) return false;
        const bool same = fit_.Run.State.Converged && SumOfSquares(fit_) <= sum * (1 + 1e-10) + rounding_ &&
                          IsMirrored(fit_.Run.Chain) == side;
        if (!same) settled.PutBack(fit_);
        if (!begun_)
            told ? Remark(FitRemark::What::IterationBeganAgain, TimesOfEnds(before, sum))
                 : Remark(FitRemark::What::IterationFoundNoEnd, 0);
        begun_ = true;
        return true;
    }

    // 0 of a mirrored one that fits as well.
    double TimesOfEnds(double before, double sum) const {
        return before <= sum * (1 + 1e-9) + rounding_ ? 0 : TimesAsMuch(before, sum);
    }

    void Certify() {
        fit_.Certificate = CertificateRecord{};
        fit_.Certificate.Mirrored = mirrored_;
        fit_.Certificate.BeganAgain = begun_;
        const Solution* best = Wanted();
        if (best == nullptr || !usable_) return;
        fit_.Certificate.Kind =
            found_.ClosedForm ? CertificateRecord::Road::ClosedForm : CertificateRecord::Road::Starts;
        fit_.Certificate.Starts = found_.Starts;
        // Where no proper one has the least sum, the mirrored one tells how far that is.
        if (!found_.ProperIsLeast && found_.Mirrored) best = &*found_.Mirrored;
        const double least = rounding_ + RoundingOfGain(sums_.Moments, best->OfMoments, best->Shift);
        if (best->Gain > least && Sum() > 0) fit_.Certificate.RelativeAbove = (best->Gain - least) / Sum();
    }

    NormRun& fit_;
    Wishes wishes_;
    Sums sums_;
    Solutions found_;
    bool usable_ = false, mirrored_ = false, begun_ = false;
    double rounding_ = 0;
    std::optional<double> sum_;
};

// A limit below the usual one was set by a user who wants to be told at it.
bool LimitWasWanted(const FitRun& run) {
    constexpr int kUsual = 100;
    return !run.State.Converged && run.Limits.MaxIteration < kUsual;
}

}  // namespace

bool SeekBestFit(NormRun& fit) {
    fit.Certificate = CertificateRecord{};
    fit.LeftByPoses = PosesLeave{};
    const bool known = fit.Model.Mode != FitMode::Distance && fit.Points.OnlyInUse && fit.Model.Unknowns > 0;
    if (!known || !fit.SeeksBest || fit.Stops() || LimitWasWanted(fit.Run)) return true;
    return fit.Model.Mode == FitMode::Tool ? SeekBestToolFit(fit) : Seeker(fit).Run();
}

}  // namespace corvinade::fit
