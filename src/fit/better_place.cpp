// Places beside the one where the passes of the fit to a shape rest.
#include "fit/better_place.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "fit/held_directions.h"
#include "fit/shape.h"

namespace corvinade::fit {

namespace {

using Values = std::vector<double>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// A place is told by the ways from the begin along the held directions, mm at the cloud's edge.
struct Rest {
    Values Place;
    double Sum = kInfinity;  // of squared distances, mm^2
    Values Distances;        // of the points there, with the side of the surface as their sign, mm
};

// Normal equations of the distances in the held directions.
struct Equations {
    std::vector<Values> Normal;
    Values Right;

    // Cholesky's decomposition. False where the matrix is not positive.
    bool Solve(Values& x) const {
        const std::size_t n = Right.size();
        std::vector<Values> l = Normal;
        x = Right;
        for (std::size_t i = 0; i < n; ++i)
            for (std::size_t j = 0; j <= i; ++j) {
                double sum = Normal[i][j];
                for (std::size_t k = 0; k < j; ++k) sum -= l[i][k] * l[j][k];
                if (i == j && !(sum > 0)) return false;
                l[i][j] = i == j ? std::sqrt(sum) : sum / l[j][j];
            }
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t k = 0; k < i; ++k) x[i] -= l[i][k] * x[k];
            x[i] /= l[i][i];
        }
        for (std::size_t i = n; i-- > 0;) {
            for (std::size_t k = i + 1; k < n; ++k) x[i] -= l[k][i] * x[k];
            x[i] /= l[i][i];
        }
        return true;
    }
};

enum class Surface {
    Segments,  // as the table has them
    Even       // bending evenly along them
};

// The sum of squared distances over the parameters that the shape holds.
class Landscape {
public:
    explicit Landscape(ShapeRun& run) : run_(run), floating_(run), before_(run.Now) {
        begin_ = floating_.Take(run.Now);
        directions_ = FindHeldDirections(run, floating_, kRotZ);
        const GatheredPoints& points = run.Points;
        const Vec3 c = points.StartCentre;
        for (std::size_t k = 0; k < static_cast<std::size_t>(points.Count); ++k)
            if (PointInUse(points, k))
                points_.push_back(
                    {points.Start[0][k] + c(1), points.Start[1][k] + c(2), points.Start[2][k] + c(3)});
        // A point of a surface tells one number, its distance.
        redundancy_ = std::max(1.0, static_cast<double>(points_.size()) - static_cast<double>(Directions()));
    }

    std::size_t Directions() const { return directions_.Held.size(); }
    bool Lost() const { return lost_; }
    bool Ended() const { return lost_ || run_.Listener.StopsOrRests(); }

    // Has the search taken as long as it may? Many points even the kinks out, so that a first look does.
    bool Spent() const {
        constexpr std::size_t kMost = 500000;  // distances
        return sums_ * points_.size() > kMost;
    }

    void Restore() const { run_.Now = before_; }
    void Put(const Values& place) const {
        ParameterPlace parameters = begin_;
        for (std::size_t k = 0; k < place.size(); ++k)
            for (std::size_t i = 0; i < parameters.size(); ++i)
                parameters[i] += place[k] * directions_.Held[k][i];
        floating_.Put(parameters, run_.Now);
        BuildChain(ChainSourceOf(run_.Now), run_.Chain);
    }

    // Infinite where a scale leaves its neighbourhood, where there is no number, and behind the end.
    double SumAt(const Values& place, Surface surface = Surface::Segments) {
        if (!Serve()) return kInfinity;
        Put(place);
        if (!ScalesAreNear()) return kInfinity;
        double sum = 0;
        for (const Vec3& p : points_) {
            const Vec3 image = ImageOf(run_, p);
            Vec3 nearest;
            double distance = 0;
            if (surface == Surface::Even) {
                const ShapeFoot foot = NearestShapeFoot(image(1), image(2), image(3), run_.Shape);
                const double off = OffSegment(foot, image) - foot.Bulge;
                sum += off * off;
                continue;
            }
            NearestShapePoint(image(1), image(2), image(3), run_.Shape, nearest(1), nearest(2), nearest(3),
                              distance);
            sum += distance * distance;
        }
        return std::isfinite(sum) ? sum : kInfinity;
    }

