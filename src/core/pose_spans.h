// How far the angles of the poses of a robot program spread.
#pragma once

#include <string>

// Run.SpanA to SpanC from the rows of Job.RobotABC: largest minus smallest angle of each column, rad; 0
// without rows. Rows of target points without a name hold no pose. An import has the spans from its file,
// where the angles are not yet divided by their unit; this is for orientations that come from elsewhere.
void FindPoseSpans();

// A note that a job file does not keep the orientations that are there: it has room for those of Kuka
// programs and of quaternions alone. To be called where the job is about to be written to `path`.
void NoteOrientationsLost(const std::string& path);
