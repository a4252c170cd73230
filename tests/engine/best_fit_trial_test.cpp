// Random point sets of every awkward kind: none is fitted worse than the closed forms say is possible.
// tools/trial runs it with many more sets.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <map>
#include <numbers>
#include <random>

#include "engine/best_fit.h"
#include "engine/calculation.h"
#include "engine/fit_job.h"
#include "engine/global_optimum.h"
#include "engine/selection.h"
#include "engine/transform.h"
#include "fit/small_svd.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

using optimum::Kind;
using optimum::Point;
using optimum::Real;

class Random {
public:
    explicit Random(std::uint64_t seed) : engine_(seed) {}
    int Below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(engine_); }
    double Between(double least, double most) {
        return std::uniform_real_distribution<double>(least, most)(engine_);
    }
    double Power(double least, double most) { return std::pow(10, Between(least, most)); }
    double Normal() { return std::normal_distribution<double>()(engine_); }

private:
    std::mt19937_64 engine_;
};

struct Set {
    std::vector<Point> Start, Target;
    std::string Shape;
    double Noise = 0;
    std::array<int, 3> Seeds{};
};

Point Plus(const Point& a, const Point& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

Point Rounded(const Point& p) {
    return {static_cast<double>(p[0]), static_cast<double>(p[1]), static_cast<double>(p[2])};
}

Point Turned(const reference::Square& R, const Point& p) {
    Point result{};
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t k = 0; k < 3; ++k) result[row] += R[row][k] * p[k];
    return result;
}

reference::Square AnyRotation(Random& random) {
    const double half = std::numbers::pi / 2;
    switch (random.Below(4)) {
        case 0:  // axes swapped, Rot y at a right angle among them
            return reference::Rotation(half * random.Below(4), half * random.Below(4),
                                       half * random.Below(4));
        case 1:  // Rot y at a right angle
            return reference::Rotation(random.Between(-3, 3), random.Below(2) == 0 ? half : -half,
                                       random.Between(-3, 3));
        default:
            return reference::Rotation(random.Between(-3.1, 3.1), random.Between(-1.5, 1.5),
                                       random.Between(-3.1, 3.1));
    }
}

// `least` points at least.
Set AnySet(Random& random, Kind kind) {
    Set set;
    const int n = (kind == Kind::Affine ? 4 : 3) + random.Below(15);
    const double size = random.Power(0, 4);
    const int shape = random.Below(9);
    const Point along = {random.Normal(), random.Normal(), random.Normal()},
                across = {random.Normal(), random.Normal(), random.Normal()};
    for (int i = 0; i < n; ++i) {
        const double a = random.Between(-1, 1), b = random.Between(-1, 1), c = random.Between(-1, 1);
        Point p{};
        switch (shape) {
            case 0:
                set.Shape = "plane along the axes";
                p = {a * size, b * size, 0};
                break;
            case 1:
                set.Shape = "plane";
                for (std::size_t k = 0; k < 3; ++k) p[k] = size * (a * along[k] + b * across[k]);
                break;
            case 2:
                set.Shape = "line";
                for (std::size_t k = 0; k < 3; ++k) p[k] = size * a * along[k];
                break;
            case 7:
                set.Shape = "line of few decimals";
                for (std::size_t k = 0; k < 3; ++k) p[k] = size * a * along[k];
                break;
            case 8:
                set.Shape = "plane of few decimals";
                for (std::size_t k = 0; k < 3; ++k) p[k] = size * (a * along[k] + b * across[k]);
                break;
            case 3:
                set.Shape = "grid";
                p = {size * (i % 3), size * (i / 3 % 3), size * (i / 9)};
                break;
            case 4:
                set.Shape = "edges of a plate";
                p = i < n / 2 ? Point{a * size, 0, 0} : Point{0, b * size, 0};
                if (i == n - 1) p[2] = size / 10;
                break;
            case 5:
                set.Shape = "thin plate";
                p = {a * size, b * size, c * size / 1000};
                break;
            default:
                set.Shape = "box";
                p = {a * size, b * size, c * size};
        }
        set.Start.push_back(p);
    }
    const double offset = random.Below(2) == 0 ? 0 : random.Power(0, 6);
    const Point from = {offset * random.Between(-1, 1), offset * random.Between(-1, 1),
                        offset * random.Between(-1, 1)};
    const Point to = {offset * random.Between(-1, 1), offset * random.Between(-1, 1),
                      offset * random.Between(-1, 1)};
    const reference::Square R = AnyRotation(random);
    const double scale = kind == Kind::Rigid || random.Below(2) == 0 ? 1 : random.Power(-3, 3);
    set.Noise = random.Below(4) == 0 ? 0 : size * scale * random.Power(-7, -1);
    // The last decimal of a file is all that such points stand off their line or plane by.
    const bool decimals = set.Shape.ends_with("decimals");
    const double last = std::max(size * random.Power(-9, -6), 1e-11 * offset);
    for (Point& p : set.Start) {
        Point q = Turned(R, p);
        for (Real& value : q) value = value * scale + set.Noise * random.Normal();
        q = Plus(q, to);
        p = Plus(p, from);
        for (std::size_t k = 0; k < 3 && decimals; ++k) {
            p[k] = std::round(p[k] / last) * last;
            q[k] = std::round(q[k] / last) * last;
        }
        set.Target.push_back(Rounded(q));
        p = Rounded(p);
    }
    if (random.Below(5) == 0) {  // two names swapped
        std::swap(set.Target[0], set.Target[static_cast<std::size_t>(n - 1)]);
        set.Shape += ", two swapped";
    }
    if (random.Below(5) == 0) {  // a gross error
        set.Target[static_cast<std::size_t>(random.Below(n))][static_cast<std::size_t>(random.Below(3))] +=
            size * scale * random.Power(0, decimals ? 1 : 3);
        set.Shape += ", a gross error";
    }
    for (std::size_t k = 0; k < 3;) {
        const int seed = 1 + random.Below(n);
        if (k > 0 && seed == set.Seeds[0]) continue;
        if (k > 1 && seed == set.Seeds[1]) continue;
        set.Seeds[k++] = seed;
    }
    return set;
}

