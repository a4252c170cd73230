// Start values of the adjustment: a closed solution from three seed points, and the user's own.
#include "engine/seed.h"

#include <array>
#include <cmath>

#include "core/job.h"
#include "core/numbers.h"
#include "core/require.h"
#include "core/settings.h"
#include "core/units.h"
#include "engine/field_number.h"
#include "engine/matrix.h"
#include "engine/parameter_kind.h"
#include "engine/rotations.h"
#include "engine/selection.h"
#include "engine/transform.h"
#include "engine/vector.h"

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

// The pair that stands as seed k. Where no seed has been chosen, or the pairs have become fewer since,
// pair k itself; 0 where there is none.
int SeedPair(int k) {
    if (k > Job.nIdent) return 0;
    const int chosen = Job.SeedIndex[static_cast<std::size_t>(k)];
    return chosen >= 1 && chosen <= Job.nIdent ? chosen : k;
}

// The raw scales are wanted only where all nine coordinates of the seed points take part.
bool ScalesAreOne() {
    if (Settings.RawScale == 1) return true;
    if (Settings.RawScale != 2 || Job.nIdent < 3) return false;
    for (int k = 1; k <= 3; ++k)
        for (int axis = 1; axis <= 3; ++axis) {
            if (!CoordinateInUse(static_cast<std::size_t>(3 * (SeedPair(k) - 1) + axis))) return true;
        }
    return false;
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

// What the user has chosen as start of a parameter, in text; nothing where the raw value stays.
const std::string* ChosenStart(int parameter) {
    const auto k = static_cast<std::size_t>(parameter);
    if (Selection.Float[k]) return Selection.Seed[k] ? &Selection.SeedText[k] : nullptr;
    return Selection.FieldText[k] != kNotUsed ? &Selection.FieldText[k] : nullptr;
}

void SetSeed(std::size_t k, int pair) {
    Job.SeedIndex[k] = ToInt16(pair, "Number of the seed point");
    Job.SeedName[k] = Job.MCS_Name[static_cast<std::size_t>(pair)];
}

// The target's origin and a point on its X and on its Y axis, as the frame on its seed points has them.
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

void RawSolution(const SeedPoints& seeds, double& tx, double& ty, double& tz, double& rx, double& ry,
                 double& rz, double& sx, double& sy, double& sz) {
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
    rx = first(1);
    ry = first(2);
    rz = first(3);
    sx = scales(1);
    sy = scales(2);
    sz = scales(3);

    // The image of the target's origin must land on the origin.
    RotMatrixXYZ(rx, ry, rz, rotation);
    const Vec3 image = Turned(rotation, p4);
    tx = -image(1);
    ty = -image(2);
    tz = -image(3);
}

}  // namespace

SeedPoints TakeSeedPoints() {
    SeedPoints seeds;
    for (int k = 1; k <= 3; ++k)
        if (const int pair = SeedPair(k); pair > 0) {
            const auto place = static_cast<std::size_t>(k);
            seeds.Pair[place] = pair;
            seeds.Start[place] = StartPoint(pair);
            seeds.Target[place] = TargetPoint(pair);
        }
    seeds.Reference = ReferenceInFrame(seeds.Target);
    seeds.ScalesAreOne = ScalesAreOne();
    return seeds;
}

void RawSolution(double& tx, double& ty, double& tz, double& rx, double& ry, double& rz, double& sx,
                 double& sy, double& sz) {
    RawSolution(TakeSeedPoints(), tx, ty, tz, rx, ry, rz, sx, sy, sz);
}

void RawSolution(const SeedPoints& seeds) {
    RawSolution(seeds, Job.TraX, Job.TraY, Job.TraZ, Job.RotX, Job.RotY, Job.RotZ, Job.ScaleX, Job.ScaleY,
                Job.ScaleZ);
}

OwnStarts ReadOwnStarts() {
    OwnStarts starts;
    for (int parameter = kTraX; parameter <= kAngleZtoXY; ++parameter) {
        const std::string* text = ChosenStart(parameter);
        if (text == nullptr || *text == kFloat) continue;
        starts[static_cast<std::size_t>(parameter)] = ParameterFromText(parameter, *text);
    }
    return starts;
}

void GetSeed() {
    GetSeed(ReadOwnStarts());
}

void GetSeed(const OwnStarts& starts) {
    for (int parameter = kTraX; parameter <= kAngleZtoXY; ++parameter) {
        const std::optional<double>& value = starts[static_cast<std::size_t>(parameter)];
        if (!value) continue;
        ParameterValue(Job, parameter) = *value;
        // The common scale acts only through the three others.
        if (parameter == kScaleXYZ) Job.ScaleX = Job.ScaleY = Job.ScaleZ = *value;
    }
}

bool ItsASeed(const std::string& name) {
    return name == Job.SeedName[1] || name == Job.SeedName[2] || name == Job.SeedName[3];
}

void ChooseDefaultSeeds() {
    if (!Job.SeedName[1].empty()) return;
    for (int k = 1; k <= 3 && k <= Job.nIdent; ++k) SetSeed(static_cast<std::size_t>(k), k);
}

void TakeAsNewestSeed(int pair) {
    Require(pair >= 1 && pair <= Job.nIdent);
    if (ItsASeed(Job.MCS_Name[static_cast<std::size_t>(pair)])) return;
    const auto names = Job.SeedName;
    const auto indices = Job.SeedIndex;
    SetSeed(1, pair);
    for (std::size_t k = 2; k <= 3; ++k) {
        Job.SeedIndex[k] = indices[k - 1];
        Job.SeedName[k] = names[k - 1];
    }
}

void SeedsFromResult() {
    for (int parameter = kTraX; parameter <= kRDist; ++parameter) {
        const auto k = static_cast<std::size_t>(parameter);
        if (IsHeldValue(Selection.FieldText[k]))
            Selection.SeedText[k] = ShownAs(KindOf(parameter), ParameterValue(Job, parameter));
    }
}
