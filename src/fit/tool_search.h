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

// The best of each side of the mirror that keep the held values. Starts are the rotation nearest to the least
// sum of all matrices (for 12 parameters this is the solution itself), and the rotations of a cube about it;
// with an angle held quarter turns of the others. Scales begin at the factor that fits each best.
//   choice  what floats, and the values of what is held; its translations do not count
ToolSolutions SearchTool(const ToolForm& form, const ChainChoice& choice, bool affine);

// From one place on, to where the sum falls no more; nothing where it becomes no number.
std::optional<ToolSolution> ClimbTool(const ToolForm& form, const ChainChoice& choice,
                                      const ChainValues& start);

}  // namespace corvinade::fit
