// The transformation of the job.
#include "engine/transform.h"

#include "core/job.h"

namespace corvinade::engine {

ChainSource SourceOfJobChain() {
    return {.Rotation = {Job.RotXCopy, Job.RotYCopy, Job.RotZCopy},
            .Scale = {Job.ScaleX, Job.ScaleY, Job.ScaleZ},
            .Shear = {Job.AngleXY, Job.Azimuth, Job.AngleZtoXY}};
}

void BuildRotationMatrix() {
    TurnChain(SourceOfJobChain(), Chain);
}

void BuildShearMatrix() {
    ShearChain(SourceOfJobChain(), Chain);
}

void BuildScaleMatrix() {
    ScaleChain(SourceOfJobChain(), Chain);
}

void BuildChain() {
    BuildChain(SourceOfJobChain(), Chain);
}

void TransformPoint(double x, double y, double z, double& X, double& Y, double& Z) {
    BuildChain();
    const Mat3& M = Chain.Product;
    const Vec3 turned(M(1, 1) * x + M(1, 2) * y + M(1, 3) * z, M(2, 1) * x + M(2, 2) * y + M(2, 3) * z,
                      M(3, 1) * x + M(3, 2) * y + M(3, 3) * z);
    X = Job.TraX + turned(1);
    Y = Job.TraY + turned(2);
    Z = Job.TraZ + turned(3);
}

Mat3 RotationDerivative(RotationAngle angle) {
    return RotationDerivative(angle, Circle(Job.RotXCopy), Circle(Job.RotYCopy), Circle(Job.RotZCopy));
}

Mat3 ShearDerivative(ShearAngle angle) {
    return ShearDerivative(angle, SourceOfJobChain().Shear);
}

}  // namespace corvinade::engine
