// Turns that the sum of squares hardly depends on, whatever else floats.
#include "engine/turns_left.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "core/job.h"
#include "engine/turn_axes.h"
#include "fit/small_svd.h"
#include "fit/statistics.h"
#include "fit/vector.h"

namespace corvinade::engine {

namespace {

constexpr double kDigits = 64 * 2.220446049250313e-16;

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

double Dot(const Vec3& a, const Vec3& b) {
    return a(1) * b(1) + a(2) * b(2) + a(3) * b(3);
}

double Dot(const std::vector<double>& a, const std::vector<double>& b) {
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
    return sum;
}

Vec3 Unit(int axis) {
    Vec3 unit;
    unit(axis) = 1;
    return unit;
}

// A pair about the middle of the images.
struct Pair {
    Vec3 Image, Target, Off;      // Off: image less target, 0 where the coordinate is not in use
    std::array<bool, 4> InUse{};  // by axis
    std::array<Vec3, 4> Pose;     // rows of the pose's matrix; only with a floating tool vector
};

struct Pairs {
    std::vector<Pair> List;
    Vec3 Arm;  // from where the start system's origin is carried to, to the middle of the images
    double LargestImage = 0, LargestTarget = 0;  // coordinates as they were read

    Pairs(const GatheredPoints& points, const FitModel& model, const Linearisation& at, int step) {
        for (int axis = 1; axis <= 3; ++axis)
            for (int j = 1; j <= 3; ++j) Arm(axis) += at.M(axis, j) * points.StartCentre(j);
        for (int i = 0; i < points.Count; i += step) Add(points, model, at, i);
    }

    // Those whose deviation is not far above what most have.
    void LeaveOutGrossErrors(int unknowns) {
        constexpr double kGross = 10;
        constexpr std::size_t kFew = 3;
        std::vector<double> deviations;
        for (const Pair& pair : List) deviations.push_back(std::sqrt(Dot(pair.Off, pair.Off)));
        if (deviations.empty()) return;
        const double most =
            kGross * MiddleDeviation(deviations, unknowns) + kDigits * (LargestImage + LargestTarget);
        std::vector<Pair> left;
        for (std::size_t i = 0; i < List.size(); ++i)
            if (deviations[i] <= most) left.push_back(List[i]);
        if (left.size() >= kFew) List = std::move(left);
    }

    // Without the pair that is farthest from the middle: a gross error makes any cloud a long one.
    Pairs WithoutFarthest(const Vec3 Pair::*place) const {
        Pairs left = *this;
        constexpr std::size_t kFew = 3;
        if (List.size() <= kFew) return left;
        Vec3 middle;
        for (const Pair& pair : List)
            for (int axis = 1; axis <= 3; ++axis)
                middle(axis) += (pair.*place)(axis) / static_cast<double>(List.size());
        const auto away = [&](const Pair& pair) {
            Vec3 off;
            VecSub(pair.*place, middle, off);
            return Dot(off, off);
        };
        left.List.erase(std::max_element(left.List.begin(), left.List.end(),
                                         [&](const Pair& a, const Pair& b) { return away(a) < away(b); }));
        return left;
    }

private:
    void Add(const GatheredPoints& points, const FitModel& model, const Linearisation& at, int i) {
        Pair pair;
        bool any = false;
        for (int axis = 1; axis <= 3; ++axis) {
            const std::size_t column = At(axis - 1);
            pair.InUse[At(axis)] = Used(i + 1, axis);
            any = any || pair.InUse[At(axis)];
            double target = points.Target[column][At(i)];
            double read = std::fabs(target + points.TargetCentre(axis));
            if (model.Mode == FitMode::Tool)
                for (int k = 1; k <= 3; ++k) {
                    const double pose = points.Pose[3 * column + At(k - 1)][At(i)];
                    target -= pose * at.Tool(k);
                    read += std::fabs(pose * at.Tool(k));
                    pair.Pose[At(axis)](k) = pose;
                }
            double image = 0, size = 0;
            for (int j = 1; j <= 3; ++j) {
                const double start = points.Start[At(j - 1)][At(i)];
                image += at.M(axis, j) * start;
                size += std::fabs(at.M(axis, j)) * std::fabs(start + points.StartCentre(j));
            }
            const double off = image + at.Shift(axis) - target;
            pair.Image(axis) = image;
            pair.Target(axis) = image - off;
            if (!pair.InUse[At(axis)]) continue;
            pair.Off(axis) = off;
            LargestImage = std::max(LargestImage, size);
            LargestTarget = std::max(LargestTarget, read);
        }
        if (any) List.push_back(pair);
    }
};

// What follows a turn: floating translations and the tool vector, as columns over the coordinates in use.
class Followers {
public:
    Followers(const Pairs& pairs, const FitModel& model, const std::vector<Vec3>& still) {
        for (int axis = 1; axis <= 3; ++axis)
            if (model.UnknownOf[At(kTraX + axis - 1)] != 0)
                Add(pairs, {.Translation = axis, .Tool = Vec3()},
                    [axis](const Pair&, int row) { return row == axis ? 1.0 : 0.0; });
        if (model.Mode != FitMode::Tool || !model.ToolFloats) return;
        for (const Vec3& w : Across(still))
            Add(pairs, {.Translation = 0, .Tool = w},
                [&w](const Pair& pair, int row) { return Dot(pair.Pose[At(row)], w); });
    }

