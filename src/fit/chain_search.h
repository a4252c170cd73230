// The best values of any choice of floating parameters of the plain model, searched from several starts on
// the sums of a point set, so that a search costs the same for ten points and for a million.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "fit/moments.h"

namespace corvinade::fit {

// The thirteen parameters of the chain apart from the job, by their number; mm, rad, factors.
struct ChainValues {
    std::array<double, kAngleZtoXY + 1> Value{};
    Mat3 R;  // that of the three rotations, where these are not asked

    ChainValues();  // the values that do nothing
};

Mat3 MatrixOf(const ChainValues& values);  // R K S

// The angles of a rotation by the engine's own form, with all digits also where Rot y is at a right angle:
// Rot x is what then is left once Rot z has been taken.
Vec3 AnglesOf(const Mat3& R);

// Which parameters float. With one scale (kScaleXYZ floats, or is held) the three others follow it.
struct ChainChoice {
    std::array<bool, kAngleZtoXY + 1> Floats{};
    ChainValues Held;                // values of those that do not
    Vec3 StartCentre, TargetCentre;  // of the moments' points, mm

    bool RotatesFreely() const { return Floats[kRotX] && Floats[kRotY] && Floats[kRotZ]; }
};

// Derivatives of M by the floating inner parameters, and which parameter each is of. Where all three
// rotations float these are turns about the target's axes, which reach every rotation at gimbal lock too.
struct ChainDerivatives {
    std::vector<Mat3> Inner;
    std::vector<int> Parameter;

    ChainDerivatives(const ChainChoice& choice, const ChainValues& at);

private:
    void Add(int parameter, const Mat3& D);
    void AddFrame(const ChainChoice& choice, const ChainValues& at, const Mat3& S);
};

// Goes by corrections x of these, one each; translations stay.
ChainValues MovedInner(const ChainChoice& choice, const ChainValues& at, const ChainDerivatives& by,
                       const double* x);

struct ChainResult {
    ChainValues Values;
    double Gain = 0;  // sum of squares at the moments' reference less that here, mm^2
    bool Proper = true;
};

// Damped Gauss-Newton steps (Levenberg, Marquardt) until the gain grows no more. Nothing where it becomes no
// number.
std::optional<ChainResult> Climb(const PointMoments& moments, const ChainChoice& choice,
                                 const ChainValues& start);

// The best proper and the best mirrored result of all starts, either empty where none was found.
struct ChainSearch {
    std::optional<ChainResult> Proper, Mirrored;
    int Starts = 0;
};
ChainSearch SearchChain(const PointMoments& moments, const ChainChoice& choice,
                        const std::vector<ChainValues>& starts);

// Starts for it: the rotations of a cube about the nearest rotation to the points, or quarter turns of the
// angles that float; scales as large as the spreads of the two sets say.
std::vector<ChainValues> StartsOf(const PointMoments& moments, const ChainChoice& choice);

// The 24 rotations of a cube.
const std::vector<Mat3>& CubeRotations();

}  // namespace corvinade::fit
