// The best solutions of the tool model, searched from several starts on the sums of points and poses.
#pragma once

#include <optional>
#include <vector>

#include "fit/chain_search.h"
#include "fit/tool_form.h"

namespace corvinade::fit {

struct ToolSolution {
    ChainValues Values;  // but for the translation, which follows from Shift
    Mat3 M;
    Vec3 Shift, Tool;  // the image of the start centre less the target centre, and the tool vector; mm
    double Gain = 0;   // sum of squares at the moments less that here, mm^2
};

struct ToolSolutions {
    std::optional<ToolSolution> Proper, Mirrored;  // determinant of M 0 and above, and below
    int Starts = 0;
};

// The best of each side of the mirror that keep the held values. The first start is the rotation nearest to
// the least sum of all matrices, which for 12 parameters is the solution itself. That sum is a bound of all
// others: whatever is better than what is known lies in a ball about its matrix. Where this is small there is
// nothing else to find. Otherwise the rotations of two cubes are starts as well; with an angle held quarter
// turns of the others. Scales begin at the factor that fits each best.
//   choice  what floats, and the values of what is held; its translations do not count
//   known   gain that a solution is known to have; minus infinity where none is
ToolSolutions SearchTool(const ToolForm& form, const ChainChoice& choice, bool affine, double known);

// From one place on, to where the sum falls no more; nothing where it becomes no number. With a share it ends
// where a step gains no more than this share of what is missing to the bound, the gain of the best matrix.
std::optional<ToolSolution> ClimbTool(const ToolForm& form, const ChainChoice& choice,
                                      const ChainValues& start, double bound = 0, double share = 0);

}  // namespace corvinade::fit
