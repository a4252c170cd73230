// What the outputs of a fit say of each identical point.
#include <algorithm>
#include <cmath>

#include "cli/fit_output.h"
#include "core/job.h"
#include "core/job_tolerance.h"
#include "core/numbers.h"
#include "engine/adjustment.h"
#include "engine/calculation.h"
#include "engine/calculation_window.h"
#include "engine/monte_carlo.h"
#include "engine/selection.h"
#include "engine/tolerance_check.h"
#include "engine/transform.h"
#include "fit/matrix.h"
#include "fit/vector.h"

namespace corvinade::cli {

FitPoint FitPointOf(int pair) {
    const bool distance = Adjustment.Model.Mode == FitMode::Distance;
    const auto k = static_cast<std::size_t>(pair);
    FitPoint point;
    point.Pair = pair;
    point.Name = Job.Start.Name[k];
    const Vec3 start = StartPoint(pair);
    const Vec3 target = TargetPoint(pair);
    const Vec3 transformed = TransformedPoint(pair);
    const Vec3 deviation = distance ? DeviationInFit(pair) : Vec3();
    double squares = 0;
    for (int axis = 0; axis < 3; ++axis) {
        point.Start[axis] = start(axis + 1);
        point.Target[axis] = target(axis + 1);
        point.Transformed[axis] = transformed(axis + 1);
        // The residual of the adjustment: the difference of the two coordinates would cost its digits.
        const auto row = 3 * (k - 1) + static_cast<std::size_t>(axis) + 1;
        point.Deviation[axis] = distance ? deviation(axis + 1) : Calculation.v[row];
        point.Used[axis] = Used(pair, axis + 1);
        squares += point.Deviation[axis] * point.Deviation[axis];
    }
    point.Deviation3D = std::sqrt(squares);
    return point;
}

std::vector<FitPoint> FitPoints() {
    std::vector<FitPoint> points;
    points.reserve(static_cast<std::size_t>(Job.Pairs()));
    for (int i = 1; i <= Job.Pairs(); ++i) points.push_back(FitPointOf(i));
    return points;
}

std::string StartSystem() {
    return DirectionSwitched() ? Job.NameOCS : Job.NameMCS;
}

std::string TargetSystem() {
    return DirectionSwitched() ? Job.NameMCS : Job.NameOCS;
}

FitNorms NormsOfDeviations() {
    FitNorms norms;
    for (int i = 1; i <= Job.Pairs(); ++i) {
        const FitPoint point = FitPointOf(i);
        for (int axis = 0; axis < 3; ++axis) {
            if (!point.Used[axis]) continue;
            const double deviation = std::fabs(point.Deviation[axis]);
            norms.Sum += deviation;
            norms.Largest = std::max(norms.Largest, deviation);
        }
    }
    return norms;
}

int ObservationsInUse() {
    // A distance is one observation of the whole point, which takes part as its Z does.
    const std::size_t step = Selection.CheckRDist ? 3 : 1;
    int observations = 0;
    for (std::size_t i = step; i <= 3 * static_cast<std::size_t>(Job.Pairs()); i += step)
        observations += CoordinateInUse(i) ? 1 : 0;
    return observations;
}

Mat3 FitMatrix() {
    BuildRotationMatrix();
    BuildShearMatrix();
    BuildScaleMatrix();
    return MatrixProduct(MatrixProduct(Chain.RotationMatrix, Chain.ShearMatrix), Chain.ScaleMatrix);
}

bool HasMonteCarlo(const FitOptions& options) {
    return options.MonteCarloRuns > 0 && IsTrue(MonteCarlo.MonteCarloDone);
}

std::string NoiseInWords(const FitOptions& options) {
    const auto& noise = options.Noise_mm;
    return PlainText(options.MonteCarloRuns) + " runs with noise of " + PlainText(noise[0]) + ", " +
           PlainText(noise[1]) + ", " + PlainText(noise[2]) + " mm in x, y, z of the start points";
}

}  // namespace corvinade::cli
