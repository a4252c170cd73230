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

// Not 0: there the derivative with respect to the azimuth vanishes, which acts only through the other.
constexpr double kTenthDegree = 0.1 / 180 * kPi;

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// Held angles stand beside raw ones, and a rotation has two triples of angles: the one nearer to the
// last of the held angles is taken. The user's own start values come behind that, for a held angle put
// into the other triple would make up a rotation of its own.
void ChooseTriple(const StartChoice& choice) {
    if (choice.Floats[kRotX] && choice.Floats[kRotY] && choice.Floats[kRotZ]) return;
    Mat3 R;
    Vec3 first, second;
    RotMatrixXYZ(Job.RotX, Job.RotY, Job.RotZ, R);
    EulerFromMatrixXYZ(R, first, second);
    double toFirst = 0, toSecond = 0;
    for (int k = 1; k <= 3; ++k) {
        const int parameter = kRotX + k - 1;
        if (choice.Floats[At(parameter)]) continue;
        toFirst = std::fabs(choice.Value[At(parameter)] - first(k));
        toSecond = std::fabs(choice.Value[At(parameter)] - second(k));
    }
    const Vec3& nearer = toFirst >= toSecond ? second : first;
    for (int k = 1; k <= 3; ++k) ParameterValue(Job, kRotX + k - 1) = nearer(k);
}

void TakeTranslationAndRotation(const StartChoice& choice) {
    for (int parameter = kTraX; parameter <= kRotZ; ++parameter)
        if (!choice.Floats[At(parameter)]) ParameterValue(Job, parameter) = choice.Value[At(parameter)];
}

void TakeScale(const StartChoice& choice) {
    if (choice.Floats[kScaleXYZ]) {
        Job.ScaleXYZ = Job.ScaleY = Job.ScaleZ = Job.ScaleX;
    } else if (choice.Held[kScaleXYZ]) {
        Job.ScaleXYZ = Job.ScaleX = Job.ScaleY = Job.ScaleZ = choice.Value[kScaleXYZ];
    } else {
        Job.ScaleXYZ = 1;
        for (int parameter = kScaleX; parameter <= kScaleZ; ++parameter)
            if (!choice.Seeded[At(parameter)])
                ParameterValue(Job, parameter) = choice.Held[At(parameter)] ? choice.Value[At(parameter)] : 1;
    }
}

void TakeFrameAngles(const StartChoice& choice) {
    for (const int parameter : {kAngleXY, kAzimuth, kAngleZtoXY}) {
        double& value = ParameterValue(Job, parameter);
        if (choice.Held[At(parameter)]) {
            value = choice.Value[At(parameter)];
        } else if (!choice.Seeded[At(parameter)]) {
            value = parameter != kAngleXY && choice.Floats[At(parameter)] ? kTenthDegree : 0;
        }
    }
}

}  // namespace

StartChoice ReadStartChoice(const std::array<std::string, 18>& ParamText) {
    StartChoice choice;
    for (int parameter = kTraX; parameter < kParameterEnd; ++parameter) {
        const std::string& text = ParamText[At(parameter)];
        choice.Floats[At(parameter)] = text == kFloat;
        choice.Held[At(parameter)] = IsHeldValue(text);
        choice.Seeded[At(parameter)] = Selection.DialogOpen && Selection.Seed[At(parameter)];
        if (choice.Held[At(parameter)]) choice.Value[At(parameter)] = ParameterFromText(parameter, text);
    }
    if (Selection.DialogOpen && !IsTrue(Job.IsParaboloid)) choice.Own = ReadOwnStarts();
    return choice;
}

void TakeStartValues(const std::array<std::string, 18>& ParamText) {
    TakeStartValues(ReadStartChoice(ParamText), TakeSeedPoints());
}

void TakeStartValues(const StartChoice& choice, const SeedPoints& seeds) {
    Job.Rvec_x = Job.Rvec_y = Job.Rvec_z = 0;
    // The fit is linear in the distance, so it may begin anywhere: at 0, whatever the last run found.
    Job.RDist = choice.Value[kRDist];

    Job.AngleXY = Job.Azimuth = Job.AngleZtoXY = 0;
    RawSolution(seeds);
    ChooseTriple(choice);
    GetSeed(choice.Own);

    TakeTranslationAndRotation(choice);
    TakeScale(choice);
    TakeFrameAngles(choice);
    if (choice.Held[kRvecX]) {
        Job.Rvec_x = choice.Value[kRvecX];
        Job.Rvec_y = choice.Value[kRvecY];
        Job.Rvec_z = choice.Value[kRvecZ];
    }
}