    // What is left of a column, and how each translation and the tool vector, 1 to 3, take the rest.
    struct Rest {
        std::vector<double> Column;
        Vec3 Translation, Tool;
    };
    Rest Left(std::vector<double> column) const {
        Rest rest{std::move(column), {}, {}};
        std::vector<double> shares(columns_.size());
        for (int pass = 0; pass < 2; ++pass)
            for (std::size_t j = 0; j < columns_.size(); ++j) {
                const double share = Dot(columns_[j], rest.Column);
                shares[j] += share;
                for (std::size_t i = 0; i < rest.Column.size(); ++i) rest.Column[i] -= share * columns_[j][i];
            }
        for (std::size_t j = columns_.size(); j-- > 0;) {
            shares[j] /= triangle_[j][j];
            for (std::size_t before = 0; before < j; ++before)
                shares[before] -= triangle_[j][before] * shares[j];
            if (of_[j].Translation != 0) rest.Translation(of_[j].Translation) += shares[j];
            for (int k = 1; k <= 3; ++k) rest.Tool(k) += shares[j] * of_[j].Tool(k);
        }
        return rest;
    }

private:
    struct What {
        int Translation;  // 1 to 3, or 0
        Vec3 Tool;
    };

    // At right angles to each other and to these.
    static std::vector<Vec3> Across(const std::vector<Vec3>& still) {
        std::vector<Vec3> all = still, across;
        while (all.size() < 3) {
            Vec3 most;
            for (int axis = 1; axis <= 3; ++axis) {
                Vec3 w = Unit(axis);
                for (const Vec3& before : all) {
                    const double share = Dot(w, before);
                    for (int k = 1; k <= 3; ++k) w(k) -= share * before(k);
                }
                if (Dot(w, w) > Dot(most, most)) most = w;
            }
            VecNormalize(most, most);
            all.push_back(most);
            across.push_back(most);
        }
        return across;
    }

    template <typename Entry>
    void Add(const Pairs& pairs, const What& what, const Entry& entry) {
        std::vector<double> column;
        for (const Pair& pair : pairs.List)
            for (int row = 1; row <= 3; ++row)
                if (pair.InUse[At(row)]) column.push_back(entry(pair, row));
        const double whole = std::sqrt(Dot(column, column));
        std::vector<double> shares(columns_.size() + 1);
        for (int pass = 0; pass < 2; ++pass)
            for (std::size_t j = 0; j < columns_.size(); ++j) {
                const double share = Dot(columns_[j], column);
                shares[j] += share;
                for (std::size_t i = 0; i < column.size(); ++i) column[i] -= share * columns_[j][i];
            }
        const double left = std::sqrt(Dot(column, column));
        constexpr double kNothing = 1e-9;
        if (!(left > kNothing * whole)) return;  // the others make up for it
        for (double& x : column) x /= left;
        shares.back() = left;
        columns_.push_back(std::move(column));
        triangle_.push_back(std::move(shares));
        of_.push_back(what);
    }

    std::vector<std::vector<double>> columns_;   // at right angles, of length 1
    std::vector<std::vector<double>> triangle_;  // by column: the shares of those before, and its own length
    std::vector<What> of_;
};

// Square forms of the axis w of a turn.
struct Forms {
    Mat3 Images, Targets, Both;   // |E|^2, |F|^2, (w x e) F; mm^2
    Vec3 Slope;                   // - E r
    double Image = 0;             // |P e|
    double Scale = 1, Noise = 0;  // of the images, that brings them nearest to the targets; what is left then
    int Observations = 0;
    std::array<Vec3, 4> Translation, Tool;  // how these follow the turn about axis 1 to 3, mm