Real LargestCoordinate(const Set& set) {
    Real largest = 0;
    for (const auto* points : {&set.Start, &set.Target})
        for (const Point& p : *points)
            for (const Real value : p) largest = std::max(largest, std::fabs(value));
    return largest;
}

// Of an oblique frame the second axis leaves the first by xy from a right angle, and the third their plane by
// the complement of z to xy: each mirrors beyond a right angle, as a negative scale does.
bool MirrorsPoints() {
    const auto value = [](int k) { return ParameterValue(Job, k); };
    return value(kScaleX) * value(kScaleY) * value(kScaleZ) * std::cos(value(kAngleXY)) *
               std::cos(value(kAngleZtoXY)) <
           0;
}

// The sum that the job's parameters give, in long double.
Real SumOfJob(const Set& set) {
    std::array<Real, 18> parameters{};
    for (int k = kTraX; k < kParameterEnd; ++k)
        parameters[static_cast<std::size_t>(k)] = ParameterValue(Job, k);
    Real sum = 0;
    for (std::size_t i = 0; i < set.Start.size(); ++i) {
        const Point image = reference::Image(parameters, set.Start[i]);
        for (std::size_t k = 0; k < 3; ++k)
            sum += (image[k] - set.Target[i][k]) * (image[k] - set.Target[i][k]);
    }
    return sum;
}

int FromEnvironment(const char* name, int otherwise) {
    const char* text = std::getenv(name);
    return text != nullptr ? std::atoi(text) : otherwise;
}

// What the best sum may be missed by: 1e-9 of it, what the last digits of the coordinates and of the
// parameters make, and what the rounding of the deviations themselves makes. Of points on a line or in a
// plane the rounding of the coordinates alone tells what turns them about it.
Real Allowed(const Set& set, Real best) {
    Real size = 1;
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column) size += std::fabs(Chain.Product(row, column));
    Point least = set.Start[0], most = set.Start[0];
    for (const Point& p : set.Start)
        for (std::size_t k = 0; k < 3; ++k) {
            least[k] = std::min(least[k], p[k]);
            most[k] = std::max(most[k], p[k]);
        }
    const Real extent = std::max({most[0] - least[0], most[1] - least[1], most[2] - least[2]});
    const Real rows = 3 * static_cast<Real>(set.Start.size());
    const Real digits = 1e-15L * LargestCoordinate(set) * size;
    const bool flat = set.Shape.starts_with("line") || set.Shape.starts_with("plane");
    // Of a frame that carries what stands off them a thousand million times as far each angle rounds as well.
    const bool far = set.Shape.find("decimals") != std::string::npos;
    const Real ofDeviations = flat ? (far ? 1e-14L : 1e-15L) * LargestCoordinate(set) : 1e-15L * extent;
    return best * 1e-9L + rows * digits * digits + 2 * std::sqrt(best * rows) * ofDeviations * size;
}

}  // namespace