    // Down to a place of rest. On segments each step leaves the points where they are, which may then be
    // nearer to other segments, so that whole steps only ever lead down where the shape is hollow.
    Rest Descend(Values place, Surface surface = Surface::Segments) {
        constexpr int kMostSteps = 30, kMostHalves = 6;
        constexpr double kNothing = 1e-12;
        Rest rest{.Place = std::move(place)};
        rest.Sum = SumAt(rest.Place, surface);
        Values step;
        for (int count = 0; count < kMostSteps && std::isfinite(rest.Sum); ++count) {
            if (!EquationsAt(rest.Place, surface).Solve(step)) break;
            Rest next;
            double share = 1;
            for (int halves = 0; halves < kMostHalves && !(next.Sum < rest.Sum); ++halves, share /= 2) {
                next.Place = rest.Place;
                for (std::size_t k = 0; k < step.size(); ++k) next.Place[k] -= share * step[k];
                next.Sum = SumAt(next.Place, surface);
            }
            if (!(next.Sum < rest.Sum)) break;
            const double gain = rest.Sum - next.Sum;
            rest = std::move(next);
            if (gain < kNothing * rest.Sum) break;
        }
        return rest;
    }

    // The least place of the surface that bends evenly, which has no kinks to hang at.
    Values EvenPlace() { return Descend(Values(Directions()), Surface::Even).Place; }

    // How far to go along direction k so that the sum changes by `sum`.
    double Way(std::size_t k, double sum) const { return std::sqrt(sum / directions_.Weight[k]); }

    // The sum that the table itself stands for at the begin: of what its segments lie off the even surface.
    double OffTable() {
        Put(Values(Directions()));
        double sum = 0;
        for (const Vec3& p : points_) {
            const ShapeFoot foot = FootOf(p);
            sum += foot.Bulge * foot.Bulge;
        }
        return std::isfinite(sum) ? sum : 0;
    }

    double SquaredMeanError(double sum) const { return sum / redundancy_; }
    // By how much another sum must differ to be another.
    double Worth(double sum) const {
        constexpr double kOfError = 0.01, kOfSum = 1e-6;
        return std::max(kOfSum * sum, kOfError * SquaredMeanError(sum));
    }
    // How far the points lie off the surface at a place, and on which side.
    Values DistancesAt(const Values& place) {
        Values distances;
        if (!Serve()) return distances;
        Put(place);
        distances.reserve(points_.size());
        for (const Vec3& p : points_) {
            const Vec3 image = ImageOf(run_, p);
            distances.push_back(
                OffSegment(NearestShapeFoot(image(1), image(2), image(3), run_.Shape), image));
        }
        return distances;
    }
    // One place: the surface lies as near to the points as so many squared mean errors of `b` leave it, or as
    // lengths of the cloud's size mean anything. The parameters themselves would not do, since along a
    // surface they move far on bent ways without any change of the distances.
    bool AreOnePlace(const Values& a, const Rest& b, double errors = 1) const {
        constexpr double kNear = 1e-6;  // of the cloud's size
        if (a.size() != b.Distances.size()) return false;
        double apart = 0;
        for (std::size_t k = 0; k < a.size(); ++k) {
            const double way = a[k] - b.Distances[k];
            apart += way * way;
        }
        const double near = kNear * floating_.Size;
        return apart <=
               std::max(errors * SquaredMeanError(b.Sum), near * near * static_cast<double>(points_.size()));
    }

private:
    bool Serve() {
        if (Ended()) return false;
        ++sums_;
        const bool lost = run_.Lost();
        lost_ = lost_ || lost;
        return !Ended();
    }

