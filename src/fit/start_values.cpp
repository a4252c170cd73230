// Where the iteration of the adjustment begins.
#include "fit/start_values.h"

#include <cmath>

#include "fit/angles.h"
#include "fit/chain.h"
#include "fit/rotations.h"

namespace corvinade::fit {

namespace {

// Not 0: there the derivative with respect to the azimuth vanishes, which acts only through the other.
constexpr double kTenthDegree = 0.1 / 180 * kPi;

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// Held angles stand beside raw ones, and a rotation has two triples of angles: the one nearer to the
// last of the held angles is taken. The user's own start values come behind that, for a held angle put
// into the other triple would make up a rotation of its own.
void ChooseTriple(const StartChoice& choice, Parameters& parameters) {
    if (choice.Floats[kRotX] && choice.Floats[kRotY] && choice.Floats[kRotZ]) return;
    Mat3 R;
    Vec3 first, second;
    RotMatrixXYZ(parameters[kRotX], parameters[kRotY], parameters[kRotZ], R);
    EulerFromMatrixXYZ(R, first, second);
    double toFirst = 0, toSecond = 0;
    for (int k = 1; k <= 3; ++k) {
        const int parameter = kRotX + k - 1;
        if (choice.Floats[At(parameter)]) continue;
        toFirst = std::fabs(choice.Value[At(parameter)] - first(k));
        toSecond = std::fabs(choice.Value[At(parameter)] - second(k));
    }
    const Vec3& nearer = toFirst >= toSecond ? second : first;
    for (int k = 1; k <= 3; ++k) parameters[kRotX + k - 1] = nearer(k);
}

void TakeTranslationAndRotation(const StartChoice& choice, Parameters& parameters) {
    for (int parameter = kTraX; parameter <= kRotZ; ++parameter)
        if (!choice.Floats[At(parameter)]) parameters[parameter] = choice.Value[At(parameter)];
}

void SetScales(double scale, Parameters& parameters) {
    for (int parameter = kScaleX; parameter <= kScaleXYZ; ++parameter) parameters[parameter] = scale;
}

void TakeScale(const StartChoice& choice, Parameters& parameters) {
    if (choice.Floats[kScaleXYZ]) {
        SetScales(parameters[kScaleX], parameters);
    } else if (choice.Held[kScaleXYZ]) {
        SetScales(choice.Value[kScaleXYZ], parameters);
    } else {
        parameters[kScaleXYZ] = 1;
        for (int parameter = kScaleX; parameter <= kScaleZ; ++parameter)
            if (!choice.Seeded[At(parameter)])
                parameters[parameter] = choice.Held[At(parameter)] ? choice.Value[At(parameter)] : 1;
    }
}

void TakeFrameAngles(const StartChoice& choice, Parameters& parameters) {
    for (const int parameter : {kAngleXY, kAzimuth, kAngleZtoXY}) {
        double& value = parameters[parameter];
        if (choice.Held[At(parameter)]) {
            value = choice.Value[At(parameter)];
        } else if (!choice.Seeded[At(parameter)]) {
            value = parameter != kAngleXY && choice.Floats[At(parameter)] ? kTenthDegree : 0;
        }
    }
}

}  // namespace

void TakeOwnStarts(const OwnStarts& starts, Parameters& parameters) {
    for (int parameter = kTraX; parameter <= kAngleZtoXY; ++parameter) {
        const std::optional<double>& value = starts[At(parameter)];
        if (!value) continue;
        parameters[parameter] = *value;
        // The common scale acts only through the three others.
        if (parameter == kScaleXYZ) SetScales(*value, parameters);
    }
}

Parameters StartValues(const StartChoice& choice, const SeedPoints& seeds) {
    Parameters parameters;
    RawSolution(seeds, parameters);
    ChooseTriple(choice, parameters);
    TakeOwnStarts(choice.Own, parameters);

    TakeTranslationAndRotation(choice, parameters);
    TakeScale(choice, parameters);
    TakeFrameAngles(choice, parameters);
    // The fit is linear in the distance, so it may begin anywhere: at 0, whatever the last run found.
    parameters[kRDist] = choice.Value[kRDist];
    if (choice.Held[kRvecX])
        for (const int parameter : {kRvecX, kRvecY, kRvecZ})
            parameters[parameter] = choice.Value[At(parameter)];
    return parameters;
}

}  // namespace corvinade::fit
