// The steps of the adjustment, against the matrices written out and against difference quotients.
#include <cstring>

#include "bundle/network_job.h"
#include "fit/matrix.h"

using namespace corvinade;

namespace {

class AdjustmentSteps : public NetworkJob {
protected:
    AdjustmentSteps() { Bundle = BündelInputFileEinlesen(Write("net.txt", network_.Text())); }

    // Stations at these places, with a few object points beside them.
    static void PlaceStations(const std::vector<Place>& places) {
        Bundle.nStations = static_cast<std::int16_t>(places.size());
        Bundle.StationName.resize(places.size() + 1);
        Bundle.Net.StationXYZ = Matrix(Bundle.nStations, 3);
        for (std::size_t i = 0; i < places.size(); ++i)
            for (int axis = 1; axis <= 3; ++axis)
                Bundle.Net.StationXYZ(static_cast<int>(i) + 1, axis) =
                    places[i][static_cast<std::size_t>(axis - 1)];
    }
    // The columns of stations that are held.
    static std::vector<int> Held(const std::vector<Place>& places) {
        PlaceStations(places);
        BundleWork work = PrepareBundle(Bundle, 100);
        if (!HoldDatum(Bundle.Net, work)) return {};
        std::vector<int> held;
        for (std::size_t column = 1; column < work.Unknown.size(); ++column)
            if (work.Unknown[column] == 0) held.push_back(static_cast<int>(column));
        return held;
    }
    // A with all its columns.
    static Matrix WholeA(const BundleWork& work) {
        Matrix A(Bundle.nDistances, UpperBound(work.Unknown));
        for (int k = 1; k <= Bundle.nDistances; ++k) {
            const DistanceRow& row = work.A[static_cast<std::size_t>(k)];
            for (int axis = 1; axis <= 3 && row.Station != 0; ++axis) {
                A(k, 3 * (row.Station - 1) + axis) = row.Direction[axis - 1];
                A(k, 3 * (Bundle.nStations + row.Object - 1) + axis) = -row.Direction[axis - 1];
            }
        }
        return A;
    }
    // The held columns cut from A, from right to left.
    static Matrix CutA(const BundleWork& work) {
        Matrix A = WholeA(work);
        int rows = A.Rows, columns = A.Columns;
        for (int column = columns; column >= 1; --column) {
            if (work.Unknown[static_cast<std::size_t>(column)] != 0) continue;
            Matrix cut(rows, columns - 1);
            MatrixDeleteRowOrColumn(A, rows, columns, cut, rows, columns, false, column);
            A = cut;
        }
        return A;
    }
    static double Computed(int k, const BundleWork& work) {
        const auto i = static_cast<std::size_t>(k);
        const int s = work.StationOf[i], o = work.UsedObject[static_cast<std::size_t>(work.ObjectOf[i])];
        return std::hypot(Bundle.Net.StationXYZ(s, 1) - Bundle.Net.ObjectXYZ(o, 1),
                          Bundle.Net.StationXYZ(s, 2) - Bundle.Net.ObjectXYZ(o, 2),
                          Bundle.Net.StationXYZ(s, 3) - Bundle.Net.ObjectXYZ(o, 3));
    }
};

}  // namespace

