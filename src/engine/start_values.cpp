// Where the iteration of the adjustment begins.
#include "engine/start_values.h"

#include <cmath>

#include "core/job.h"
#include "core/units.h"
#include "engine/field_number.h"
#include "engine/rotations.h"
#include "engine/seed.h"
#include "engine/selection.h"
#include "engine/transform.h"

namespace {

using ParameterTexts = std::array<std::string, 18>;

// Not 0: there the derivative with respect to the azimuth vanishes, which acts only through the other.
constexpr double kTenthDegree = 0.1 / 180 * kPi;

const std::string& Text(const ParameterTexts& ParamText, int parameter) {
    return ParamText[static_cast<std::size_t>(parameter)];
}

bool Floats(const ParameterTexts& ParamText, int parameter) {
    return Text(ParamText, parameter) == kFloat;
}

bool Held(const ParameterTexts& ParamText, int parameter) {
    return IsHeldValue(Text(ParamText, parameter));
}

double HeldValue(const ParameterTexts& ParamText, int parameter) {
    return Held(ParamText, parameter) ? ParameterFromText(parameter, Text(ParamText, parameter)) : 0;
}

bool Seeded(int parameter) {
    return Selection.DialogOpen && Selection.Seed[static_cast<std::size_t>(parameter)];
}

void TakeTranslation(const ParameterTexts& ParamText) {
    for (int parameter = kTraX; parameter <= kTraZ; ++parameter)
        if (!Floats(ParamText, parameter)) ParameterValue(Job, parameter) = HeldValue(ParamText, parameter);
}

// Held angles stand beside raw ones, and a rotation has two triples of angles: the one nearer to the
// last of the held angles is taken.
void TakeRotation(const ParameterTexts& ParamText) {
    if (Floats(ParamText, kRotX) && Floats(ParamText, kRotY) && Floats(ParamText, kRotZ)) return;
    Mat3 R;
    Vec3 first, second;
    RotMatrixXYZ(Job.RotX, Job.RotY, Job.RotZ, R);
    EulerFromMatrixXYZ(R, first, second);
    double toFirst = 0, toSecond = 0;
    for (int k = 1; k <= 3; ++k) {
        const int parameter = kRotX + k - 1;
        if (Floats(ParamText, parameter)) continue;
        toFirst = std::fabs(HeldValue(ParamText, parameter) - first(k));
        toSecond = std::fabs(HeldValue(ParamText, parameter) - second(k));
    }
    const Vec3& nearer = toFirst >= toSecond ? second : first;
    for (int k = 1; k <= 3; ++k) {
        const int parameter = kRotX + k - 1;
        ParameterValue(Job, parameter) =
            Floats(ParamText, parameter) ? nearer(k) : HeldValue(ParamText, parameter);
    }
}

void TakeScale(const ParameterTexts& ParamText) {
    if (Floats(ParamText, kScaleXYZ)) {
        Job.ScaleXYZ = Job.ScaleY = Job.ScaleZ = Job.ScaleX;
    } else if (Held(ParamText, kScaleXYZ)) {
        Job.ScaleXYZ = Job.ScaleX = Job.ScaleY = Job.ScaleZ = HeldValue(ParamText, kScaleXYZ);
    } else {
        Job.ScaleXYZ = 1;
        for (int parameter = kScaleX; parameter <= kScaleZ; ++parameter)
            if (!Seeded(parameter))
                ParameterValue(Job, parameter) =
                    Held(ParamText, parameter) ? HeldValue(ParamText, parameter) : 1;
    }
}

void TakeFrameAngles(const ParameterTexts& ParamText) {
    for (const int parameter : {kAngleXY, kAzimuth, kAngleZtoXY}) {
        double& value = ParameterValue(Job, parameter);
        if (Held(ParamText, parameter)) {
            value = HeldValue(ParamText, parameter);
        } else if (!Seeded(parameter)) {
            value = parameter != kAngleXY && Floats(ParamText, parameter) ? kTenthDegree : 0;
        }
    }
}

}  // namespace

void TakeStartValues(const ParameterTexts& ParamText) {
    Job.Rvec_x = Job.Rvec_y = Job.Rvec_z = 0;
    // The fit is linear in the distance, so it may begin anywhere: at 0, whatever the last run found.
    Job.RDist = HeldValue(ParamText, kRDist);

    Job.AngleXY = Job.Azimuth = Job.AngleZtoXY = 0;
    RawSolution(Job.TraX, Job.TraY, Job.TraZ, Job.RotX, Job.RotY, Job.RotZ, Job.ScaleX, Job.ScaleY,
                Job.ScaleZ);
    if (Selection.DialogOpen && !IsTrue(Job.IsParaboloid)) GetSeed();

    TakeTranslation(ParamText);
    TakeRotation(ParamText);
    TakeScale(ParamText);
    TakeFrameAngles(ParamText);
    if (Held(ParamText, kRvecX)) {
        Job.Rvec_x = HeldValue(ParamText, kRvecX);
        Job.Rvec_y = HeldValue(ParamText, kRvecY);
        Job.Rvec_z = HeldValue(ParamText, kRvecZ);
    }
}
