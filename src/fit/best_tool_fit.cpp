// The best solution of the tool model.
#include "fit/best_tool_fit.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <vector>

#include "fit/found_values.h"
#include "fit/handedness.h"
#include "fit/mirror.h"
#include "fit/norms.h"
#include "fit/open_parameters.h"
#include "fit/small_svd.h"
#include "fit/tool_search.h"
#include "fit/tool_tips.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

double SumOfSquares(const NormRun& fit) {
    double sum = 0;
    for (int i = 1; i <= fit.Rows(); ++i) sum += fit.P[At(i)] * fit.Result.v[At(i)] * fit.Result.v[At(i)];
    return sum;
}

int Redundancy(const NormRun& fit) {
    const auto rows = std::count_if(fit.P.begin() + 1, fit.P.end(), [](double w) { return w != 0; });
    return static_cast<int>(rows) - fit.Model.Unknowns;
}

// What rounding of the coordinates adds to a sum of squares, mm^2.
double RoundingOfSum(const NormRun& fit, const Linearisation& at) {
    constexpr double kDigits = 8 * std::numeric_limits<double>::epsilon();
    double far = 0;
    for (int axis = 1; axis <= 3; ++axis) {
        double image = 0;
        for (int j = 1; j <= 3; ++j) image += std::fabs(at.M(axis, j) * fit.Points.StartCentre(j));
        far = std::max({far, image, std::fabs(fit.Points.TargetCentre(axis))});
        for (int i = 0; i < fit.Points.Count; ++i)
            far = std::max(far, std::fabs(fit.Points.Target[At(axis - 1)][At(i)]));
    }
    return fit.Rows() * kDigits * far * kDigits * far;
}

double LengthOf(const Vec3& v) {
    return std::hypot(v(1), v(2), v(3));
}

// What an iteration that ends at its limit may leave in a sum of squares, mm^2: a turn of that size moves
// points by as much as they are far from their middle, and the tip by the length of the tool.
double LeftByLimit(const NormRun& fit, const Linearisation& at) {
    constexpr double kMostLimit =
        1e-8;  // a coarser limit of the user's is no reason to stay off the best place
    double lever = 1;
    for (int i = 0; i < fit.Points.Count; ++i)
        for (int axis = 1; axis <= 3; ++axis) {
            double image = 0;
            for (int j = 1; j <= 3; ++j) image += at.M(axis, j) * fit.Points.Start[At(j - 1)][At(i)];
            lever = std::max(lever, std::fabs(image));
        }
    const double tool = std::hypot(fit.Run.Now[kRvecX], fit.Run.Now[kRvecY], fit.Run.Now[kRvecZ]);
    const double left = std::min(fit.Run.Limits.Threshold, kMostLimit) * (lever + tool);
    return fit.Rows() * left * left;
}

void TakeAcross(const std::vector<Vec3>& still, Parameters& parameters) {
    for (const Vec3& w : still) {
        double along = 0;
        for (int k = 1; k <= 3; ++k) along += w(k) * parameters[kRvecX + k - 1];
        for (int k = 1; k <= 3; ++k) parameters[kRvecX + k - 1] -= along * w(k);
    }
}

void TakeSolution(NormRun& fit, const ToolSolution& solution) {
    TakeFoundValues(fit, solution.Values, solution.M, solution.Shift);
    if (fit.Model.ToolFloats)
        for (int k = 1; k <= 3; ++k) fit.Run.Now[kRvecX + k - 1] = solution.Tool(k);
}

// The solutions as the sums at some parameters show them.
struct Look {
    Linearisation Here;
    PointMoments Moments;
    ToolSolutions Found;
    std::array<ToolForm::Direction, 3> Directions;
    double Sum = 0;  // of squares at the moments, mm^2
    double Rounding = 0;

    double SumOf(const ToolSolution& solution) const { return std::max(0.0, Sum - solution.Gain); }
    // What of the gain is rounding.
    double LeastGain(const ToolSolution& solution) const { return Rounding + GainRounding(solution); }

private:
    double GainRounding(const ToolSolution& solution) const {
        double size = 0;
        for (int axis = 1; axis <= 3; ++axis)
            for (std::size_t k = 0; k < kMostPlaces; ++k) {
                double change = 0;
                if (k == 0) {
                    change = solution.Shift(axis) - Moments.Shift(axis);
                } else if (k < 4) {
                    change = solution.M(axis, static_cast<int>(k)) - Moments.M(axis, static_cast<int>(k));
                } else {
                    change = solution.Tool(static_cast<int>(k) - 3) - Moments.Tool(static_cast<int>(k) - 3);
                }
                const double own = Moments.B[At(axis)][k][k] * change * change;
                size += own + 2 * std::fabs(change * Moments.m[At(axis)][k]);
            }
        return 64 * kMostPlaces * std::numeric_limits<double>::epsilon() * size;
    }
};

