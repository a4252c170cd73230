// What a result leaves open, found anew: difference quotients in long double of the plain formulas, and
// singular values of their own. Nothing of it comes from the program.
#pragma once

#include <vector>

#include "engine/fit_reference.h"

namespace truth {

using reference::Real;

// Singular values of a matrix given by its columns, by rotations of pairs of columns.
std::vector<Real> SingularValues(std::vector<std::vector<Real>> columns);

struct Openness {
    int Ways = 0;           // unknowns less the rank of the design matrix
    bool Doubtful = false;  // a singular value is neither surely 0 nor surely not
    // Root mean squares about the middle: of the start points, and along their least direction; of their
    // images likewise; and of the residuals. mm
    Real Start = 0, LeastStart = 0, Image = 0, LeastImage = 0, Residual = 0;
};

// At the problem's parameters, of which `Free` float. Its translations all float.
Openness FindOpenness(const reference::Problem& problem);

}  // namespace truth