    Forms(const Pairs& pairs, const FitModel& model, const std::vector<Vec3>& still) {
        const Followers followers(pairs, model, still);
        // What a linear change does to the images; along the axis of a held translation also by where the
        // middle is.
        const auto columnOf = [&](const Vec3 Pair::*place, const auto& change, bool held) {
            std::vector<double> column;
            const Vec3 ofMiddle = change(pairs.Arm);
            for (const Pair& pair : pairs.List) {
                const Vec3 changed = change(pair.*place);
                for (int row = 1; row <= 3; ++row) {
                    if (!pair.InUse[At(row)]) continue;
                    const bool floats = model.UnknownOf[At(kTraX + row - 1)] != 0;
                    column.push_back(changed(row) + (held && !floats ? ofMiddle(row) : 0));
                }
            }
            return column;
        };
        const auto turned = [](int axis, const Vec3& p) {
            Vec3 moved;
            VecCross(Unit(axis), p, moved);
            return moved;
        };
        const auto same = [](const Vec3& p) { return p; };
        const std::vector<double> off = columnOf(&Pair::Off, same, false);
        std::array<std::vector<double>, 4> e, f;
        for (int k = 1; k <= 3; ++k) {
            const auto turn = [&](const Vec3& p) { return turned(k, p); };
            Followers::Rest rest = followers.Left(columnOf(&Pair::Image, turn, true));
            f[At(k)] = columnOf(&Pair::Off, turn, false);
            for (std::size_t i = 0; i < off.size(); ++i) f[At(k)][i] = rest.Column[i] - f[At(k)][i];
            e[At(k)] = std::move(rest.Column);
            Slope(k) = -Dot(e[At(k)], off);
            // A floating translation goes along with the middle as well.
            const Vec3 middle = turned(k, pairs.Arm);
            for (int axis = 1; axis <= 3; ++axis) {
                const bool floats = model.UnknownOf[At(kTraX + axis - 1)] != 0;
                Translation[At(k)](axis) = floats ? -rest.Translation(axis) - middle(axis) : 0;
            }
            for (int axis = 1; axis <= 3; ++axis) Tool[At(k)](axis) = -rest.Tool(axis);
        }
        for (int j = 1; j <= 3; ++j)
            for (int k = 1; k <= 3; ++k) {
                Images(j, k) = Dot(e[At(j)], e[At(k)]);
                Targets(j, k) = Dot(f[At(j)], f[At(k)]);
                const auto twice = [&](const Vec3& p) { return turned(j, turned(k, p)); };
                const double bent = Dot(columnOf(&Pair::Image, twice, true), off);
                Both(j, k) += Images(j, k) + bent / 2;
                Both(k, j) += bent / 2;
            }
        Observations = static_cast<int>(off.size());
        TakeNoise(followers.Left(columnOf(&Pair::Image, same, true)).Column,
                  followers.Left(columnOf(&Pair::Target, same, true)).Column, model);
    }

private:
    // One scale of the images takes away what another unit adds to the deviations, where there is anything to
    // see of one. Of three points it would take most of the noise, unless it floats anyway.
    void TakeNoise(const std::vector<double>& image, const std::vector<double>& target,
                   const FitModel& model) {
        constexpr int kFew = 3;
        constexpr double kSeen = 3;
        const double squares = Dot(image, image);
        Image = std::sqrt(squares);
        const int spare = Observations - model.Unknowns;
        if (!(squares > 0) || spare <= 0) return;
        const auto noiseAt = [&](double scale) {
            double left = 0;
            for (std::size_t i = 0; i < image.size(); ++i) {
                const double off = target[i] - scale * image[i];
                left += off * off;
            }
            return std::sqrt(left / spare);
        };
        const bool scales = std::any_of(&model.UnknownOf[kScaleX], &model.UnknownOf[kScaleXYZ] + 1,
                                        [](int unknown) { return unknown != 0; });
        const double nearest = Dot(image, target) / squares;
        const double noise = noiseAt(nearest);
        const bool seen = nearest * Image > kSeen * noise * std::sqrt(static_cast<double>(Observations));
        Scale = seen ? nearest : 1;
        Noise = seen && (scales || spare > kFew) ? noise : noiseAt(1);
    }
};

double Of(const Mat3& form, const Vec3& w) {
    double value = 0;
    for (int j = 1; j <= 3; ++j)
        for (int k = 1; k <= 3; ++k) value += w(j) * form(j, k) * w(k);
    return value;
}

double RootOf(const Mat3& form, const Vec3& w) {
    return std::sqrt(std::max(0.0, Of(form, w)));
}

// Unit vectors within the span along which a form is least to greatest, in no order.
void AddAxes(const std::vector<Vec3>& span, const Mat3& form, std::vector<Vec3>& axes) {
    const int m = static_cast<int>(span.size());
    std::vector<double> within(At(m * m));
    for (int r = 0; r < m; ++r)
        for (int c = 0; c < m; ++c)
            for (int j = 1; j <= 3; ++j)
                for (int k = 1; k <= 3; ++k)
                    within[At(r * m + c)] += span[At(r)](j) * form(j, k) * span[At(c)](k);
    const SmallSvd svd = DecomposeSmall(within, m, m);
    for (int k = 0; k < m; ++k) {
        Vec3 axis;
        for (int r = 0; r < m; ++r)
            for (int i = 1; i <= 3; ++i) axis(i) += svd.V[At(r * m + k)] * span[At(r)](i);
        axes.push_back(axis);
    }
}

class Judge {
public:
    Judge(const Pairs& pairs, const FitModel& model, bool robust, const std::vector<Vec3>& still)
        : pairs_(pairs),
          model_(model),
          forms_(pairs, model, still),
          nearImages_(pairs.WithoutFarthest(&Pair::Image), model, still),
          nearTargets_(pairs.WithoutFarthest(&Pair::Target), model, still),
          axes_(model),
          robust_(robust) {
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
        std::vector<LooseTurn> found;
        std::vector<Vec3> taken;
        constexpr double kSameAxis = 0.7;
        for (const bool open : {true, false})
            for (const Vec3& w : candidates_) {
                if (std::any_of(taken.begin(), taken.end(),
                                [&w](const Vec3& before) { return std::fabs(Dot(w, before)) > kSameAxis; }))
                    continue;
                LooseTurn loose;
                loose.Open = IsOpen(w);
                if (loose.Open != open) continue;
                if (!open && !IsLoose(w, loose.Sigma)) continue;
                Mark(w, loose);
                found.push_back(loose);
                taken.push_back(w);
            }
        return found;
    }

private:
    double Root() const { return std::sqrt(std::max<double>(1, static_cast<double>(pairs_.List.size()))); }

