// Turns that the sum of squares hardly depends on.
#include "fit/loose_turns.h"

#include <algorithm>
#include <cmath>

#include "fit/statistics.h"
#include "fit/turn_axes.h"
#include "fit/turns_left.h"
#include "fit/vector.h"

namespace corvinade::fit {

namespace {

constexpr double kDigits = 64 * 2.220446049250313e-16;

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// A pair about the middles of both clouds.
struct Pair {
    Vec3 Image, Target;
    std::array<bool, 4> InUse{};  // by axis
    double Deviation = 0;         // of the point, mm
};

double Dot(const Vec3& a, const Vec3& b) {
    return a(1) * b(1) + a(2) * b(2) + a(3) * b(3);
}

struct Pairs {
    std::vector<Pair> List;
    int Observations = 0;
    Vec3 Lever;  // from the place that the start system's origin is carried to, to the middle of the images
    double LargestImage = 0, LargestTarget = 0;  // coordinates as they were read

    Pairs(const JudgedResult& result, int step) {
        const GatheredPoints& points = result.Points;
        const Linearisation& at = result.At;
        for (int i = 0; i < points.Count; i += step) Add(result, i);
        Centre();
        for (int axis = 1; axis <= 3; ++axis)
            for (int j = 1; j <= 3; ++j) Lever(axis) += at.M(axis, j) * points.StartCentre(j);
    }

    // Those whose deviation is not far above what most have.
    void LeaveOutGrossErrors(int unknowns) {
        std::vector<double> deviations;
        for (const Pair& pair : List) deviations.push_back(pair.Deviation);
        if (deviations.empty()) return;
        constexpr double kGross = 10;
        const double most =
            kGross * MiddleDeviation(deviations, unknowns) + kDigits * (LargestImage + LargestTarget);
        std::vector<Pair> left;
        for (std::size_t i = 0; i < List.size(); ++i)
            if (deviations[i] <= most) left.push_back(List[i]);
        constexpr std::size_t kFew = 3;
        if (left.size() < kFew) return;
        List = std::move(left);
        Centre();
    }

    // Without the pair whose place is farthest from the middle: a gross error makes any cloud a long one.
    Pairs WithoutFarthest(const Vec3 Pair::*place) const {
        Pairs left = *this;
        constexpr std::size_t kFew = 3;
        if (List.size() <= kFew) return left;
        const auto farthest =
            std::max_element(left.List.begin(), left.List.end(), [place](const Pair& a, const Pair& b) {
                return Dot(a.*place, a.*place) < Dot(b.*place, b.*place);
            });
        left.List.erase(farthest);
        left.Centre();
        return left;
    }

    // No single coordinate is out of use.
    bool Whole() const { return Observations == 3 * static_cast<int>(List.size()); }

private:
    void Add(const JudgedResult& result, int i) {
        const GatheredPoints& points = result.Points;
        const Linearisation& at = result.At;
        Pair pair;
        bool any = false;
        double squares = 0;
        for (int axis = 1; axis <= 3; ++axis) {
            pair.InUse[At(axis)] = result.Used(i, axis);
            any = any || pair.InUse[At(axis)];
            double read = 0;
            pair.Image(axis) = at.Shift(axis);
            for (int j = 1; j <= 3; ++j) {
                const double start = points.Start[At(j - 1)][At(i)];
                pair.Image(axis) += at.M(axis, j) * start;
                read += std::fabs(at.M(axis, j)) * std::fabs(start + points.StartCentre(j));
            }
            pair.Target(axis) = points.Target[At(axis - 1)][At(i)];
            if (!pair.InUse[At(axis)]) continue;
            const double off = pair.Image(axis) - pair.Target(axis);
            squares += off * off;
            LargestImage = std::max(LargestImage, read);
            LargestTarget = std::max(LargestTarget, std::fabs(pair.Target(axis) + points.TargetCentre(axis)));
        }
        pair.Deviation = std::sqrt(squares);
        if (any) List.push_back(pair);
    }