class ToolSeeker {
public:
    explicit ToolSeeker(NormRun& fit)
        : fit_(fit),
          ownStart_(StartsAreOwn(fit.Choice)),
          negative_(NegativeScaleIsWanted(fit.Choice)),
          iterations_(fit.Run.State.Iterations) {}

    // False when the fit was abandoned.
    bool Run() {
        // Start values of the user's own that lead beyond all numbers are for the user to mend.
        if (ownStart_ && !fit_.Run.State.Finite) return true;
        Look look = LookFrom(BeginOfLook());
        // What the poses leave open is put at 0 before anything else: no iteration comes to rest without.
        const std::vector<Vec3> open = OpenDirections(look);
        if (!open.empty() && (!Usable() || !RankShowsIt())) {
            Hold(open);
            return !fit_.Abandoned();
        }
        if (const ToolSolution* better = Better(look)) {
            if (!BeginAgain(*better, look)) return false;
            if (begun_) look = LookFrom(BeginOfLook());
        }
        Certify(look);
        return true;
    }

private:
    bool Usable() const { return fit_.Run.State.Finite && fit_.Run.State.Converged; }
    bool Mirrored() const { return Usable() && IsMirrored(fit_.Run.Chain); }

    // The present parameters, or where these are of no use those that do nothing but what is held.
    Parameters BeginOfLook() const {
        if (Usable()) return fit_.Run.Now;
        Parameters begin;
        for (int k = kTraX; k < kParameterEnd; ++k)
            if (fit_.Model.UnknownOf[At(k)] == 0) begin[k] = fit_.Run.Now[k];
        return begin;
    }

    Look LookFrom(Parameters from, const std::vector<Vec3>& still = {}) {
        TakeAcross(still, from);
        Look look;
        ChainRecord chain;
        look.Here = Linearise(fit_.Model, from, fit_.Points, chain);
        SumMoments(fit_.Points, look.Here, {.Tool = true}, look.Moments);
        const ToolForm form(fit_.Model, fit_.Points, look.Moments, still);
        const bool stands = Usable() && still.empty();
        look.Found = SearchTool(form, ChoiceHere(), IsAffine(fit_.Model),
                                stands ? 0 : -std::numeric_limits<double>::infinity());
        look.Directions = form.Directions();
        look.Rounding = RoundingOfSum(fit_, look.Here);
        if (stands) look.Rounding += LeftByLimit(fit_, look.Here);
        Column v(At(fit_.Rows()) + 1);
        Residuals(fit_.Points, fit_.Model, look.Here, Column(At(fit_.Model.Unknowns) + 1), v);
        for (std::size_t i = 1; i < v.size(); ++i) look.Sum += fit_.P[i] * v[i] * v[i];
        return look;
    }

    ChainChoice ChoiceHere() const {
        ChainChoice choice;
        for (int k = kTraX; k <= kAngleZtoXY; ++k) {
            choice.Floats[At(k)] = fit_.Model.UnknownOf[At(k)] != 0;
            if (!choice.Floats[At(k)]) choice.Held.Value[At(k)] = fit_.Run.Now[k];
        }
        return choice;
    }

    // The one of both sides of the mirror that is wanted; null where nothing was found.
    const ToolSolution* Wanted(const Look& look) {
        const ToolSolution* proper = look.Found.Proper ? &*look.Found.Proper : nullptr;
        const ToolSolution* mirrored = look.Found.Mirrored ? &*look.Found.Mirrored : nullptr;
        if (proper == nullptr || mirrored == nullptr) return proper != nullptr ? proper : mirrored;
        if (fit_.ProperAlone) return proper;
        if (negative_) {
            if (Mirrored()) return mirrored;
            return mirrored->Gain > proper->Gain ? mirrored : proper;
        }
        if (!(mirrored->Gain > proper->Gain)) return proper;
        const auto told = [&] {
            const GatheredPoints points = AtTips(fit_.Points, mirrored->Tool);
            return HandednessOf(points, mirrored->M, mirrored->Shift, FitNorm::LeastSquares,
                                fit_.Model.Unknowns, SizeRatio(points, FitNorm::LeastSquares));
        };
        const bool stands = MirrorMayStand(look.SumOf(*proper), look.SumOf(*mirrored), look.Rounding,
                                           Redundancy(fit_), FitNorm::LeastSquares, told);
        return stands ? mirrored : proper;
    }

