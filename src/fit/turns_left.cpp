// Turns that the sum of squares hardly depends on, whatever else floats.
#include "fit/turns_left.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "fit/statistics.h"
#include "fit/turn_axes.h"
#include "fit/turn_forms.h"
#include "fit/vector.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

double Dot(const Vec3& a, const Vec3& b) {
    return TurnDot(a, b);
}

double Of(const Mat3& form, const Vec3& w) {
    double value = 0;
    for (int j = 1; j <= 3; ++j)
        for (int k = 1; k <= 3; ++k) value += w(j) * form(j, k) * w(k);
    return value;
}

double RootOf(const Mat3& form, const Vec3& w) {
    return std::sqrt(std::max(0.0, Of(form, w)));
}

class Judge {
public:
    Judge(const TurnPairs& pairs, const JudgedResult& result)
        : pairs_(pairs),
          model_(result.Model),
          forms_(pairs, model_, result.Still),
          nearImages_(pairs.WithoutFarthest(&TurnPair::Image), model_, result.Still),
          nearTargets_(pairs.WithoutFarthest(&TurnPair::Target), model_, result.Still),
          axes_(model_, result.Values),
          robust_(result.Robust),
          anywhere_(std::all_of(&model_.UnknownOf[kTraX], &model_.UnknownOf[kTraZ] + 1,
                                [](int unknown) { return unknown != 0; })) {
        const std::vector<Vec3> span = axes_.Span();
        for (const Mat3* form : {&forms_.Both, &forms_.Images, &forms_.Targets})
            AddAxes(span, *form, candidates_);
        for (const Vec3& w : candidates_) {
            images_ = std::max(images_, RootOf(forms_.Images, w));
            targets_ = std::max(targets_, RootOf(forms_.Targets, w));
            nearImage_ = std::max(nearImage_, RootOf(nearImages_.Images, w));
            nearTarget_ = std::max(nearTarget_, RootOf(nearTargets_.Targets, w));
        }
    }

    std::vector<LooseTurn> Loose() const {
        return OneForEachAxis(candidates_, [this](const Vec3& w, bool open, LooseTurn& loose) {
            if (IsOpen(w) != open || (!open && !IsLoose(w, loose.Sigma))) return false;
            Mark(w, loose);
            return true;
        });
    }

private:
    double Root() const { return std::sqrt(std::max<double>(1, static_cast<double>(pairs_.List.size()))); }

    double NoiseHere() const {
        // No measurement is better than a millionth of the object, and coordinates are rounded.
        constexpr double kLeastNoise = 1e-6;
        return std::max({forms_.Noise, kLeastNoise * images_ / Root(),
                         kTurnDigits * (pairs_.LargestImage + pairs_.LargestTarget)});
    }

    // Few spare observations fit well by chance, and then tell too small a noise.
    double Unsure() const {
        constexpr int kFew = 6;
        constexpr double kShare = 10;
        const int spare = forms_.Observations - model_.Unknowns;
        return spare > 0 && spare <= kFew ? 1 + kShare / spare : 1;
    }

    bool IsOpen(const Vec3& w) const {
        constexpr double kLeast = 1e-10;
        const double images = RootOf(forms_.Images, w), targets = RootOf(forms_.Targets, w);
        if (images <= std::max(kTurnDigits * pairs_.LargestImage * Root(), kLeast * images_)) return true;
        if (targets <= std::max(kTurnDigits * pairs_.LargestTarget * Root(), kLeast * targets_)) return true;
        const double rounding = kLeast * images * targets;
        return !robust_ && std::fabs(Of(forms_.Both, w)) <= rounding &&
               std::fabs(Dot(forms_.Slope, w)) <= rounding;
    }

    bool IsLoose(const Vec3& w, double& sigma) const {
        constexpr double kLoose = 0.1, kSmallArm = 0.1, kOnePlace = 3;
        const double noise = NoiseHere(), scale = forms_.Scale;
        const double images = RootOf(forms_.Images, w), targets = RootOf(forms_.Targets, w);
        const double along = std::hypot(Of(forms_.Both, w), Dot(forms_.Slope, w));
        sigma = noise * std::max(images, targets / scale) / along;
        if (!(sigma * Unsure() > kLoose)) return false;
        return RootOf(nearImages_.Images, w) < kSmallArm * nearImage_ ||
               RootOf(nearTargets_.Targets, w) < kSmallArm * nearTarget_ ||
               (anywhere_ && scale * forms_.Image <
                                 kOnePlace * noise * std::sqrt(static_cast<double>(forms_.Observations)));
    }

    // What takes part in the turn. A part that the turn moves by no more than the noise is not known the
    // worse for it.
    void Mark(const Vec3& w, LooseTurn& loose) const {
        constexpr double kTakesPart = 1e-6, kMostly = 0.1, kNoise = 10;
        loose.Moves = axes_.Marked(w, loose.Open ? kTakesPart : kMostly);
        const double reach = std::max(images_, targets_) / Root();
        const double least =
            loose.Open ? kTakesPart * reach : std::max(kMostly * reach, kNoise * NoiseHere());
        Vec3 once, bent;
        VecCross(w, pairs_.Arm, once);
        VecCross(w, once, bent);
        for (int axis = 1; axis <= 3; ++axis) {
            double translation = 0, tool = 0;
            for (int k = 1; k <= 3; ++k) {
                translation += w(k) * forms_.Translation[At(k)](axis);
                tool += w(k) * forms_.Tool[At(k)](axis);
            }
            // Far round it moves what it does not move at first.
            const double round = std::min(1.0, loose.Open ? 1 : loose.Sigma) * std::fabs(bent(axis));
            const bool floats = model_.UnknownOf[At(kTraX + axis - 1)] != 0;
            loose.Moves[At(kTraX + axis - 1)] = floats && std::fabs(translation) + round > least;
            loose.Moves[At(kRvecX + axis - 1)] = model_.ToolFloats && std::fabs(tool) > least;
        }
    }

    const TurnPairs& pairs_;
    const FitModel& model_;
    TurnForms forms_, nearImages_, nearTargets_;
    TurnAxes axes_;
    bool robust_, anywhere_;  // anywhere_: all translations float
    std::vector<Vec3> candidates_;
    double images_ = 0, targets_ = 0, nearImage_ = 0, nearTarget_ = 0;  // the largest of any turn
};

}  // namespace

std::vector<LooseTurn> OneForEachAxis(const std::vector<Vec3>& axes, const TakeTurn& take) {
    constexpr double kSameAxis = 0.7;
    std::vector<LooseTurn> found;
    for (const bool open : {true, false})
        for (const Vec3& w : axes) {
            if (std::any_of(found.begin(), found.end(), [&w](const LooseTurn& before) {
                    return std::fabs(Dot(w, before.Axis)) > kSameAxis;
                }))
                continue;
            LooseTurn turn;
            turn.Axis = w;
            turn.Open = open;
            if (take(w, open, turn)) found.push_back(turn);
        }
    return found;
}

std::vector<LooseTurn> FindTurnsLeft(const JudgedResult& result) {
    constexpr int kSample = 256, kMost = 50000;
    const int step = std::max(1, result.Points.Count / kSample),
              last = std::max(1, result.Points.Count / kMost);
    for (int every = step;; every = last) {
        TurnPairs pairs(result, every);
        if (result.Robust) pairs.LeaveOutGrossErrors(result.Model.Unknowns);
        if (pairs.List.empty()) return {};
        std::vector<LooseTurn> loose = Judge(pairs, result).Loose();
        // What some of the points tell all of them do.
        if (loose.empty() || every == last) return loose;
    }
}

}  // namespace corvinade::fit
