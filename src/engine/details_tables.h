// The cells of the details window's grids, row by row, headings and labels included.
#pragma once

#include <string>
#include <vector>

#include "core/rooms.h"
#include "engine/solution_details.h"

namespace corvinade::engine {

using Cells = std::vector<std::vector<std::string>>;

// The shown form of a number of a matrix or quaternion.
std::string ShownInMatrix(double value);

Cells MatrixCells(const Mat3& M);                                          // 3 by 3
Cells HomogenCells(const SolutionDetails& details);                        // 4 by 4
Cells RotationCells(const SolutionDetails& details, RotationOrder order);  // 4 by 3
Cells QuaternionCells(const SolutionDetails& details);                     // 11 by 2

// 13 rows, a column of labels and one a solution; where there is none one cell alone, "no solution".
Cells InverseCells(const SolutionDetails& details);

// A heading and 18 rows of label and sigma; all empty while there are no complete runs.
Cells MonteCarloCells(const SolutionDetails& details);

}  // namespace corvinade::engine