    bool ScalesAreNear() const {
        constexpr double kNear = 0.1;
        for (std::size_t i = 0; i < begin_.size(); ++i) {
            const int parameter = floating_.Numbers[i];
            if (KindOf(parameter) != ParameterKind::Scale) continue;
            const double begin = begin_[i] / floating_.Factor(parameter);
            if (!(std::fabs(run_.Now[parameter] - begin) <= kNear * std::fabs(begin))) return false;
        }
        return true;
    }

    // How far an image lies off the segment of its foot, and on which side.
    static double OffSegment(const ShapeFoot& foot, const Vec3& image) {
        double distance = 0;
        for (int axis = 1; axis <= 3; ++axis) distance += foot.Facet(axis) * (image(axis) - foot.Place(axis));
        return distance;
    }

    ShapeFoot FootOf(const Vec3& p) {
        const Vec3 image = ImageOf(run_, p);
        return NearestShapeFoot(image(1), image(2), image(3), run_.Shape);
    }

    Equations EquationsAt(const Values& place, Surface surface) {
        const std::size_t n = Directions();
        Equations equations{.Normal = std::vector<Values>(n, Values(n)), .Right = Values(n)};
        if (!Serve()) return equations;
        Put(place);
        const Linearisation at = Linearise(run_.Model, run_.Now, run_.Points, run_.Chain);
        Values along(n);
        for (const Vec3& p : points_) {
            const Vec3 image = ImageOf(run_, p);
            const ShapeFoot foot = NearestShapeFoot(image(1), image(2), image(3), run_.Shape);
            const double distance = OffSegment(foot, image) - (surface == Surface::Even ? foot.Bulge : 0);
            const Vec3& normal = surface == Surface::Even ? foot.Bend : foot.Facet;
            const std::vector<Vec3> ways = WaysOfPoint(run_.Model, at, floating_, p);
            std::fill(along.begin(), along.end(), 0);
            for (std::size_t i = 0; i < ways.size(); ++i) {
                const double across =
                    normal(1) * ways[i](1) + normal(2) * ways[i](2) + normal(3) * ways[i](3);
                for (std::size_t k = 0; k < n; ++k) along[k] += across * directions_.Held[k][i];
            }
            for (std::size_t k = 0; k < n; ++k) {
                equations.Right[k] += along[k] * distance;
                for (std::size_t j = 0; j < n; ++j) equations.Normal[k][j] += along[k] * along[j];
            }
        }
        return equations;
    }

    ShapeRun& run_;
    FloatingParameters floating_;
    Parameters before_;
    ParameterPlace begin_;
    HeldDirections directions_;
    std::vector<Vec3> points_;  // in use, mm
    std::size_t sums_ = 0;      // so far
    double redundancy_ = 1;
    bool lost_ = false;
};

// Numbers of mean 0 and variance 1, all but normal, the same in each search.
class Dice {
public:
    double Even() {  // from 0 to 1
        state_ = state_ * 6364136223846793005U + 1442695040888963407U;
        return static_cast<double>(state_ >> 11U) * 0x1p-53;
    }
    double Normal() {
        constexpr int kTwelve = 12;
        double sum = -kTwelve / 2.0;
        for (int i = 0; i < kTwelve; ++i) sum += Even();
        return sum;
    }

private:
    std::uint64_t state_ = 1;
};

// The places of rest that a search has come to.
class Search {
public:
    explicit Search(Landscape& land) : land_(land) {}

    const Rest& Best() const { return ends_[best_]; }

    // Takes an end of a way; true where it is better than the best so far.
    bool Take(Rest end) {
        end.Distances = land_.DistancesAt(end.Place);
        const bool better = ends_.empty() || end.Sum < Best().Sum - land_.Worth(Best().Sum);
        if (better) best_ = ends_.size();
        ends_.push_back(std::move(end));
        return better;
    }