    // A solution that the present one has to give way to; null where it stands.
    const ToolSolution* Better(const Look& look) {
        constexpr double kSame = 1e-9;  // of the sum
        const ToolSolution* wanted = Wanted(look);
        if (wanted == nullptr || !Usable()) return wanted;
        const bool otherSide = Mirrored() && Determinant3(wanted->M) > 0 && !negative_;
        const bool isBetter = wanted->Gain > kSame * look.Sum + look.LeastGain(*wanted);
        if (!isBetter && !otherSide) return nullptr;
        if (ownStart_ && !otherSide) {
            Remark(FitRemark::What::OtherSolutionIsLess, TimesAsMuch(look.Sum, look.SumOf(*wanted)));
            return nullptr;
        }
        return wanted;
    }

    void Remark(FitRemark::What what, double times) {
        fit_.Remarks.push_back({.Kind = what, .Times = times});
    }

    // The iteration from the better solution on; where it cannot settle even there the solution itself.
    bool BeginAgain(const ToolSolution& better, const Look& look) {
        constexpr double kLess = 1e-9;
        const bool told = Usable(), before = Mirrored(), side = Determinant3(better.M) < 0;
        const FitOutcome outcome(fit_);
        const double most = told ? SumOfSquares(fit_) : 0;
        const auto isIt = [&] {
            if (!Usable() || Mirrored() != side) return false;
            const double sum = SumOfSquares(fit_);
            if (sum > look.SumOf(better) * (1 + 1e-6) + look.LeastGain(better)) return false;
            return !told || before != side || sum < most * (1 - kLess) - look.Rounding;
        };
        TakeSolution(fit_, better);
        IterateFit(fit_);
        if (fit_.Abandoned()) return false;
        if (!isIt()) {
            TakeSolution(fit_, better);
            Settle({});
            if (!isIt()) {
                outcome.PutBack(fit_);
                return true;
            }
        }
        begun_ = true;
        told ? Remark(FitRemark::What::IterationBeganAgain, TimesOfEnds(most, look))
             : Remark(FitRemark::What::IterationFoundNoEnd, 0);
        return true;
    }

    // 0 of a mirrored one that fits as well.
    double TimesOfEnds(double before, const Look& look) const {
        const double sum = SumOfSquares(fit_);
        return before <= sum * (1 + 1e-9) + look.Rounding ? 0 : TimesAsMuch(before, sum);
    }

    // From the present parameters to the least sum with the tool vector still along `still`, by the sums
    // about where it stands: their slope has all digits there. It has converged where nothing more is gained.
    void Settle(const std::vector<Vec3>& still) {
        constexpr int kMostRounds = 5;
        constexpr double kStill = 1e-12;  // of the sum
        bool rests = false;
        for (int round = 0; round < kMostRounds && !rests; ++round) {
            TakeAcross(still, fit_.Run.Now);
            ChainRecord chain;
            const Linearisation at = Linearise(fit_.Model, fit_.Run.Now, fit_.Points, chain);
            PointMoments moments;
            SumMoments(fit_.Points, at, {.Tool = true}, moments);
            const ToolForm form(fit_.Model, fit_.Points, moments, still);
            ChainValues here = ChoiceHere().Held;
            for (int k = kTraX; k <= kAngleZtoXY; ++k) here.Value[At(k)] = fit_.Run.Now[k];
            here.R = chain.RotationMatrix;
            const auto end = ClimbTool(form, ChoiceHere(), here);
            if (!end) break;
            SettleHolding(fit_.Run, fit_.Model, fit_.Points, fit_.P, still, fit_.Result);
            rests =
                end->Gain <= kStill * SumOfSquares(fit_) + RoundingOfSum(fit_, at) + form.RoundingNearby();
            TakeSolution(fit_, *end);
        }
        SettleHolding(fit_.Run, fit_.Model, fit_.Points, fit_.P, still, fit_.Result);
        fit_.Run.State.Iterations = iterations_;
        fit_.Run.State.Converged = fit_.Run.State.AtRest = rests;
    }

