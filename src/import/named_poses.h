// The poses of a robot program by their names.
#pragma once

#include <string>
#include <vector>

#include "core/rooms.h"
#include "import/import_request.h"

namespace corvinade::import {

// Gives the poses that have just been read the names of their program where the request wants them, and where
// it leaves that to the names of the start points, which a note then says. Poses that the program has no name
// for keep the number of their turn. True where they have them.
//   Reads  Job.Start, ProgramPoses        Writes  the names of Job.Target
bool NamePoses(const ImportRequest& request);

// Leaves out the poses that the request does not select, and places that no pose has come to; the others stay
// in their order. "" or what it names and is not there, the job then untouched.
//   Writes  Job.Target, Job.RobotABC, Run.SpanA to SpanC
std::string SelectPoses(const ImportRequest& request);

}  // namespace corvinade::import
