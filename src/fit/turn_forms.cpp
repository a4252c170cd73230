// What turns of the result do to images and targets, with all that follows them.
#include "fit/turn_forms.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "fit/statistics.h"
#include "fit/vector.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// At right angles to each other and to these.
std::vector<Vec3> Across(const std::vector<Vec3>& still) {
    std::vector<Vec3> all = still, across;
    while (all.size() < 3) {
        Vec3 most;
        for (int axis = 1; axis <= 3; ++axis) {
            Vec3 w = TurnUnit(axis);
            for (const Vec3& before : all) {
                const double share = TurnDot(w, before);
                for (int k = 1; k <= 3; ++k) w(k) -= share * before(k);
            }
            if (TurnDot(w, w) > TurnDot(most, most)) most = w;
        }
        VecNormalize(most, most);
        all.push_back(most);
        across.push_back(most);
    }
    return across;
}

}  // namespace

double TurnDot(const Vec3& a, const Vec3& b) {
    return a(1) * b(1) + a(2) * b(2) + a(3) * b(3);
}

double TurnDot(const std::vector<double>& a, const std::vector<double>& b) {
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
    return sum;
}

Vec3 TurnUnit(int axis) {
    Vec3 unit;
    unit(axis) = 1;
    return unit;
}

TurnPairs::TurnPairs(const JudgedResult& result, int step) {
    const GatheredPoints& points = result.Points;
    const Linearisation& at = result.At;
    for (int axis = 1; axis <= 3; ++axis)
        for (int j = 1; j <= 3; ++j) Arm(axis) += at.M(axis, j) * points.StartCentre(j);
    for (int i = 0; i < points.Count; i += step) Add(result, i);
}

void TurnPairs::LeaveOutGrossErrors(int unknowns) {
    constexpr double kGross = 10;
    constexpr std::size_t kFew = 3;
    std::vector<double> deviations;
    for (const TurnPair& pair : List) deviations.push_back(std::sqrt(TurnDot(pair.Off, pair.Off)));
    if (deviations.empty()) return;
    const double most =
        kGross * MiddleDeviation(deviations, unknowns) + kTurnDigits * (LargestImage + LargestTarget);
    std::vector<TurnPair> left;
    for (std::size_t i = 0; i < List.size(); ++i)
        if (deviations[i] <= most) left.push_back(List[i]);
    if (left.size() >= kFew) List = std::move(left);
}

TurnPairs TurnPairs::WithoutFarthest(const Vec3 TurnPair::*place) const {
    TurnPairs left = *this;
    constexpr std::size_t kFew = 3;
    if (List.size() <= kFew) return left;
    Vec3 middle;
    for (const TurnPair& pair : List)
        for (int axis = 1; axis <= 3; ++axis)
            middle(axis) += (pair.*place)(axis) / static_cast<double>(List.size());
    const auto away = [&](const TurnPair& pair) {
        Vec3 off;
        VecSub(pair.*place, middle, off);
        return TurnDot(off, off);
    };
    left.List.erase(
        std::max_element(left.List.begin(), left.List.end(),
                         [&](const TurnPair& a, const TurnPair& b) { return away(a) < away(b); }));
    return left;
}

