// The solution of the job in all forms.
#include "engine/solution_details.h"

#include <cmath>
#include <limits>

#include "core/job.h"
#include "engine/inverse.h"
#include "engine/matrix.h"
#include "engine/quaternion.h"
#include "engine/rotations.h"
#include "engine/transform.h"

namespace {

struct OrderEntry {
    const char* Axes;
    void (*Decompose)(const Mat3& M, Vec3& first, Vec3& second);
    std::array<int, 3> Angles;  // which angle of the decomposition each rotation turns by
};

// Where no axis comes twice, the decompositions give their angles by axis and not by rotation.
const std::array<OrderEntry, 5> kOrders = {{{"XYZ", EulerFromMatrixXYZ, {1, 2, 3}},
                                            {"ZYX", EulerFromMatrixZYX, {3, 2, 1}},
                                            {"ZXY", EulerFromMatrixYXZ, {3, 1, 2}},
                                            {"ZXZ", EulerFromMatrixZXZ, {1, 2, 3}},
                                            {"ZYZ", EulerFromMatrixZYZ, {1, 2, 3}}}};

const OrderEntry& EntryOf(RotationOrder order) {
    return kOrders[static_cast<std::size_t>(order)];
}

// The decompositions pick the candidates that come nearest, and from what is no number none ever does.
RotationSolutions SolutionsOf(const OrderEntry& order, const Mat3& R) {
    RotationSolutions solutions;
    if (!IsFinite(R)) {
        solutions.First.fill(std::numeric_limits<double>::quiet_NaN());
        solutions.Second = solutions.First;
        return solutions;
    }
    Vec3 first, second;
    order.Decompose(R, first, second);
    for (std::size_t k = 0; k < 3; ++k) {
        solutions.First[k] = first(order.Angles[k]);
        solutions.Second[k] = second(order.Angles[k]);
    }
    return solutions;
}

void SetQuaternion(SolutionDetails& details) {
    Column record(9);
    MatrixToQuaternion(details.Rotation, record, details.QuaternionAngles(1), details.QuaternionAngles(2),
                       details.QuaternionAngles(3));
    for (std::size_t k = 0; k < 4; ++k) details.Quaternion[k] = record[k + 1];
    details.Angle = record[5];
    details.Axis = Vec3(record[6], record[7], record[8]);
}

void SetSpread(SolutionDetails& details) {
    details.HasSpread = IsTrue(MonteCarlo.MonteCarloDone);
    if (!details.HasSpread) return;
    for (int k = 1; k <= kMonteCarloArrays; ++k)
        details.Spread[static_cast<std::size_t>(k)] = SigmaOfArray(MonteCarloArray(k));
}

}  // namespace

const char* AxesOf(RotationOrder order) {
    return EntryOf(order).Axes;
}

SolutionDetails DetailsOfSolution() {
    SolutionDetails details;
    RotMatrixXYZ(Job.RotX, Job.RotY, Job.RotZ, details.Rotation);
    BuildShearMatrix(Job.AngleXY, Job.Azimuth, Job.AngleZtoXY, details.Affine);
    details.Scale(1, 1) = Job.ScaleX;
    details.Scale(2, 2) = Job.ScaleY;
    details.Scale(3, 3) = Job.ScaleZ;
    details.Shift = Vec3(Job.TraX, Job.TraY, Job.TraZ);
    for (std::size_t k = 0; k < kOrders.size(); ++k)
        details.Solutions[k] = SolutionsOf(kOrders[k], details.Rotation);
    SetQuaternion(details);
    InverseTransformation();
    details.InverseShift = Vec3(Inverse.InvTraX, Inverse.InvTraY, Inverse.InvTraZ);
    details.Inverses = Inverse.InvSolutions;
    SetSpread(details);
    return details;
}
