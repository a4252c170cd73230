// The neater of the two triples of angles that describe the rotation of a result.
#include "fit/nice_rotation.h"

#include <array>
#include <cmath>
#include <numbers>
#include <optional>

#include "fit/chain.h"
#include "fit/matrix.h"
#include "fit/rotations.h"

namespace corvinade::fit {

namespace {

// Of one angle, or the sum over the elements of the matrix. The ten digits of the library's pi leave about
// 1e-9; anything above that is another rotation.
constexpr double kSameRotation = 1e-8;

double SumOfAngles(const Vec3& angles) {
    return std::fabs(angles(1)) + std::fabs(angles(2)) + std::fabs(angles(3));
}

// A triple near `wanted` up to whole turns, moved to where that stands.
bool MoveTo(const Vec3& wanted, Vec3& angles) {
    constexpr double kTurn = 2 * std::numbers::pi;
    for (int k = 1; k <= 3; ++k) {
        angles(k) += kTurn * std::round((wanted(k) - angles(k)) / kTurn);
        if (!(std::fabs(angles(k) - wanted(k)) < kSameRotation)) return false;
    }
    return true;
}

// The two triples of a rotation follow from each other by half turns. So the decomposition, whose circle
// is short by 2e-10 rad, has to tell only which one it is, and no digits are lost. Near gimbal lock it shares
// the turn otherwise between Rot x and Rot z, and is off by 1e-9 rad and more: in a hall that is as much as
// many a deviation. Its triple is then taken only where it is the rotation to the last digits.
Vec3 WithAllDigits(const Vec3& angles, const Vec3& wanted, const Mat3& R) {
    constexpr double kHalfTurn = std::numbers::pi;
    constexpr double kLastDigits = 1e-14;
    Vec3 present = angles;
    if (MoveTo(wanted, present)) return present;
    Vec3 other(angles(1) + kHalfTurn, kHalfTurn - angles(2), angles(3) + kHalfTurn);
    if (MoveTo(wanted, other)) return other;
    Mat3 rebuilt;
    RotMatrixXYZ(wanted(1), wanted(2), wanted(3), rebuilt);
    double difference = 0;
    bool equal = false;
    MatrixCompare(rebuilt, R, kLastDigits, difference, equal);
    if (difference < kLastDigits) return wanted;
    for (Vec3* triple : {&present, &other})
        for (int k = 1; k <= 3; ++k)
            (*triple)(k) -= 2 * kHalfTurn * std::round((*triple)(k) / (2 * kHalfTurn));
    return SumOfAngles(present) <= SumOfAngles(other) ? present : other;
}

// The neater triple where it can be told without the decomposition: with no angle at half a turn, where it
// may have either sign, the two sums apart, and the outer angles apart from gimbal lock. The decomposition
// would give the same two triples there.
std::optional<Vec3> EvidentTriple(const Vec3& angles) {
    constexpr double kHalfTurn = std::numbers::pi, kTurn = 2 * kHalfTurn;
    constexpr double kApart = 1e-6, kFromLock = 1e-3, kMost = 10;
    std::array<Vec3, 2> triples = {angles,
                                   Vec3(angles(1) + kHalfTurn, kHalfTurn - angles(2), angles(3) + kHalfTurn)};
    for (Vec3& triple : triples)
        for (int k = 1; k <= 3; ++k) {
            if (!(std::fabs(triple(k)) < kMost)) return {};
            triple(k) += kTurn * std::nearbyint(-triple(k) / kTurn);
            if (!(std::fabs(triple(k)) < kHalfTurn - kApart)) return {};
        }
    if (std::fabs(std::fabs(triples[0](2)) - kHalfTurn / 2) < kFromLock) return {};
    const double difference = SumOfAngles(triples[0]) - SumOfAngles(triples[1]);
    if (std::fabs(difference) < kApart) return {};
    return triples[difference < 0 ? 0 : 1];
}

}  // namespace

std::optional<Vec3> NicerRotation(const Vec3& angles) {
    if (const std::optional<Vec3> evident = EvidentTriple(angles)) return evident;
    Mat3 R;
    RotMatrixXYZ(angles(1), angles(2), angles(3), R);
    Vec3 first, second;
    EulerFromMatrixXYZ(R, first, second);
    const Vec3 nicer = WithAllDigits(angles, SumOfAngles(first) < SumOfAngles(second) ? first : second, R);

    Mat3 rebuilt;
    RotMatrixXYZ(nicer(1), nicer(2), nicer(3), rebuilt);
    double difference = 0;
    bool equal = false;
    MatrixCompare(rebuilt, R, kSameRotation, difference, equal);
    if (!(difference < kSameRotation)) return {};
    return nicer;
}

}  // namespace corvinade::fit