    void Centre() {
        Observations = 0;
        for (int axis = 1; axis <= 3; ++axis) {
            double image = 0, target = 0;
            int count = 0;
            for (const Pair& pair : List) {
                if (!pair.InUse[At(axis)]) continue;
                image += pair.Image(axis);
                target += pair.Target(axis);
                ++count;
            }
            Observations += count;
            for (Pair& pair : List) {
                pair.Image(axis) -= image / std::max(1, count);
                pair.Target(axis) -= target / std::max(1, count);
            }
        }
    }
};

// What the turn about w does to the clouds.
struct Turn {
    double Images = 0, Targets = 0;  // |w x e|, |w x f| over the coordinates in use, mm
    double Along = 0, Across = 0;    // C and D of the sum, mm^2
};

// C and D where single coordinates are out of use. Those in use of w x e and of a place along w are at no
// right angle then, and what is along w would drown what is across: C and D are of the parts across alone.
void TakePartsAcross(const Vec3& w, const Pairs& pairs, Turn& turn) {
    struct Parts {
        Vec3 Across, Turned, Target;
    };
    std::vector<Parts> parts;
    Parts middle;
    std::array<int, 4> counts{};
    for (const Pair& pair : pairs.List) {
        Parts part;
        const double along = Dot(w, pair.Image);
        VecCross(w, pair.Image, part.Turned);
        for (int axis = 1; axis <= 3; ++axis) {
            part.Across(axis) = pair.Image(axis) - along * w(axis);
            part.Target(axis) = pair.Target(axis) - along * w(axis);
            if (!pair.InUse[At(axis)]) continue;
            ++counts[At(axis)];
            middle.Across(axis) += part.Across(axis);
            middle.Turned(axis) += part.Turned(axis);
            middle.Target(axis) += part.Target(axis);
        }
        parts.push_back(part);
    }
    turn.Along = turn.Across = 0;
    for (std::size_t i = 0; i < parts.size(); ++i)
        for (int axis = 1; axis <= 3; ++axis) {
            if (!pairs.List[i].InUse[At(axis)]) continue;
            const double n = counts[At(axis)];
            const double target = parts[i].Target(axis) - middle.Target(axis) / n;
            turn.Along += (parts[i].Across(axis) - middle.Across(axis) / n) * target;
            turn.Across += (parts[i].Turned(axis) - middle.Turned(axis) / n) * target;
        }
}

Turn TurnAbout(const Vec3& w, const Pairs& pairs) {
    Turn turn;
    Vec3 middleOfImages, middleOfTargets;
    std::array<int, 4> counts{};
    std::vector<std::array<Vec3, 2>> turned(pairs.List.size());
    for (std::size_t i = 0; i < pairs.List.size(); ++i) {
        const Pair& pair = pairs.List[i];
        VecCross(w, pair.Image, turned[i][0]);
        VecCross(w, pair.Target, turned[i][1]);
        for (int axis = 1; axis <= 3; ++axis) {
            if (!pair.InUse[At(axis)]) continue;
            ++counts[At(axis)];
            middleOfImages(axis) += turned[i][0](axis);
            middleOfTargets(axis) += turned[i][1](axis);
        }
    }
    double images = 0, targets = 0;
    for (std::size_t i = 0; i < pairs.List.size(); ++i)
        for (int axis = 1; axis <= 3; ++axis) {
            if (!pairs.List[i].InUse[At(axis)]) continue;
            // A translation takes the mean of what a turn does along its axis.
            const double e = turned[i][0](axis) - middleOfImages(axis) / counts[At(axis)];
            const double f = turned[i][1](axis) - middleOfTargets(axis) / counts[At(axis)];
            images += e * e;
            targets += f * f;
            turn.Along += e * f;
            turn.Across += e * pairs.List[i].Target(axis);
        }
    turn.Images = std::sqrt(images);
    turn.Targets = std::sqrt(targets);
    if (!pairs.Whole()) TakePartsAcross(w, pairs, turn);
    return turn;
}

// Unit vectors within the span along which the products of two clouds are least to greatest, in no order.
void AddAxes(const std::vector<Vec3>& span, const Pairs& pairs, const Vec3 Pair::*a, const Vec3 Pair::*b,
             std::vector<Vec3>& axes) {
    Mat3 products;
    for (const Pair& pair : pairs.List)
        for (int i = 1; i <= 3; ++i)
            for (int j = 1; j <= 3; ++j)
                if (pair.InUse[At(i)] && pair.InUse[At(j)])
                    products(i, j) += ((pair.*a)(i) * (pair.*b)(j) + (pair.*a)(j) * (pair.*b)(i)) / 2;
    fit::AddAxes(span, products, axes);
}

// The same by what a turn about them does to the coordinates in use. Where some are out of use the products
// of a line do not tell its direction, and turns about any other one would look well known.
void AddAxesByEffect(const std::vector<Vec3>& span, const Pairs& pairs, const Vec3 Pair::*place,
                     std::vector<Vec3>& axes) {
    Mat3 form;
    for (int axis = 1; axis <= 3; ++axis) {
        const int next = axis % 3 + 1, last = next % 3 + 1;
        int count = 0;
        Vec3 middle;
        for (const Pair& pair : pairs.List) {
            if (!pair.InUse[At(axis)]) continue;
            ++count;
            for (int j = 1; j <= 3; ++j) middle(j) += (pair.*place)(j);
        }
        for (const Pair& pair : pairs.List) {
            if (!pair.InUse[At(axis)]) continue;
            // The coordinate of w x p is w(next) p(last) - w(last) p(next); a translation takes its mean.
            Vec3 row;
            row(next) = (pair.*place)(last)-middle(last) / count;
            row(last) = middle(next) / count - (pair.*place)(next);
            for (int i = 1; i <= 3; ++i)
                for (int j = 1; j <= 3; ++j) form(i, j) += row(i) * row(j);
        }
    }
    fit::AddAxes(span, form, axes);
}

// One scale of the images that comes nearest to the targets, and what is left then of each coordinate. Of
// three points a scale that does not float would take most of the noise: there the deviations are it as they
// stand.
struct Noise {
    double Scale = 0, Size = 0;

