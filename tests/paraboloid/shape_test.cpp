// The nearest point of a shape.
#include "fit/shape.h"

#include <algorithm>

#include "paraboloid/shape_job.h"

using namespace corvinade;

namespace {

struct Found {
    double X, Y, Z, Distance;
};

Found Nearest(double x, double y, double z, const Matrix& shape) {
    Found f{};
    NearestShapePoint(x, y, z, shape, f.X, f.Y, f.Z, f.Distance);
    return f;
}

Matrix Rows(std::initializer_list<std::array<double, 2>> rows) {
    Matrix shape(static_cast<int>(rows.size()), 2);
    int row = 0;
    for (const auto& [r, z] : rows) {
        ++row;
        shape(row, 1) = r;
        shape(row, 2) = z;
    }
    return shape;
}

// The distance of (r, z) from a segment of the profile, its ends included.
double FromSegment(const Matrix& shape, int row, double r, double z) {
    const double ar = shape(row, 1), az = shape(row, 2), dr = shape(row + 1, 1) - ar,
                 dz = shape(row + 1, 2) - az;
    const double t = std::clamp(((r - ar) * dr + (z - az) * dz) / (dr * dr + dz * dz), 0.0, 1.0);
    return std::hypot(ar + t * dr - r, az + t * dz - z);
}

class NearestPoint : public ShapeJob {};

}  // namespace

TEST_F(NearestPoint, OnAConeIsTheFootOfThePerpendicular) {
    // Along z = r the foot of (r, z) = (5, 1) is (3, 3).
    const Matrix cone = Rows({{0, 0}, {10, 10}});
    const Found f = Nearest(3, 4, 1, cone);
    EXPECT_NEAR(f.X, 3 * 0.6, 1e-9);
    EXPECT_NEAR(f.Y, 3 * 0.8, 1e-9);
    EXPECT_NEAR(f.Z, 3, 1e-9);
    EXPECT_NEAR(f.Distance, std::sqrt(8), 1e-9);
}

TEST_F(NearestPoint, StaysInTheMeridianOfThePointInAllQuadrants) {
    const Matrix shape = Table(301);
    for (int degree = 0; degree < 360; degree += 7) {
        const double phi = degree * kPi / 180, r = 700;
        const Found f = Nearest(r * std::cos(phi), r * std::sin(phi), Height(r) + 3, shape);
        // The library's pi has ten digits: seen from the axis that is 1e-10 rad.
        EXPECT_NEAR(f.X * std::sin(phi) - f.Y * std::cos(phi), 0, 1e-6) << degree;
        EXPECT_GT(f.X * std::cos(phi) + f.Y * std::sin(phi), 0) << degree;
    }
}

TEST_F(NearestPoint, OfAPointOnTheAxisLiesAtAzimuthZero) {
    const Matrix cone = Rows({{0, 0}, {10, 10}});
    const Found f = Nearest(0, 0, 4, cone);
    EXPECT_NEAR(f.X, 2, 1e-9);
    EXPECT_EQ(f.Y, 0);
    EXPECT_NEAR(f.Z, 2, 1e-9);
}

TEST_F(NearestPoint, BeyondTheTableLiesOnItsLastSegmentMadeLonger) {
    const Matrix shape = Rows({{0, 0}, {10, 0}, {20, 10}});
    const Found beyond = Nearest(40, 0, 30, shape);
    EXPECT_NEAR(beyond.X, 40, 1e-8);
    EXPECT_NEAR(beyond.Z, 30, 1e-8);
    EXPECT_NEAR(beyond.Distance, 0, 1e-8);
    const Found inside = Nearest(2, 0, -5, Rows({{6, 1}, {10, 1}, {20, 10}}));
    EXPECT_NEAR(inside.X, 2, 1e-9) << "and before its first one";
    EXPECT_NEAR(inside.Distance, 6, 1e-9);
}

