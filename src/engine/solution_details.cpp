// The solution of the job in all forms.
#include "engine/solution_details.h"

#include "core/desktop_defaults.h"
#include "core/job.h"
#include "engine/inverse.h"
#include "engine/transform.h"

namespace corvinade::engine {

namespace {

void SetSpread(SolutionDetails& details) {
    details.HasSpread = IsTrue(MonteCarlo.MonteCarloDone);
    if (!details.HasSpread) return;
    details.SpreadIsNothing = DesktopDefaults.ResultFields && MonteCarlo.WithoutNoise;
    for (int k = 1; k <= kMonteCarloArrays; ++k)
        details.Spread[static_cast<std::size_t>(k)] = SigmaOfArray(MonteCarloArray(k));
}

}  // namespace

SolutionDetails DetailsOfSolution() {
    SolutionDetails details;
    RotMatrixXYZ(Job.RotX, Job.RotY, Job.RotZ, details.Rotation);
    BuildShearMatrix(Job.AngleXY, Job.Azimuth, Job.AngleZtoXY, details.Affine);
    details.Scale(1, 1) = Job.ScaleX;
    details.Scale(2, 2) = Job.ScaleY;
    details.Scale(3, 3) = Job.ScaleZ;
    details.Shift = Vec3(Job.TraX, Job.TraY, Job.TraZ);
    bool fromMatrix = false;
    for (const RotationOrder order : kRotationOrders)
        if (SoundSolutions(order, details.Rotation, details.Solutions[static_cast<std::size_t>(order)]))
            fromMatrix = true;
    const QuaternionForms forms = SoundQuaternionForms(details.Rotation, Vec3(Job.RotX, Job.RotY, Job.RotZ));
    details.Quaternion = forms.Quaternion;
    details.Angle = forms.Angle;
    details.Axis = forms.Axis;
    details.QuaternionAngles = forms.Angles;
    if (fromMatrix || forms.FromMatrix) NoteMatrixAngles();
    InverseTransformation();
    details.InverseShift = Vec3(Inverse.InvTraX, Inverse.InvTraY, Inverse.InvTraZ);
    details.Inverses = Inverse.InvSolutions;
    SetSpread(details);
    return details;
}

}  // namespace corvinade::engine