class BestFitTrial : public Program {};

TEST_F(BestFitTrial, NoRandomSetEndsAboveTheGlobalOptimum) {
    const int sets = FromEnvironment("CORVINADE_TRIAL_SETS", 400);
    const int seed = FromEnvironment("CORVINADE_TRIAL_SEED", 1);
    Random random(static_cast<std::uint64_t>(seed));
    Real worst = 0;
    int above = 0, open = 0;
    std::array<int, 3> mirrored{};
    std::map<std::string, int> failed;
    for (int i = 0; i < sets; ++i) {
        const Kind kind = std::array{Kind::Rigid, Kind::Similarity,
                                     Kind::Affine}[static_cast<std::size_t>(random.Below(3))];
        const Set set = AnySet(random, kind);
        Job = JobRecord{};
        BeginFit();
        FloatParameters(kRigid);
        if (kind == Kind::Similarity) FloatParameters({kScaleXYZ});
        if (kind == Kind::Affine)
            FloatParameters({kScaleX, kScaleY, kScaleZ, kAngleXY, kAzimuth, kAngleZtoXY});
        for (std::size_t k = 0; k < set.Start.size(); ++k) AddPair(set.Start[k], set.Target[k]);
        for (std::size_t k = 0; k < 3; ++k) Job.SeedIndex[k + 1] = static_cast<std::int16_t>(set.Seeds[k]);
        SelectionFromJob();
        ButtonCalcErsatz();
        BuildChain();
        const Real best = optimum::LeastSum(kind, set.Start, set.Target);
        const Real sum = SumOfJob(set);
        const bool isMirrored = MirrorsPoints();
        EXPECT_EQ(isMirrored, Certificate.Mirrored)
            << "set " << i << " of seed " << seed << ", " << set.Shape;
        if (isMirrored) ++mirrored[static_cast<std::size_t>(kind)];
        if (!Calculation.Converged) ++open;
        // Where points in a plane but for their last decimals fit best as a mirror image, by no more than
        // those explain, the proper result stands, and the certificate says how far above it is.
        const bool told = kind == Kind::Affine && !isMirrored &&
                          set.Shape.find("decimals") != std::string::npos &&
                          std::fabs((sum - best) / sum - Certificate.RelativeAbove) < 1e-4;
        const bool good = Calculation.Converged && (sum <= best + Allowed(set, best) || told);
        if (best > 0 && !told) worst = std::max(worst, (sum - best - Allowed(set, best)) / best);
        if (good) continue;
        ++above;
        ++failed[set.Shape];
        if (above <= 10)
            ADD_FAILURE() << "set " << i << " of seed " << seed << ", " << set.Shape << ", kind "
                          << static_cast<int>(kind) << ", " << set.Start.size() << " points, noise "
                          << set.Noise << ": sum " << static_cast<double>(sum) << ", possible "
                          << static_cast<double>(best) << ", allowed "
                          << static_cast<double>(Allowed(set, best)) << ", converged "
                          << Calculation.Converged << ", certificate " << Certificate.RelativeAbove
                          << ", mirrored " << Certificate.Mirrored << ", largest coordinate "
                          << static_cast<double>(LargestCoordinate(set));
    }
    EXPECT_EQ(above, 0);
    for (const auto& [shape, count] : failed) std::printf("%6d  %s\n", count, shape.c_str());
    std::printf(
        "%d random sets, seed %d: %d above the global optimum, %d not converged, mirrored %d with one scale and %d affine\n",
        sets, seed, above, open, mirrored[1], mirrored[2]);
}
