// The robot targets of a module by what is declared, assigned or moved to, in whatever lines they stand.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/rooms.h"
#include "import/robot_program.h"

namespace corvinade::import {

struct AbbTarget {
    std::string Text;      // of its statement, from its "[[" on; a blank stands there between values alone
    std::string Name;      // that it declares; "" for an assignment or a movement
    std::int64_t Row = 0;  // line in which it begins, from 1
};

// Something that is left, how often, and the line of its first.
struct AbbLeft {
    std::int64_t Count = 0, First = 0;
};

struct AbbTargets {
    std::vector<AbbTarget> FirstBlock;  // up to ENDMODULE or to the first empty line behind a target
    std::vector<AbbTarget> Behind;
    bool EmptyLine = false;  // the first block has ended at one
    // Of the first block: what looks like a target and is none (a remark, a tool, a work object, joint
    // values, what a function such as Offs is given), and what stands behind another target in its statement.
    AbbLeft NoTargets, Seconds;
};

// Goes through the whole program, from the line at which it stands. A declaration may go over several lines,
// and a line may hold several. A target whose brackets do not close ends at its semicolon or at the end of
// the module: whoever takes its numbers finds what is missing.
AbbTargets FindTargets(RobotProgram& program);

}  // namespace corvinade::import
