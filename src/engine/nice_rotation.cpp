// The neater of the two triples of angles that describe the rotation of a result.
#include "engine/nice_rotation.h"

#include <cmath>

#include "core/job.h"
#include "engine/matrix.h"
#include "engine/rotations.h"
#include "engine/transform.h"

namespace {

// Sum over the elements. The ten digits of the library's pi leave about 1e-9; anything above that is
// another rotation.
constexpr double kSameRotation = 1e-8;

double SumOfAngles(const Vec3& angles) {
    return std::fabs(angles(1)) + std::fabs(angles(2)) + std::fabs(angles(3));
}

}  // namespace

void NiceRotSol() {
    Mat3 R;
    RotMatrixXYZ(Job.RotX, Job.RotY, Job.RotZ, R);
    Vec3 first, second;
    EulerFromMatrixXYZ(R, first, second);
    const Vec3& nicer = SumOfAngles(first) < SumOfAngles(second) ? first : second;

    Mat3 rebuilt;
    RotMatrixXYZ(nicer(1), nicer(2), nicer(3), rebuilt);
    double difference = 0;
    bool equal = false;
    MatrixCompare(rebuilt, R, kSameRotation, difference, equal);
    if (!(difference < kSameRotation)) return;
    Job.RotX = Job.RotXCopy = nicer(1);
    Job.RotY = Job.RotYCopy = nicer(2);
    Job.RotZ = Job.RotZCopy = nicer(3);
}