void TurnPairs::Add(const JudgedResult& result, int i) {
    const GatheredPoints& points = result.Points;
    const Linearisation& at = result.At;
    TurnPair pair;
    bool any = false;
    for (int axis = 1; axis <= 3; ++axis) {
        const std::size_t column = At(axis - 1);
        pair.InUse[At(axis)] = result.Used(i, axis);
        any = any || pair.InUse[At(axis)];
        double target = points.Target[column][At(i)];
        double read = std::fabs(target + points.TargetCentre(axis));
        if (result.Model.Mode == FitMode::Tool)
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

TurnFollowers::TurnFollowers(const TurnPairs& pairs, const FitModel& model, const std::vector<Vec3>& still) {
    for (int axis = 1; axis <= 3; ++axis)
        if (model.UnknownOf[At(kTraX + axis - 1)] != 0)
            Add(pairs, {.Translation = axis, .Tool = Vec3()},
                [axis](const TurnPair&, int row) { return row == axis ? 1.0 : 0.0; });
    if (model.Mode != FitMode::Tool || !model.ToolFloats) return;
    for (const Vec3& w : Across(still))
        Add(pairs, {.Translation = 0, .Tool = w},
            [&w](const TurnPair& pair, int row) { return TurnDot(pair.Pose[At(row)], w); });
}

TurnFollowers::Rest TurnFollowers::Left(std::vector<double> column) const {
    Rest rest{std::move(column), {}, {}};
    std::vector<double> shares(columns_.size());
    for (int pass = 0; pass < 2; ++pass)
        for (std::size_t j = 0; j < columns_.size(); ++j) {
            const double share = TurnDot(columns_[j], rest.Column);
            shares[j] += share;
            for (std::size_t i = 0; i < rest.Column.size(); ++i) rest.Column[i] -= share * columns_[j][i];
        }
    for (std::size_t j = columns_.size(); j-- > 0;) {
        shares[j] /= triangle_[j][j];
        for (std::size_t before = 0; before < j; ++before) shares[before] -= triangle_[j][before] * shares[j];
        if (of_[j].Translation != 0) rest.Translation(of_[j].Translation) += shares[j];
        for (int k = 1; k <= 3; ++k) rest.Tool(k) += shares[j] * of_[j].Tool(k);
    }
    return rest;
}

void TurnFollowers::Add(const TurnPairs& pairs, const What& what, const Entry& entry) {
    std::vector<double> column;
    for (const TurnPair& pair : pairs.List)
        for (int row = 1; row <= 3; ++row)
            if (pair.InUse[At(row)]) column.push_back(entry(pair, row));
    const double whole = std::sqrt(TurnDot(column, column));
    std::vector<double> shares(columns_.size() + 1);
    for (int pass = 0; pass < 2; ++pass)
        for (std::size_t j = 0; j < columns_.size(); ++j) {
            const double share = TurnDot(columns_[j], column);
            shares[j] += share;
            for (std::size_t i = 0; i < column.size(); ++i) column[i] -= share * columns_[j][i];
        }
    const double left = std::sqrt(TurnDot(column, column));
    constexpr double kNothing = 1e-9;
    if (!(left > kNothing * whole)) return;  // the others make up for it
    for (double& x : column) x /= left;
    shares.back() = left;
    columns_.push_back(std::move(column));
    triangle_.push_back(std::move(shares));
    of_.push_back(what);
}

TurnForms::TurnForms(const TurnPairs& pairs, const FitModel& model, const std::vector<Vec3>& still) {
    const TurnFollowers followers(pairs, model, still);
    // What a linear change does to the images; along the axis of a held translation also by where the
    // middle is.
    const auto columnOf = [&](const Vec3 TurnPair::*place, const auto& change, bool held) {
        std::vector<double> column;
        const Vec3 ofMiddle = change(pairs.Arm);
        for (const TurnPair& pair : pairs.List) {
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
        VecCross(TurnUnit(axis), p, moved);
        return moved;
    };
    const auto same = [](const Vec3& p) { return p; };
    const std::vector<double> off = columnOf(&TurnPair::Off, same, false);
    std::array<std::vector<double>, 4> e, f;
    for (int k = 1; k <= 3; ++k) {
        const auto turn = [&](const Vec3& p) { return turned(k, p); };
        TurnFollowers::Rest rest = followers.Left(columnOf(&TurnPair::Image, turn, true));
        f[At(k)] = columnOf(&TurnPair::Off, turn, false);
        for (std::size_t i = 0; i < off.size(); ++i) f[At(k)][i] = rest.Column[i] - f[At(k)][i];
        e[At(k)] = std::move(rest.Column);
        Slope(k) = -TurnDot(e[At(k)], off);
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
            Images(j, k) = TurnDot(e[At(j)], e[At(k)]);
            Targets(j, k) = TurnDot(f[At(j)], f[At(k)]);
            const auto twice = [&](const Vec3& p) { return turned(j, turned(k, p)); };
            const double bent = TurnDot(columnOf(&TurnPair::Image, twice, true), off);
            Both(j, k) += Images(j, k) + bent / 2;
            Both(k, j) += bent / 2;
        }
    Observations = static_cast<int>(off.size());
    TakeNoise(followers.Left(columnOf(&TurnPair::Image, same, true)).Column,
              followers.Left(columnOf(&TurnPair::Target, same, true)).Column, model);
}

// One scale of the images takes away what another unit adds to the deviations, where there is anything to
// see of one. Of three points it would take most of the noise, unless it floats anyway.
void TurnForms::TakeNoise(const std::vector<double>& image, const std::vector<double>& target,
                          const FitModel& model) {
    constexpr int kFew = 3;
    constexpr double kSeen = 3;
    const double squares = TurnDot(image, image);
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
    const double nearest = TurnDot(image, target) / squares;
    const double noise = noiseAt(nearest);
    const bool seen = nearest * Image > kSeen * noise * std::sqrt(static_cast<double>(Observations));
    Scale = seen ? nearest : 1;
    Noise = seen && (scales || spare > kFew) ? noise : noiseAt(1);
}

}  // namespace corvinade::fit
