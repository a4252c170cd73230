// A second way to the same fits: plain formulas in long double, derivatives by difference quotients, the
// step by an orthogonal decomposition. Nothing of it comes from the program.
#pragma once

#include <array>
#include <vector>

namespace reference {

using Real = long double;
using Point = std::array<Real, 3>;
using Square = std::array<std::array<Real, 3>, 3>;

Square Product(const Square& A, const Square& B);
Square Turn(int axis, Real angle);        // active rotation about axis 0, 1, 2
Square Rotation(Real a, Real b, Real c);  // Rz(-c) Ry(-b) Rx(-a)
Point Image(const std::array<Real, 18>& parameters, const Point& p);

enum class Model { Coincide, Distance, Tool };

struct Problem {
    Model Mode = Model::Coincide;
    std::vector<Point> Start, Target;
    std::vector<Point> Pose;            // A, B, C of the target poses
    std::vector<Point> Weight;          // empty: all 1; the distance model takes the third
    std::array<Real, 18> Parameters{};  // by number 1 to 17: start values in, result out
    std::vector<int> Free;              // numbers of the parameters that float
    int MostPasses = 200;
};

struct Solution {
    std::vector<Real> v;               // model less observation, three an equation point, or one
    std::vector<std::vector<Real>> Q;  // inverse of the normal matrix, order of Free
    bool Converged = false;
};

Solution Solve(Problem& problem);

// Residuals alone.
std::vector<Real> Residuals(const Problem& problem);

}  // namespace reference