    Noise(const Pairs& pairs, const FitModel& model) {
        constexpr int kFew = 3;
        const int spare = pairs.Observations - model.Unknowns;
        const bool scales = std::any_of(&model.UnknownOf[kScaleX], &model.UnknownOf[kScaleXYZ] + 1,
                                        [](int unknown) { return unknown != 0; });
        double products = 0, squares = 0, left = 0;
        for (const Pair& pair : pairs.List)
            for (int axis = 1; axis <= 3; ++axis)
                if (pair.InUse[At(axis)]) {
                    products += pair.Image(axis) * pair.Target(axis);
                    squares += pair.Image(axis) * pair.Image(axis);
                }
        if (!(squares > 0)) return;
        Scale = products / squares;
        const double scale = !scales && spare <= kFew ? 1 : Scale;
        for (const Pair& pair : pairs.List)
            for (int axis = 1; axis <= 3; ++axis)
                if (pair.InUse[At(axis)]) {
                    const double off = pair.Target(axis) - scale * pair.Image(axis);
                    left += off * off;
                }
        if (spare > 0) Size = std::sqrt(left / spare);
    }
};

class Judge {
public:
    Judge(const Pairs& pairs, const JudgedResult& result)
        : pairs_(pairs),
          nearImages_(pairs.WithoutFarthest(&Pair::Image)),
          nearTargets_(pairs.WithoutFarthest(&Pair::Target)),
          axes_(result.Model, result.Values),
          noise_(pairs, result.Model),
          robust_(result.Robust) {
        const std::vector<Vec3> span = axes_.Span();
        AddAxes(span, pairs, &Pair::Image, &Pair::Target, candidates_);
        AddAxes(span, pairs, &Pair::Image, &Pair::Image, candidates_);
        AddAxes(span, pairs, &Pair::Target, &Pair::Target, candidates_);
        if (!pairs.Whole()) {
            AddAxesByEffect(span, pairs, &Pair::Image, candidates_);
            AddAxesByEffect(span, pairs, &Pair::Target, candidates_);
        }
        for (const Vec3& w : candidates_) {
            const Turn turn = TurnAbout(w, pairs);
            images_ = std::max(images_, turn.Images);
            targets_ = std::max(targets_, turn.Targets);
            nearImage_ = std::max(nearImage_, TurnAbout(w, nearImages_).Images);
            nearTarget_ = std::max(nearTarget_, TurnAbout(w, nearTargets_).Targets);
        }
    }