    double NoiseHere() const {
        // No measurement is better than a millionth of the object, and coordinates are rounded.
        constexpr double kLeastNoise = 1e-6;
        return std::max({forms_.Noise, kLeastNoise * images_ / Root(),
                         kDigits * (pairs_.LargestImage + pairs_.LargestTarget)});
    }

    bool IsOpen(const Vec3& w) const {
        constexpr double kLeast = 1e-10;
        const double images = RootOf(forms_.Images, w), targets = RootOf(forms_.Targets, w);
        if (images <= std::max(kDigits * pairs_.LargestImage * Root(), kLeast * images_)) return true;
        if (targets <= std::max(kDigits * pairs_.LargestTarget * Root(), kLeast * targets_)) return true;
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
        if (!(sigma > kLoose)) return false;
        return RootOf(nearImages_.Images, w) < kSmallArm * nearImage_ ||
               RootOf(nearTargets_.Targets, w) < kSmallArm * nearTarget_ ||
               scale * forms_.Image < kOnePlace * noise * std::sqrt(static_cast<double>(forms_.Observations));
    }

    // What takes part in the turn. A part that the turn moves by no more than the noise is not known the
    // worse for it.
    void Mark(const Vec3& w, LooseTurn& loose) const {
        constexpr double kTakesPart = 1e-6, kMostly = 0.1, kNoise = 10;
        loose.Moves = axes_.Marked(w, loose.Open ? kTakesPart : kMostly);
        const double reach = std::max(images_, targets_) / Root();
        const double least =
            loose.Open ? kTakesPart * reach : std::max(kMostly * reach, kNoise * NoiseHere());
        for (int axis = 1; axis <= 3; ++axis) {
            double translation = 0, tool = 0;
            for (int k = 1; k <= 3; ++k) {
                translation += w(k) * forms_.Translation[At(k)](axis);
                tool += w(k) * forms_.Tool[At(k)](axis);
            }
            loose.Moves[At(kTraX + axis - 1)] = std::fabs(translation) > least;
            loose.Moves[At(kRvecX + axis - 1)] = model_.ToolFloats && std::fabs(tool) > least;
        }
    }

    const Pairs& pairs_;
    const FitModel& model_;
    Forms forms_, nearImages_, nearTargets_;
    TurnAxes axes_;
    bool robust_;
    std::vector<Vec3> candidates_;
    double images_ = 0, targets_ = 0, nearImage_ = 0, nearTarget_ = 0;  // the largest of any turn
};

}  // namespace

std::vector<LooseTurn> FindTurnsLeft(const GatheredPoints& points, const FitModel& model,
                                     const Linearisation& at, bool robust, const std::vector<Vec3>& still) {
    constexpr int kSample = 256;
    const int step = std::max(1, points.Count / kSample);
    for (int every = step;; every = 1) {
        Pairs pairs(points, model, at, every);
        if (robust) pairs.LeaveOutGrossErrors(model.Unknowns);
        if (pairs.List.empty()) return {};
        std::vector<LooseTurn> loose = Judge(pairs, model, robust, still).Loose();
        // What some of the points tell all of them do.
        if (loose.empty() || every == 1) return loose;
    }
}

}  // namespace corvinade::engine