    // Has every way come to the best place?
    bool AllAreOne() const {
        return std::all_of(ends_.begin(), ends_.end(), [this](const Rest& end) { return IsBest(end); });
    }

    // From the best place both ways along each direction, by these parts of the way that changes the sum by
    // `unit`. The first look goes on even where the time is spent.
    bool LookAlong(const std::vector<double>& parts, double unit, bool first = false) {
        bool better = false;
        const Values centre = Best().Place;
        for (std::size_t k = 0; k < land_.Directions(); ++k)
            for (const double part : parts)
                for (const double sign : {-1.0, 1.0}) {
                    if (land_.Ended() || (!first && land_.Spent())) return better;
                    Values place = centre;
                    place[k] += sign * part * land_.Way(k, unit);
                    better |= Take(land_.Descend(place));
                }
        return better;
    }

    void LookAround(int count, double unit) {
        Dice dice;
        for (int i = 0; i < count && !land_.Ended() && !land_.Spent(); ++i) {
            Values place = Best().Place;
            const double size = 0.3 + 2 * dice.Even();
            for (std::size_t k = 0; k < place.size(); ++k)
                place[k] += size * dice.Normal() * land_.Way(k, unit);
            Take(land_.Descend(place));
        }
    }

    bool LeavesDoubt() const {
        constexpr int kSure = 3;
        constexpr double kHardly = 4;  // times the squared mean error: two sigma
        const double most = Best().Sum + kHardly * land_.SquaredMeanError(Best().Sum);
        int ways = 0;
        for (const Rest& end : ends_) {
            if (!(end.Sum <= most)) continue;
            // What lies as far off as such a sum does in an even valley is within what noise leaves open.
            if (!land_.AreOnePlace(end.Distances, Best(), kHardly)) return true;
            ++ways;
        }
        return ways < kSure;
    }

private:
    bool IsBest(const Rest& end) const {
        return end.Sum <= Best().Sum + land_.Worth(Best().Sum) && land_.AreOnePlace(end.Distances, Best());
    }

    Landscape& land_;
    std::vector<Rest> ends_;
    std::size_t best_ = 0;
};

// The whole search, behind a first look that has not come back to one place.
void SeekOn(Search& search, double offTable) {
    constexpr int kMostRounds = 10, kAround = 60;
    const std::vector<double> parts = {0.5, 1, 2, 4};
    for (int round = 0; round < kMostRounds; ++round)
        if (!search.LookAlong(parts, search.Best().Sum)) break;
    search.LookAround(kAround, std::max(search.Best().Sum, offTable));
}

}  // namespace

PassEnd SearchBeside(ShapeRun& run, BesideSearch& found) {
    found = BesideSearch{};
    Landscape land(run);
    if (land.Directions() == 0) return PassEnd::Done;
    const Values begin(land.Directions());
    const double before = land.SumAt(begin);
    if (land.Lost()) return PassEnd::Lost;
    if (land.Ended() || !std::isfinite(before)) {
        land.Restore();
        return PassEnd::Done;
    }
    Search search(land);
    const double offTable = land.OffTable();
    search.Take(land.Descend(begin));
    const Values even = land.EvenPlace();
    search.Take(land.Descend(even));
    search.LookAlong({1}, std::max(search.Best().Sum, offTable), true);
    const bool one = search.AllAreOne();
    if (!one) SeekOn(search, offTable);
    const Values evenDistances = land.DistancesAt(even);
    if (land.Lost()) return PassEnd::Lost;
    land.Restore();
    if (land.Ended()) return PassEnd::Done;
    found.Doubt = (!one && search.LeavesDoubt()) || !land.AreOnePlace(evenDistances, search.Best());
    found.Better = search.Best().Sum < before - land.Worth(before);
    if (found.Better) land.Put(search.Best().Place);
    return PassEnd::Done;
}

}  // namespace corvinade::fit