TEST_F(AdjustmentSteps, APercentageTakesEveryStepthObjectPoint) {
    const auto used = [](double percent) { return PrepareBundle(Bundle, percent).UsedObject; };
    EXPECT_EQ(used(100), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    EXPECT_EQ(PrepareBundle(Bundle, 100).step, 1);
    EXPECT_EQ(used(50), (std::vector<int>{0, 1, 3, 5, 7, 9, 11}));
    EXPECT_EQ(used(33), (std::vector<int>{0, 1, 4, 7}));  // Int(3.96) of them, step Int(3.03)
    EXPECT_EQ(used(75), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(used(1), (std::vector<int>{0}));
    EXPECT_EQ(PrepareBundle(Bundle, 1).step, 100);
    for (double percent = 1; percent <= 100; percent += 0.25)
        for (const int number : used(percent)) EXPECT_LE(number, 12) << percent;
}

TEST_F(AdjustmentSteps, ThereAreThreeUnknownsAPointLessSix) {
    EXPECT_EQ(PrepareBundle(Bundle, 100).nUnknown, 3 * (5 + 12) - 6);
    EXPECT_EQ(PrepareBundle(Bundle, 50).nUnknown, 3 * (5 + 6) - 6);
}

TEST_F(AdjustmentSteps, ANetworkWithoutRoomForItsMatrixIsRefused) {
    Bundle.nObjectPoints = 20000;
    Bundle.ObjectName.resize(20001);
    Bundle.Net.ObjectXYZ = Matrix(20000, 3);
    const std::string error = ErrorOf([] { PrepareBundle(Bundle, 100); });
    EXPECT_NE(error.find("60009"), std::string::npos) << error;
    EXPECT_EQ(ErrorOf([] { PrepareBundle(Bundle, 10); }), "");
}

TEST_F(AdjustmentSteps, ARowHoldsTheDerivativesOfItsDistance) {
    BundleWork work = PrepareBundle(Bundle, 100);
    AMatrix(Bundle.Net, work);
    const Matrix A = WholeA(work);
    const double h = 1e-2;
    for (const int k : {1, 14, 37, 60})
        for (int column = 1; column <= A.Columns; ++column) {
            const int point = (column - 1) / 3 + 1, axis = (column - 1) % 3 + 1;
            double& coordinate =
                point <= 5 ? Bundle.Net.StationXYZ(point, axis) : Bundle.Net.ObjectXYZ(point - 5, axis);
            const double at = coordinate;
            coordinate = at + h;
            const double more = Computed(k, work);
            coordinate = at - h;
            const double less = Computed(k, work);
            coordinate = at;
            EXPECT_NEAR(A(k, column), (more - less) / (2 * h), 1e-8) << k << ", " << column;
        }
    EXPECT_DOUBLE_EQ(work.l[14], Bundle.Net.DistanceValue[14] - Computed(14, work));
}

TEST_F(AdjustmentSteps, ADistanceOfAPointThatIsNotInUseLeavesARowOfZeros) {
    Bundle.DistancePair[1][3] = "nobody";
    Bundle.DistancePair[2][4] = "S1";  // a station, but no object point
    BundleWork work = PrepareBundle(Bundle, 50);
    AMatrix(Bundle.Net, work);
    for (const std::size_t k : {2U, 3U, 4U}) {  // P2 is not among the 1st, 3rd, 5th ...
        EXPECT_EQ(work.A[k].Station, 0) << k;
        EXPECT_EQ(work.l[k], 0) << k;
    }
    EXPECT_EQ(work.A[5].Station, 1);
    EXPECT_EQ(work.A[5].Object, 3);
}

TEST_F(AdjustmentSteps, ADistanceBetweenPointsThatCoincideHasNoDirection) {
    for (int axis = 1; axis <= 3; ++axis) Bundle.Net.ObjectXYZ(1, axis) = Bundle.Net.StationXYZ(1, axis);
    BundleWork work = PrepareBundle(Bundle, 100);
    AMatrix(Bundle.Net, work);
    EXPECT_EQ(work.A[1].Station, 0);
    EXPECT_EQ(work.l[1], 0);
    EXPECT_EQ(BundleIteration(Bundle.Net, work, {}), BundleStep::Whole);
    for (const double x : work.x) EXPECT_TRUE(std::isfinite(x));
}

TEST_F(AdjustmentSteps, TheDatumHoldsSixCoordinatesOfThreeStations) {
    // Station 2 along x, station 3 in the plane z = 0: x of the second is free, z of the third is held.
    EXPECT_EQ(Held({{0, 0, 0}, {10, 1, 2}, {3, 20, 1}}), (std::vector<int>{1, 2, 3, 5, 6, 9}));
    // Along z, and the plane of the three is across x.
    EXPECT_EQ(Held({{5, 5, 5}, {5, 6, 50}, {5, 90, 7}}), (std::vector<int>{1, 2, 3, 4, 5, 7}));
    // Along y, down; the plane is across z.
    EXPECT_EQ(Held({{0, 0, 0}, {1, -9, 1}, {8, 0, 0}, {1, 1, 1}}), (std::vector<int>{1, 2, 3, 4, 6, 9}));
}

TEST_F(AdjustmentSteps, StationsThatCoincideOrLieOnTheLineArePassedOver) {
    EXPECT_EQ(Held({{1, 1, 1}, {1, 1, 1}, {11, 1, 1}, {21, 1, 1}, {1, 1, 1}, {-5, 1, 1}, {1, 9, 1}}),
              (std::vector<int>{1, 2, 3, 8, 9, 21}));
}

TEST_F(AdjustmentSteps, StationsOnOneLineHaveNoDatum) {
    EXPECT_TRUE(Held({}).empty());
    EXPECT_TRUE(Held({{1, 2, 3}}).empty());
    EXPECT_TRUE(Held({{1, 2, 3}, {4, 5, 6}}).empty());
    EXPECT_TRUE(Held({{1, 2, 3}, {1, 2, 3}, {1, 2, 3}}).empty());
    EXPECT_TRUE(Held({{0, 0, 0}, {1, 2, 3}, {2, 4, 6}, {-3, -6, -9}}).empty());
    // Decimal fractions on a line are off it by their last bit.
    EXPECT_TRUE(Held({{0.1, 0.2, 0.3}, {0.4, 0.8, 1.2}, {0.7, 1.4, 2.1}}).empty());
    EXPECT_TRUE(Held({{10000.1, 20000.2, 30000.3}, {10000.4, 20000.8, 30001.2}, {10000.7, 20001.4, 30002.1}})
                    .empty());
    EXPECT_FALSE(Held({{10000.1, 20000.2, 30000.3}, {10000.4, 20000.8, 30001.2}, {10000.7, 20001.4, 30002.2}})
                     .empty());
}

TEST_F(AdjustmentSteps, ThreeStationsAreHeldButForTheirFreeCoordinates) {
    const std::vector<int> held = Held({{0, 0, 0}, {10, 1, 2}, {3, 20, 1}});
    EXPECT_EQ(held.size(), 6u);
    EXPECT_LE(held.back(), 9);
}

TEST_F(AdjustmentSteps, TheNormalMatrixIsThePlainProductBitByBit) {
    for (const double percent : {100.0, 50.0}) {
        Bundle.Net.StationXYZ(2, 1) = Bundle.Net.ObjectXYZ(3, 1);  // an element that is exactly 0
        BundleWork work = PrepareBundle(Bundle, percent);
        AMatrix(Bundle.Net, work);
        ASSERT_TRUE(HoldDatum(Bundle.Net, work));
        NormalMatrix(Bundle.nStations, work);

        const int u = work.nUnknown, n = Bundle.nDistances;
        const Matrix A = CutA(work);
        ASSERT_EQ(A.Columns, u);
        const Column P(static_cast<std::size_t>(n) + 1, 1);
        Matrix At(u, n), AtP(u, n), N(u, u);
        MatrixTranspose(A, n, u, At);
        MatrixTimesDiagonal(At, u, n, P, AtP);
        MatrixMultiply(AtP, u, n, A, u, N);
        ASSERT_EQ(N.Elements.size(), work.Qxx.Elements.size());
        EXPECT_EQ(
            std::memcmp(N.Elements.data(), work.Qxx.Elements.data(), N.Elements.size() * sizeof(double)), 0);
    }
}

TEST_F(AdjustmentSteps, AnIterationIsThatOfTheWholeMatrices) {
    const BundleRecord before = Bundle;
    BundleWork work = PrepareBundle(Bundle, 100);
    AMatrix(Bundle.Net, work);
    ASSERT_TRUE(HoldDatum(Bundle.Net, work));
    const int u = work.nUnknown, n = Bundle.nDistances;
    const Matrix A = CutA(work);
    Matrix At(u, n), N(u, u), Q(u, u);
    Column right(static_cast<std::size_t>(u) + 1), x(right), Ax(static_cast<std::size_t>(n) + 1);
    MatrixTranspose(A, n, u, At);
    MatrixMultiply(At, u, n, A, u, N);
    MatrixInverse(N, u, u, Q);
    MatrixMultiply(At, u, n, work.l, 1, right);
    MatrixMultiply(Q, u, u, right, 1, x);
    MatrixMultiply(A, n, u, x, 1, Ax);
    const Column l = work.l;

    std::vector<std::string> steps;
    EXPECT_EQ(
        BundleIteration(Bundle.Net, work,
                        {[&steps](BundleStage stage) { steps.emplace_back(BundleStageText(stage)); }, {}}),
        BundleStep::Whole);
    EXPECT_EQ(steps,
              (std::vector<std::string>{
                  "calculationg A Matrix", "calculating A transponiert", "calculating At * P",
                  "calculating N = (At * P) * A", "calculating qxx = N^-1", "calculating n = (At * P) * l",
                  "calculating x = qxx * n", "calculating v = A * x -l", "calculating unknowns"}));
    EXPECT_EQ(work.Qxx.Elements, Q.Elements);
    EXPECT_EQ(work.x, x);
    double biggest = 0, sumVV = 0;
    for (std::size_t k = 1; k < work.v.size(); ++k) {
        EXPECT_EQ(work.v[k], Ax[k] - l[k]);
        sumVV += work.v[k] * work.v[k];
    }
    for (const double value : x) biggest = std::max(biggest, std::fabs(value));
    EXPECT_EQ(work.BiggestX, biggest);
    EXPECT_DOUBLE_EQ(work.SumVV, sumVV);
    for (int column = 1; column <= UpperBound(work.Unknown); ++column) {
        const int point = (column - 1) / 3 + 1, axis = (column - 1) % 3 + 1,
                  unknown = work.Unknown[static_cast<std::size_t>(column)];
        const double was =
            point <= 5 ? before.Net.StationXYZ(point, axis) : before.Net.ObjectXYZ(point - 5, axis);
        const double is =
            point <= 5 ? Bundle.Net.StationXYZ(point, axis) : Bundle.Net.ObjectXYZ(point - 5, axis);
        EXPECT_EQ(is, unknown == 0 ? was : was + x[static_cast<std::size_t>(unknown)]) << column;
    }
}

TEST_F(AdjustmentSteps, AnIterationThatIsEndedLeavesTheNetworkAsItWas) {
    const SimulatedNetwork large(6, 230);
    Bundle = BündelInputFileEinlesen(Write("large.txt", large.Text()));
    const Matrix stations = Bundle.Net.StationXYZ, objects = Bundle.Net.ObjectXYZ;
    BundleWork work = PrepareBundle(Bundle, 100);
    int asked = 0;
    EXPECT_EQ(BundleIteration(Bundle.Net, work, {{}, [&asked] { return ++asked < 2; }}), BundleStep::Ended);
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(Bundle.Net.StationXYZ.Elements, stations.Elements);
    EXPECT_EQ(Bundle.Net.ObjectXYZ.Elements, objects.Elements);
    EXPECT_EQ(work.Iterations, 0);
}