    std::vector<LooseTurn> Loose() const {
        return OneForEachAxis(candidates_, [this](const Vec3& w, bool open, LooseTurn& loose) {
            const Turn turn = TurnAbout(w, pairs_);
            if (IsOpen(turn) != open || (!open && !IsLoose(w, turn, loose.Sigma))) return false;
            constexpr double kTakesPart = 1e-6, kMostly = 0.1;
            loose.Moves = axes_.Marked(w, open ? kTakesPart : kMostly);
            Vec3 shift;
            VecCross(w, pairs_.Lever, shift);
            const double reach = std::max(images_, targets_) / Root();
            for (int axis = 1; axis <= 3; ++axis)
                loose.Moves[At(kTraX + axis - 1)] =
                    std::fabs(shift(axis)) > (open ? kTakesPart : kMostly) * reach;
            return true;
        });
    }

private:
    double Root() const { return std::sqrt(std::max<double>(1, static_cast<double>(pairs_.List.size()))); }

    bool IsOpen(const Turn& turn) const {
        constexpr double kLeast = 1e-10;
        const double images = std::max(kDigits * pairs_.LargestImage * Root(), kLeast * images_);
        const double targets = std::max(kDigits * pairs_.LargestTarget * Root(), kLeast * targets_);
        if (turn.Images <= images || turn.Targets <= targets) return true;
        const double rounding = kLeast * turn.Images * turn.Targets;
        return !robust_ && std::fabs(turn.Along) <= rounding && std::fabs(turn.Across) <= rounding;
    }

    bool IsLoose(const Vec3& w, const Turn& turn, double& sigma) const {
        // No measurement is better than a millionth of the object, and coordinates are rounded.
        constexpr double kLeastNoise = 1e-6, kLoose = 0.1, kSmallLever = 0.1, kSmallScale = 8e-4;
        const double noise = std::max({noise_.Size, kLeastNoise * images_ / Root(),
                                       kDigits * (pairs_.LargestImage + pairs_.LargestTarget)});
        const double along = std::hypot(turn.Along, turn.Across);
        const double scale = std::max(noise_.Scale, 0.0);
        sigma = noise * std::max(turn.Images, scale > 0 ? turn.Targets / scale : 0) / along;
        if (!(sigma > kLoose)) return false;
        return scale < kSmallScale || TurnAbout(w, nearImages_).Images < kSmallLever * nearImage_ ||
               TurnAbout(w, nearTargets_).Targets < kSmallLever * nearTarget_;
    }

    const Pairs& pairs_;
    Pairs nearImages_, nearTargets_;
    TurnAxes axes_;
    Noise noise_;
    bool robust_;
    std::vector<Vec3> candidates_;
    double images_ = 0, targets_ = 0, nearImage_ = 0, nearTarget_ = 0;  // the largest of any turn
};

}  // namespace

std::vector<LooseTurn> FindLooseTurns(const JudgedResult& result) {
    const FitModel& model = result.Model;
    if (model.Mode == FitMode::Distance) return {};
    if (std::none_of(&model.UnknownOf[kRotX], &model.UnknownOf[kRotZ] + 1, [](int u) { return u != 0; }))
        return {};
    const bool anywhere =
        std::all_of(&model.UnknownOf[kTraX], &model.UnknownOf[kTraZ] + 1, [](int u) { return u != 0; });
    if (model.Mode == FitMode::Tool || !anywhere) return FindTurnsLeft(result);
    constexpr int kSample = 256;
    const int step = std::max(1, result.Points.Count / kSample);
    for (int every = step;; every = 1) {
        Pairs pairs(result, every);
        if (result.Robust) pairs.LeaveOutGrossErrors(model.Unknowns);
        if (pairs.List.empty()) return {};
        std::vector<LooseTurn> loose = Judge(pairs, result).Loose();
        // What some of the points tell all of them do.
        if (loose.empty() || every == 1) return loose;
    }
}

}  // namespace corvinade::fit
