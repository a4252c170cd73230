// The cells of the details window's grids.
#include "engine/details_tables.h"

#include <array>

#include "core/job.h"
#include "core/numbers.h"
#include "engine/parameter_kind.h"

namespace corvinade::engine {

namespace {

// Labels of the inverse, and what parameter each row is: first the shift, then the nine columns of a
// solution.
struct InverseRow {
    const char* Label;
    ParameterKind Kind;
};
constexpr std::array<InverseRow, 12> kInverseRows = {{{"tra x", ParameterKind::Length},
                                                      {"tra y", ParameterKind::Length},
                                                      {"tra z", ParameterKind::Length},
                                                      {"rot x", ParameterKind::Angle},
                                                      {"rot y'", ParameterKind::Angle},
                                                      {"rot z''", ParameterKind::Angle},
                                                      {"scale x", ParameterKind::Scale},
                                                      {"scale y", ParameterKind::Scale},
                                                      {"scale z", ParameterKind::Scale},
                                                      {"xy", ParameterKind::Angle},
                                                      {"Azimuth z", ParameterKind::Angle},
                                                      {"z to xy", ParameterKind::Angle}}};

// By number of the array of results.
constexpr std::array<const char*, kMonteCarloArrays> kMonteCarloLabels = {
    "Tra x",     "Tra y", "Tra z",   "Rot x", "Rot y",  "Rot z", "Scale x", "Scale y", "Scale z",
    "Scale xyz", "XY",    "Azimuth", "ZtoXY", "R_Dist", "vec_x", "vec_y",   "vec_z",   "s of sigmaXYZ"};

}  // namespace

std::string ShownInMatrix(double value) {
    return FormatNumber(value, "0.00000000");
}

Cells MatrixCells(const Mat3& M) {
    Cells cells;
    for (int i = 1; i <= 3; ++i)
        cells.push_back({ShownInMatrix(M(i, 1)), ShownInMatrix(M(i, 2)), ShownInMatrix(M(i, 3))});
    return cells;
}

Cells HomogenCells(const SolutionDetails& details) {
    Cells cells = MatrixCells(details.Rotation);
    for (int i = 1; i <= 3; ++i)
        cells[static_cast<std::size_t>(i - 1)].push_back(ShownLength(details.Shift(i)));
    cells.push_back({ShownInMatrix(0), ShownInMatrix(0), ShownInMatrix(0), ShownInMatrix(1)});
    return cells;
}

Cells RotationCells(const SolutionDetails& details, RotationOrder order) {
    const RotationSolutions& solutions = details.Of(order);
    Cells cells = {{"", "Solution 1", "Solution 2"}};
    for (std::size_t k = 0; k < 3; ++k)
        cells.push_back({std::string("Rot ") + AxesOf(order)[k] + std::string(k, '\''),
                         ShownAngle(solutions.First[k]), ShownAngle(solutions.Second[k])});
    return cells;
}

Cells QuaternionCells(const SolutionDetails& details) {
    const auto& q = details.Quaternion;
    return {{"qw", ShownInMatrix(q[0])},
            {"qx", ShownInMatrix(q[1])},
            {"qy", ShownInMatrix(q[2])},
            {"qz", ShownInMatrix(q[3])},
            {"Angel of Rot", ShownAngle(details.Angle)},
            {"RotVec .x ", ShownInMatrix(details.Axis(1))},
            {"RotVec .y", ShownInMatrix(details.Axis(2))},
            {"RotVec .z", ShownInMatrix(details.Axis(3))},
            {"Rot x", ShownAngle(details.QuaternionAngles(1))},
            {"Rot y'", ShownAngle(details.QuaternionAngles(2))},
            {"Rot z''", ShownAngle(details.QuaternionAngles(3))}};
}

Cells InverseCells(const SolutionDetails& details) {
    if (details.Inverses.Rows < 1) return {{"no solution"}};
    Cells cells(1 + kInverseRows.size());
    cells[0] = {""};
    for (std::size_t row = 0; row < kInverseRows.size(); ++row) cells[row + 1] = {kInverseRows[row].Label};
    for (int solution = 1; solution <= details.Inverses.Rows; ++solution) {
        cells[0].push_back("Solution " + std::to_string(solution));
        for (int row = 1; row <= static_cast<int>(kInverseRows.size()); ++row) {
            const double value = row <= 3 ? details.InverseShift(row) : details.Inverses(solution, row - 3);
            const auto k = static_cast<std::size_t>(row);
            cells[k].push_back(ShownAs(kInverseRows[k - 1].Kind, value));
        }
    }
    return cells;
}

Cells MonteCarloCells(const SolutionDetails& details) {
    Cells cells(1 + kMonteCarloLabels.size(), {"", ""});
    if (!details.HasSpread) return cells;
    for (int k = 1; k <= kMonteCarloArrays; ++k) {
        // The mean error behind the parameters is a length as the R vector before it.
        const ParameterKind kind = k == kSigmaXYZ ? ParameterKind::Length : KindOf(k);
        const auto row = static_cast<std::size_t>(k);
        cells[row] = {kMonteCarloLabels[row - 1],
                      details.SpreadIsNothing ? "– (noise 0)" : ShownAs(kind, details.Spread[row])};
    }
    return cells;
}

}  // namespace corvinade::engine
