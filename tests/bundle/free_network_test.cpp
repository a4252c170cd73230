// The adjusted network against a free adjustment written for this test: no coordinate is held, and the six
// freedoms of place and direction are taken away by inner constraints. Both leave the same residuals and the
// same shape, whatever coordinates the datum holds.
#include <numeric>

#include "bundle/network_job.h"
#include "core/arrays.h"

using namespace corvinade;

namespace {

using FreeNetwork = NetworkJob;

using Rows = std::vector<std::vector<double>>;

// Solves M X = R by elimination with the largest pivot of each column.
Rows Solve(Rows M, Rows R) {
    const std::size_t n = M.size();
    for (std::size_t k = 0; k < n; ++k) {
        std::size_t pivot = k;
        for (std::size_t i = k + 1; i < n; ++i)
            if (std::fabs(M[i][k]) > std::fabs(M[pivot][k])) pivot = i;
        std::swap(M[k], M[pivot]);
        std::swap(R[k], R[pivot]);
        for (std::size_t i = 0; i < n; ++i) {
            if (i == k || M[i][k] == 0) continue;
            const double factor = M[i][k] / M[k][k];
            for (std::size_t j = k; j < n; ++j) M[i][j] -= factor * M[k][j];
            for (std::size_t j = 0; j < R[i].size(); ++j) R[i][j] -= factor * R[k][j];
        }
    }
    for (std::size_t k = 0; k < n; ++k)
        for (double& value : R[k]) value /= M[k][k];
    return R;
}

struct FreeResult {
    std::vector<Place> Points;
    std::vector<double> V;  // computed less measured, in the order of the distances
    double SumVV = 0;
};

// Points: stations and then objects. `pairs` are the two points of each distance.
FreeResult FreeAdjustment(std::vector<Place> points, const std::vector<std::array<std::size_t, 2>>& pairs,
                          const std::vector<double>& measured) {
    const std::size_t u = 3 * points.size();
    const auto computed = [&](const std::array<std::size_t, 2>& pair) {
        const Place &a = points[pair[0]], &b = points[pair[1]];
        return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
    };
    for (int iteration = 0; iteration < 50; ++iteration) {
        Rows M(u + 6, std::vector<double>(u + 6)), R(u + 6, std::vector<double>(1));
        for (std::size_t k = 0; k < pairs.size(); ++k) {
            const double distance = computed(pairs[k]), l = measured[k] - distance;
            std::vector<std::pair<std::size_t, double>> row;
            for (std::size_t axis = 0; axis < 3; ++axis) {
                const double d = (points[pairs[k][0]][axis] - points[pairs[k][1]][axis]) / distance;
                row.emplace_back(3 * pairs[k][0] + axis, d);
                row.emplace_back(3 * pairs[k][1] + axis, -d);
            }
            for (const auto& [i, a] : row) {
                for (const auto& [j, b] : row) M[i][j] += a * b;
                R[i][0] += a * l;
            }
        }
        // Shifts and small turns of all points together; in metres, so that all rows are of one size.
        for (std::size_t p = 0; p < points.size(); ++p) {
            const double x = points[p][0] / 1000, y = points[p][1] / 1000, z = points[p][2] / 1000;
            const double G[3][6] = {{1, 0, 0, 0, z, -y}, {0, 1, 0, -z, 0, x}, {0, 0, 1, y, -x, 0}};
            for (std::size_t axis = 0; axis < 3; ++axis)
                for (std::size_t c = 0; c < 6; ++c)
                    M[3 * p + axis][u + c] = M[u + c][3 * p + axis] = G[axis][c];
        }
        const Rows x = Solve(M, R);
        double biggest = 0;
        for (std::size_t i = 0; i < u; ++i) {
            points[i / 3][i % 3] += x[i][0];
            biggest = std::max(biggest, std::fabs(x[i][0]));
        }
        if (biggest < 1e-9) break;
    }
    FreeResult result;
    for (std::size_t k = 0; k < pairs.size(); ++k) {
        result.V.push_back(computed(pairs[k]) - measured[k]);
        result.SumVV += result.V.back() * result.V.back();
    }
    result.Points = std::move(points);
    return result;
}

FreeResult FreeAdjustment(const SimulatedNetwork& network) {
    std::vector<Place> points = network.Stations;
    points.insert(points.end(), network.Objects.begin(), network.Objects.end());
    std::vector<std::array<std::size_t, 2>> pairs;
    for (std::size_t s = 0; s < network.Stations.size(); ++s)
        for (std::size_t o = 0; o < network.Objects.size(); ++o)
            pairs.push_back({s, network.Stations.size() + o});
    return FreeAdjustment(points, pairs, network.Distances);
}

std::vector<Place> AdjustedPoints() {
    std::vector<Place> points;
    for (int i = 1; i <= Bundle.nStations; ++i)
        points.push_back(
            {Bundle.Net.StationXYZ(i, 1), Bundle.Net.StationXYZ(i, 2), Bundle.Net.StationXYZ(i, 3)});
    for (int i = 1; i <= Bundle.nObjectPoints; ++i)
        points.push_back(
            {Bundle.Net.ObjectXYZ(i, 1), Bundle.Net.ObjectXYZ(i, 2), Bundle.Net.ObjectXYZ(i, 3)});
    return points;
}

double Distance(const Place& a, const Place& b) {
    return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

}  // namespace

TEST_F(FreeNetwork, HasTheSameResidualsAndTheSameShape) {
    for (const auto& [stations, objects] : {std::pair{5, 12}, {4, 8}, {6, 30}}) {
        const SimulatedNetwork network(stations, objects);
        const FreeResult truth = FreeAdjustment(network);
        Bundle = BündelInputFileEinlesen(Write("net.txt", network.Text()));
        BundleWork work = PrepareBundle(Bundle, 100);
        ASSERT_EQ(AdjustBundle(Bundle, work, kBundleLimit, {}), BundleEnd::Converged);
        EXPECT_LT(work.Iterations, 12);
        EXPECT_NEAR(work.SumVV, truth.SumVV, 1e-9 * truth.SumVV) << stations;
        for (std::size_t k = 0; k < truth.V.size(); ++k) EXPECT_NEAR(work.v[k + 1], truth.V[k], 1e-7) << k;
        const std::vector<Place> points = AdjustedPoints();
        for (std::size_t a = 0; a < points.size(); ++a)
            for (std::size_t b = 0; b < a; ++b)
                EXPECT_NEAR(Distance(points[a], points[b]), Distance(truth.Points[a], truth.Points[b]), 1e-6)
                    << a << ", " << b;
    }
}

TEST_F(FreeNetwork, OfDistancesWithoutErrorsComesBackToItsShape) {
    SimulatedNetwork network(5, 12);
    std::vector<Place> truth = network.Stations;
    truth.insert(truth.end(), network.Objects.begin(), network.Objects.end());
    std::size_t k = 0;
    for (const Place& s : network.Stations)
        for (const Place& o : network.Objects) network.Distances[k++] = Distance(s, o);
    for (std::size_t i = 0; i < network.Objects.size(); ++i)
        for (std::size_t axis = 0; axis < 3; ++axis)
            network.Objects[i][axis] += 20 * SimulatedNetwork::Wave(static_cast<int>(9000 + 3 * i + axis));
    Bundle = BündelInputFileEinlesen(Write("net.txt", network.Text()));
    BundleWork work = PrepareBundle(Bundle, 100);
    ASSERT_EQ(AdjustBundle(Bundle, work, kBundleLimit, {}), BundleEnd::Converged);
    EXPECT_LT(work.SumVV, 1e-14);
    const std::vector<Place> points = AdjustedPoints();
    for (std::size_t a = 0; a < points.size(); ++a)
        for (std::size_t b = 0; b < a; ++b)
            EXPECT_NEAR(Distance(points[a], points[b]), Distance(truth[a], truth[b]), 1e-6);
}

TEST_F(FreeNetwork, WithHalfOfItsPointsIsThatOfThesePointsAlone) {
    SimulatedNetwork half = network_;
    half.Objects.clear();
    half.Distances.clear();
    for (std::size_t s = 0; s < network_.Stations.size(); ++s)
        for (std::size_t o = 0; o < network_.Objects.size(); o += 2)
            half.Distances.push_back(network_.Distances[s * network_.Objects.size() + o]);
    for (std::size_t o = 0; o < network_.Objects.size(); o += 2) half.Objects.push_back(network_.Objects[o]);
    const FreeResult truth = FreeAdjustment(half);
    Bundle = BündelInputFileEinlesen(Write("net.txt", network_.Text()));
    const Matrix before = Bundle.Net.ObjectXYZ;
    BundleWork work = PrepareBundle(Bundle, 50);
    ASSERT_EQ(AdjustBundle(Bundle, work, kBundleLimit, {}), BundleEnd::Converged);
    EXPECT_NEAR(work.SumVV, truth.SumVV, 1e-9 * truth.SumVV);
    for (int axis = 1; axis <= 3; ++axis)
        EXPECT_EQ(Bundle.Net.ObjectXYZ(2, axis), before(2, axis)) << "left out";
}

TEST_F(FreeNetwork, TheAccuracyIsS0TimesTheRootOfTheCofactorOfTheHeldDatum) {
    Bundle = BündelInputFileEinlesen(Write("net.txt", network_.Text()));
    BundleWork work = PrepareBundle(Bundle, 100);
    ASSERT_EQ(AdjustBundle(Bundle, work, kBundleLimit, {}), BundleEnd::Converged);
    // N over the floating coordinates, from the directions of the adjusted network.
    const std::vector<Place> points = AdjustedPoints();
    const auto u = static_cast<std::size_t>(work.nUnknown);
    Rows N(u, std::vector<double>(u)), unit(u, std::vector<double>(u));
    for (std::size_t i = 0; i < u; ++i) unit[i][i] = 1;
    for (std::size_t s = 0; s < 5; ++s)
        for (std::size_t o = 5; o < points.size(); ++o) {
            std::vector<std::pair<std::size_t, double>> row;
            for (std::size_t axis = 0; axis < 3; ++axis) {
                const double d = (points[s][axis] - points[o][axis]) / Distance(points[s], points[o]);
                for (const auto& [point, sign] : {std::pair{s, 1.0}, {o, -1.0}})
                    if (const int i = work.Unknown[3 * point + axis + 1]; i != 0)
                        row.emplace_back(static_cast<std::size_t>(i - 1), sign * d);
            }
            for (const auto& [i, a] : row)
                for (const auto& [j, b] : row) N[i][j] += a * b;
        }
    const Rows Q = Solve(N, unit);
    const double s0 = std::sqrt(work.SumVV / 59);
    EXPECT_DOUBLE_EQ(BundleS0(work), s0);
    int held = 0;
    for (int column = 1; column <= UpperBound(work.Unknown); ++column) {
        const int i = work.Unknown[static_cast<std::size_t>(column)];
        const std::optional<double> accuracy = BundleAccuracy(work, column);
        ASSERT_EQ(accuracy.has_value(), i != 0);
        if (i == 0) {
            ++held;
            continue;
        }
        const double q = Q[static_cast<std::size_t>(i - 1)][static_cast<std::size_t>(i - 1)];
        EXPECT_NEAR(*accuracy, s0 * std::sqrt(q), 1e-6 * s0 * std::sqrt(q));
    }
    EXPECT_EQ(held, 6);
}