    // Those of the flange's directions that the poses turn by no more than angles are wrong.
    std::vector<Vec3> OpenDirections(const Look& look) {
        constexpr double kDegree = 3.14159265358979323846 / 180;
        constexpr double kLeastNoise = 1e-3 * kDegree, kMostTurned = 0.25 * kDegree, kTimes = 4;
        const ToolSolution* free = Wanted(look);
        if (!fit_.Model.ToolFloats || free == nullptr) return {};
        std::vector<ToolForm::Direction> open;
        for (const ToolForm::Direction& direction : look.Directions)
            if (direction.Turned <= kMostTurned) open.push_back(direction);
        const int redundancy = Redundancy(fit_);
        const double s0 = redundancy > 0 ? std::sqrt(look.SumOf(*free) / redundancy) : 0;
        while (!open.empty()) {
            const std::vector<Vec3> still = AxesOf(open);
            const Look across = LookFrom(BeginOfLook(), still);
            const ToolSolution* end = Wanted(across);
            if (end == nullptr) return {};
            noise_ = std::max(kLeastNoise, std::min(s0 / LengthOf(end->Tool), kMostTurned / kTimes));
            const std::size_t before = open.size();
            std::erase_if(open, [&](const auto& direction) { return direction.Turned > kTimes * noise_; });
            if (open.size() < before) continue;
            turned_ = open.back().Turned;
            return still;
        }
        return {};
    }

    static std::vector<Vec3> AxesOf(const std::vector<ToolForm::Direction>& directions) {
        std::vector<Vec3> axes;
        axes.reserve(directions.size());
        for (const ToolForm::Direction& direction : directions) axes.push_back(direction.w);
        return axes;
    }

    bool RankShowsIt() {
        ChainRecord chain;
        const Linearisation at = Linearise(fit_.Model, fit_.Run.Now, fit_.Points, chain);
        const OpenParameters open = FindOpenParameters(
            fit_.Points, fit_.Model, [this](std::size_t i) { return fit_.P[i] != 0; }, fit_.Run.Now, at);
        return open.Open[kRvecX] || open.Open[kRvecY] || open.Open[kRvecZ];
    }

    void Hold(const std::vector<Vec3>& open) {
        const Look look = LookFrom(BeginOfLook(), open);
        const ToolSolution* best = Wanted(look);
        if (best == nullptr) return;
        TakeSolution(fit_, *best);
        Settle(open);
        fit_.LeftByPoses.Directions = open;
        fit_.LeftByPoses.Turned = turned_;
        fit_.LeftByPoses.Noise = noise_;
        for (const Vec3& w : open) Mark(w);
        fit_.Certificate.Mirrored = Mirrored();
        if (!Usable()) return;
        fit_.Certificate.Kind = CertificateRecord::Road::Starts;
        fit_.Certificate.Starts = look.Found.Starts;
    }

    // The parts of the tool vector and the translations that stand in for them, by shares that are more than
    // the noise by which w itself is known.
    void Mark(const Vec3& w) {
        for (int k = 1; k <= 3; ++k) {
            double mean = 0;
            for (std::size_t i = 0; i < At(fit_.Points.Count); ++i)
                for (int j = 1; j <= 3; ++j)
                    mean += fit_.Points.Pose[At(3 * (k - 1) + j - 1)][i] * w(j) / fit_.Points.Count;
            if (std::fabs(w(k)) > noise_) fit_.LeftByPoses.Of[At(kRvecX + k - 1)] = true;
            if (std::fabs(mean) > noise_ && fit_.Model.UnknownOf[At(kTraX + k - 1)] != 0)
                fit_.LeftByPoses.Of[At(kTraX + k - 1)] = true;
        }
    }

    void Certify(const Look& look) {
        fit_.Certificate.Mirrored = Mirrored();
        fit_.Certificate.BeganAgain = begun_;
        const ToolSolution* best = Wanted(look);
        if (best == nullptr || !Usable()) return;
        fit_.Certificate.Kind = CertificateRecord::Road::Starts;
        fit_.Certificate.Starts = look.Found.Starts;
        const double least = look.LeastGain(*best), sum = look.Sum;
        if (best->Gain > least && sum > 0) fit_.Certificate.RelativeAbove = (best->Gain - least) / sum;
    }

    NormRun& fit_;
    bool ownStart_, negative_, begun_ = false;
    int iterations_;
    double noise_ = 0, turned_ = 0;  // of what the poses leave open, rad
};

}  // namespace

bool SeekBestToolFit(NormRun& fit) {
    return ToolSeeker(fit).Run();
}

}  // namespace corvinade::fit
