// What a shape holds of the parameters of a fit to it. Along a surface points slide freely: a shape of
// revolution does not hold the rotation about its axis, a plane no shift in it, a ball no rotation at all.
#pragma once

#include <vector>

#include "fit/design.h"
#include "fit/shape_run.h"

namespace corvinade::fit {

// Coordinates of the floating parameters, each as the millimetres that it moves a point at the cloud's edge
// by.
using ParameterPlace = std::vector<double>;

// The floating parameters of a fit and their coordinates.
struct FloatingParameters {
    std::vector<int> Numbers;
    double Size = 1;  // of the cloud, mm

    explicit FloatingParameters(const ShapeRun& run);
    double Factor(int parameter) const { return parameter <= kTraZ ? 1 : Size; }
    ParameterPlace Take(const Parameters& from) const;
    void Put(const ParameterPlace& place, Parameters& into) const;
    // The way from one place to another; angles the short way round.
    ParameterPlace Moved(const ParameterPlace& from, const ParameterPlace& to) const;
};

// The ways of a point's image with each of them, mm by mm.
//   p  the point of the start system, mm
std::vector<Vec3> WaysOfPoint(const FitModel& model, const Linearisation& at,
                              const FloatingParameters& floating, const Vec3& p);

// Does any coordinate of gathered point k, from 0 on, take part?
bool PointInUse(const GatheredPoints& points, std::size_t k);

// Directions of the floating parameters, orthonormal.
struct HeldDirections {
    std::vector<ParameterPlace> Held;
    std::vector<double>
        Weight;  // of each: how fast the sum of squared distances rises along it, mm^2 per mm^2
    std::vector<ParameterPlace> Open;
    // What rounding of the coordinates leaves open of the sum of squared distances, mm^2.
    double Rounding = 0;
    double SumOfSquares = 0;  // of the distances, mm^2
    int Points = 0;           // that take part
};

// At the present parameters, with the points as they are gathered: the normal
// matrix of the distances along the surface's normal, and its eigenvectors (by Jacobi's rotations). A
// direction is open where it moves the points along the surface but for what the table leaves open of its
// normals, and where even a way of the cloud's size would change the sum by no more than the residuals do.
//   without  a parameter that takes no part, 0 for none; its entries of all directions are 0
//   s0       of the last pass, mm
HeldDirections FindHeldDirections(ShapeRun& run, const FloatingParameters& floating, int without);

// The numbers of the parameters that a part of an open direction falls on, rising; empty where the shape
// holds them all.
std::vector<int> OpenOfShape(ShapeRun& run);

// How well the distances from the shape alone know the parameters: a point of a surface tells one number, its
// distance along the normal, wherever it slides. Standard deviations from the normal equations of these
// distances, sqrt(sum of squares / (points - unknowns) * element of the inverse), at the present
// parameters; mm, rad, or 1 for a scale. 0 for a parameter that does not float, NaN for one that the
// shape leaves open. Empty without a point to spare.
std::vector<double> SigmasByDistances(ShapeRun& run);

}  // namespace corvinade::fit
