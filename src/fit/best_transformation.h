// The best transformation that the sums of a point set allow, without an iteration that could end elsewhere:
// in closed form where there is one, from several starts where there is none.
#pragma once

#include <array>
#include <optional>

#include "fit/moments.h"

namespace corvinade::fit {

// What floats besides translation and rotation.
enum class PlainModel { Rigid, Similarity, AxisScales, Affine };

// A transformation of the centred points: x -> Shift + M x, mm.
struct CentredTransformation {
    Mat3 M;
    Vec3 Shift;
    double Gain = 0;  // sum of squares at the reference of the moments less that of this one, mm^2
};

struct BestTransformations {
    std::optional<CentredTransformation> Proper;    // determinant of M above 0
    std::optional<CentredTransformation> Mirrored;  // below 0; only where it is told apart from a proper one
    bool ClosedForm = false;
    bool ProperIsLeast = true;  // false where proper ones come ever nearer to a least sum that none has
    int Starts = 1;             // that were tried
};

// The best of a model over all floating parameters of a preset, each side of the mirror for itself.
//   moments  of the plain model, with weights 0 and 1
// Rigid and Similarity by the singular values of the cross product matrix (Umeyama, IEEE PAMI 13(4), 1991)
// where a pair's three coordinates weigh alike; Affine by the linear normal equations, where the points lie
// in a plane completed to a proper one; AxisScales, and weights of single coordinates, from several starts.
// Where the weights leave nothing to fit both are empty.
BestTransformations BestOfModel(const PointMoments& moments, PlainModel model);

// Sums about the weighted centres: target times start, and start times itself along one axis's weights, mm^2.
Mat3 CrossProducts(const PointMoments& moments);
Mat3 StartProducts(const PointMoments& moments, int axis);

// Whether every pair's three coordinates weigh alike.
bool WeighAlike(const PointMoments& moments);

// M with new images of the directions, columns of V, behind the first `known` ones, along which the points do
// not spread: such as make a proper transformation, as large as the others. Nothing of the sum depends on
// them.
Mat3 CompletedFlat(const Mat3& M, const Mat3& V, int known);

// How a transformation differs from the reference of the moments along an axis: the shift, then the row of M.
using RowChange = std::array<double, 4>;
RowChange ChangeOf(const PointMoments& moments, const Mat3& M, const Vec3& Shift, int axis);

// The gain of a transformation, and the best shift for M.
double GainOf(const PointMoments& moments, const Mat3& M, const Vec3& Shift);
Vec3 BestShift(const PointMoments& moments, const Mat3& M);
// What rounding adds to such a gain, mm^2.
double RoundingOfGain(const PointMoments& moments, const Mat3& M, const Vec3& Shift);

// M taken apart into the parameters of a model; the translation is left at 0. A mirrored M gets a negative
// scale: that of all axes, or where there are three that of z.
struct ChainValues;
ChainValues ValuesOf(const Mat3& M, PlainModel model);

}  // namespace corvinade::fit
