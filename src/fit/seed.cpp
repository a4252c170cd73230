// Start values of the adjustment: a closed solution from three seed points.
#include "fit/seed.h"

#include <cmath>

#include "fit/chain.h"
#include "fit/matrix.h"
#include "fit/rotations.h"
#include "fit/vector.h"

namespace corvinade::fit {

namespace {

// Keeps divisions alive where seed points coincide, and the least determinant of the scales.
constexpr double kTiny = 1e-11;

Vec3 Difference(const Vec3& a, const Vec3& b) {
    Vec3 c;
    VecSub(a, b, c);
    return c;
}

double Dot(const Vec3& a, const Vec3& b) {
    double value = 0;
    VecDot(a, b, value);
    return value;
}

Vec3 Direction(const Vec3& a) {
    double length = 0;
    VecLength(a, length);
    Vec3 unit;
    VecScale(a, 1 / (length + kTiny), unit);
    return unit;
}

Vec3 Cross(const Vec3& a, const Vec3& b) {
    Vec3 c;
    VecCross(a, b, c);
    return c;
}

Vec3 Turned(const Mat3& M, const Vec3& p) {
    return {M(1, 1) * p(1) + M(1, 2) * p(2) + M(1, 3) * p(3),
            M(2, 1) * p(1) + M(2, 2) * p(2) + M(2, 3) * p(3),
            M(3, 1) * p(1) + M(3, 2) * p(2) + M(3, 3) * p(3)};
}

Vec3 Scaled(const Vec3& p, const Vec3& scale) {
    return {p(1) * scale(1), p(2) * scale(2), p(3) * scale(3)};
}

double Determinant(const Mat3& M) {  // by Sarrus' rule
    return M(1, 1) * M(2, 2) * M(3, 3) + M(1, 2) * M(2, 3) * M(3, 1) + M(1, 3) * M(2, 1) * M(3, 2) -
           M(3, 1) * M(2, 2) * M(1, 3) - M(3, 2) * M(2, 3) * M(1, 1) - M(3, 3) * M(2, 1) * M(1, 2);
}

// One scale an axis from the three distances between the seed points: the squares of the scales solve
// dx^2 X + dy^2 Y + dz^2 Z = D^2.
Vec3 RawScales(const SeedPoints& seeds) {
    if (seeds.ScalesAreOne) return {1, 1, 1};
    constexpr std::array<std::array<std::size_t, 2>, 3> kPairs = {{{1, 2}, {1, 3}, {2, 3}}};
    Mat3 squares;
    Vec3 distances;
    for (int row = 1; row <= 3; ++row) {
        const auto [i, j] = kPairs[static_cast<std::size_t>(row - 1)];
        const Vec3 start = Difference(seeds.Start[j], seeds.Start[i]);
        const Vec3 target = Difference(seeds.Target[j], seeds.Target[i]);
        for (int axis = 1; axis <= 3; ++axis) squares(row, axis) = start(axis) * start(axis);
        distances(row) = Dot(target, target);
    }
    const double determinant = Determinant(squares);
    Vec3 scales(1, 1, 1);
    if (std::fabs(determinant) < kTiny) return scales;
    for (int axis = 1; axis <= 3; ++axis) {
        Mat3 replaced = squares;
        for (int row = 1; row <= 3; ++row) replaced(row, axis) = distances(row);
        const double square = Determinant(replaced) / determinant;
        if (square > 0) scales(axis) = std::sqrt(square);
    }
    return scales;
}

// A right-angled frame on three points: along the first side, along the normal, and across both.
struct SeedFrame {
    Vec3 Origin;
    std::array<Vec3, 3> Axes;

    explicit SeedFrame(const std::array<Vec3, 4>& p) : Origin(p[1]) {
        const Vec3 a = Direction(Difference(p[2], p[1]));
        const Vec3 c = Direction(Cross(a, Direction(Difference(p[3], p[1]))));
        Axes = {a, c, Direction(Cross(a, c))};
    }
    Vec3 Into(const Vec3& p) const {
        const Vec3 d = Difference(p, Origin);
        return {Dot(d, Axes[0]), Dot(d, Axes[1]), Dot(d, Axes[2])};
    }
    Vec3 OutOf(const Vec3& q) const {
        Vec3 p = Origin;
        for (int k = 1; k <= 3; ++k) {
            Vec3 part;
            VecScale(Axes[static_cast<std::size_t>(k - 1)], q(k), part);
            VecAdd(p, part, p);
        }
        return p;
    }
};

Vec3 UnitDirection(const Vec3& from, const Vec3& to) {
    Vec3 unit;
    VecNormalize(Difference(to, from), unit);
    return unit;
}

}  // namespace

std::array<Vec3, 3> ReferenceInFrame(std::array<Vec3, 4> target) {
    // A small known rotation of the target side, so that no coordinate difference is exactly 0 there.
    // The reference points are turned with it, which takes it out again.
    static const Mat3 small = [] {
        Mat3 R;
        RotMatrixXYZ(0.0011, 0.0022, 0.0033, R);
        return R;
    }();
    for (Vec3& q : target) q = Turned(small, q);
    const SeedFrame frame(target);
    return {frame.Into(Turned(small, {0, 0, 0})), frame.Into(Turned(small, {100, 0, 0})),
            frame.Into(Turned(small, {0, 100, 0}))};
}

void RawSolution(const SeedPoints& seeds, Parameters& parameters) {
    const Vec3 scales = RawScales(seeds);

    // The frames are congruent once the start points carry their scales, so the reference points keep
    // their coordinates from one frame to the other.
    std::array<Vec3, 4> points = seeds.Start;
    for (Vec3& p : points) p = Scaled(p, scales);
    const SeedFrame start(points);
    const Vec3 p4 = start.OutOf(seeds.Reference[0]);
    const Vec3 p5 = start.OutOf(seeds.Reference[1]), p6 = start.OutOf(seeds.Reference[2]);

    const Vec3 e1 = UnitDirection(p4, p5), e2 = UnitDirection(p4, p6);
    Vec3 e3;
    VecNormalize(Cross(e1, e2), e3);
    Mat3 axes;
    for (int row = 1; row <= 3; ++row) {
        axes(row, 1) = e1(row);
        axes(row, 2) = e2(row);
        axes(row, 3) = e3(row);
    }
    Mat3 rotation;
    MatrixInverse(axes, 3, 3, rotation);
    Vec3 first, second;
    EulerFromMatrixXYZ(rotation, first, second);
    for (int axis = 1; axis <= 3; ++axis) {
        parameters[kRotX + axis - 1] = first(axis);
        parameters[kScaleX + axis - 1] = scales(axis);
    }

    // The image of the target's origin must land on the origin.
    RotMatrixXYZ(first(1), first(2), first(3), rotation);
    const Vec3 image = Turned(rotation, p4);
    for (int axis = 1; axis <= 3; ++axis) parameters[kTraX + axis - 1] = -image(axis);
}

}  // namespace corvinade::fit