TEST_F(NearestPoint, IsThatOfAllSegmentsOnAParaboloid) {
    for (const int rows : {2, 3, 4, 5, 6, 7, 17, 100, 1501}) {
        const Matrix shape = Table(rows);
        const double step = kRim / (rows - 1);
        for (int i = 0; i < 400; ++i) {
            const double r = 0.98 * kRim * std::fabs(NextNumber()), phi = kPi * NextNumber(),
                         off = 20 * NextNumber();
            const double z = Height(r) + off;
            double least = 1e300;
            for (int row = 1; row < rows; ++row) least = std::min(least, FromSegment(shape, row, r, z));
            const Found f = Nearest(r * std::cos(phi), r * std::sin(phi), z, shape);
            // Feet may lie beyond the ends of their segments. Those bend by step / (2 f) from each other, and
            // the nearest row is no farther than half a step: so much nearer may such a foot be.
            const double bend = step / (2 * kFocus);
            EXPECT_LE(f.Distance, least + 1e-8) << rows << " " << r << " " << z;
            EXPECT_GE(f.Distance, least - 0.6 * step * bend - 1e-8) << rows << " " << r << " " << z;
            EXPECT_NEAR(f.Distance, std::hypot(std::hypot(f.X, f.Y) - r, f.Z - z), 1e-8);
        }
    }
}

TEST_F(NearestPoint, IsThatOfTheNearestRowsTwoSegments) {
    // By brute force: the row next to the point, and the nearer foot on the lines through its two segments.
    const Matrix shape = Table(123);
    for (int i = 0; i < 2000; ++i) {
        const double r = 1.1 * kRim * std::fabs(NextNumber()), z = Height(r) + 30 * NextNumber();
        int nearest = 1;
        for (int row = 1; row <= shape.Rows; ++row)
            if (std::hypot(shape(row, 1) - r, shape(row, 2) - z) <
                std::hypot(shape(nearest, 1) - r, shape(nearest, 2) - z))
                nearest = row;
        double least = 1e300;
        for (int row = std::max(1, nearest - 1); row <= std::min(nearest, shape.Rows - 1); ++row) {
            const double dr = shape(row + 1, 1) - shape(row, 1), dz = shape(row + 1, 2) - shape(row, 2);
            const double across = (dr * (z - shape(row, 2)) - dz * (r - shape(row, 1))) / std::hypot(dr, dz);
            least = std::min(least, std::fabs(across));
        }
        EXPECT_NEAR(Nearest(r, 0, z, shape).Distance, least, 1e-8) << r << " " << z;
    }
}

TEST_F(NearestPoint, OfATableThatIsNotSortedIsSomePointAndNoHang) {
    Matrix shape = Table(50);
    for (int row = 1; row <= 50; ++row) std::swap(shape(row, 1), shape(1 + row * 17 % 50, 1));
    for (int i = 0; i < 200; ++i) {
        const Found f = Nearest(2000 * NextNumber(), 2000 * NextNumber(), 500 * NextNumber(), shape);
        EXPECT_TRUE(std::isfinite(f.Distance));
    }
}

TEST_F(NearestPoint, OfOneRowIsThatRow) {
    const Found f = Nearest(3, 4, 9, Rows({{10, 1}}));
    EXPECT_NEAR(f.X, 6, 1e-9);
    EXPECT_NEAR(f.Y, 8, 1e-9);
    EXPECT_EQ(f.Z, 1);
    EXPECT_NEAR(f.Distance, std::sqrt(25 + 64), 1e-12);
}

TEST_F(NearestPoint, OfNumbersThatAreNoneIsNoneAndNoHang) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(std::isnan(Nearest(none, 1, 2, Table(20)).Distance));
    Matrix shape = Table(20);
    for (int row = 5; row <= 20; ++row) shape(row, 1) = none;
    Nearest(100, 200, 30, shape);
    Nearest(1e300, 1e300, -1e300, Table(20));
}
