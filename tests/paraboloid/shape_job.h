// A shape whose points are known in closed form, z = r^2 / (4 f), and a job of points that were taken off it.
#pragma once

#include <array>
#include <cmath>
#include <vector>

#include "cli/headless.h"
#include "core/controller.h"
#include "core/job.h"
#include "core/units.h"
#include "core/window.h"
#include "engine/calculation.h"
#include "engine/fit_job.h"
#include "engine/selection.h"
#include "fit/shape.h"
#include "paraboloid/paraboloid.h"
#include "support/fixture.h"

using namespace corvinade;

// Where a point of the start system is in the target system: tilted about the x and the y axis, turned about
// the z axis, shifted.
struct Displacement {
    double Tx = 0, Ty = 0, Tz = 0;  // mm
    double A = 0, B = 0, C = 0;     // rad
};

class ShapeJob : public Program {
protected:
    static constexpr double kFocus = 1000, kRim = 1500;  // mm

    ShapeJob() {
        ShowWindow("FormMain");
        Initialisieren();
        BeginFit();
        FloatParameters(kRigid);
        RhoFestlegung();
        Job.NormType = 2;
        ::Run.JobDataValid = kTrue;
        TakeShape(1501);
    }

    static double Height(double r) { return r * r / (4 * kFocus); }

    // A table of the paraboloid with so many rows from the axis to the rim.
    static Matrix Table(int rows) {
        Matrix shape(rows, 2);
        for (int row = 1; row <= rows; ++row) {
            shape(row, 1) = kRim * (row - 1) / (rows - 1);
            shape(row, 2) = Height(shape(row, 1));
        }
        return shape;
    }
    static void TakeShape(int rows) {
        Job.IsParaboloid = kTrue;
        Job.ParaboloidShape = Table(rows);
    }

    // The point of the start system that the displacement carries to p: R^T (p - t), R = Rz(-c) Ry(-b)
    // Rx(-a).
    static std::array<double, 3> Before(const Displacement& d, const std::array<double, 3>& p) {
        double x = p[0] - d.Tx, y = p[1] - d.Ty, z = p[2] - d.Tz;
        const auto turn = [](double angle, double& u, double& v) {
            const double u0 = u;
            u = std::cos(angle) * u0 - std::sin(angle) * v;
            v = std::sin(angle) * u0 + std::cos(angle) * v;
        };
        turn(d.C, x, y);
        turn(d.B, z, x);
        turn(d.A, y, z);
        return {x, y, z};
    }

    // Points of the paraboloid, seen from the displaced start system; their targets are not known.
    static void AddPoints(int points, const Displacement& d, double noise = 0) {
        for (int i = 0; i < points; ++i) {
            const double r = kRim * std::sqrt(0.5 + 0.48 * NextNumber()), phi = kPi * NextNumber();
            auto p = Before(d, {r * std::cos(phi), r * std::sin(phi), Height(r)});
            for (double& coordinate : p) coordinate += noise * NextNumber();
            AddPair({p[0], p[1], p[2]}, {p[0], p[1], p[2]});
        }
        const std::size_t size = static_cast<std::size_t>(Job.Pairs()) + 1;
        Job.RVecX.resize(size);
        Job.RVecY.resize(size);
        Job.RVecZ.resize(size);
        Job.Transformed = Job.Start;
        ParaboloidNearestTargets();
    }

    static void Calculate() {
        SelectionFromJob();
        ChooseSeeds();
        CalculateParaboloid();
    }
    static void ChooseSeeds() { Job.SeedIndex = {0, 1, 2, 3}; }
};
