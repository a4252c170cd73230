// The inverse of the job's transformation, as a matrix and as parameters of the model's own form.
#include "engine/inverse.h"

#include "core/job.h"
#include "engine/inverted_solutions.h"
#include "fit/inverse.h"

namespace corvinade::engine {

void InverseTransformation() {
    const InverseMatrix inverse = InverseOf(ParametersOf(Job));
    Inverse.InvMatrix = inverse.Linear;
    Inverse.InvTraX = inverse.Shift(1);
    Inverse.InvTraY = inverse.Shift(2);
    Inverse.InvTraZ = inverse.Shift(3);

    const bool anyShear = Job.AngleXY != 0 || Job.Azimuth != 0 || Job.AngleZtoXY != 0;
    const bool anyScale = Job.ScaleX != 1 || Job.ScaleY != 1 || Job.ScaleZ != 1 || Job.ScaleXYZ != 1;
    InvertedSolutions(inverse.Linear, anyShear, anyScale, Inverse.InvSolutions);
}

}  // namespace corvinade::engine
