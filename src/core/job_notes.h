// What opening and saving a job file decide for the user.
#pragma once

#include <string>

#include "core/rooms.h"

namespace corvinade::core {

// After a job has been read from `path`, for all that goes on with its result: the notes of what it is marked
// with, that it did not converge, that parameters are open, that a scale has collapsed.
void NoteMarks(const std::string& path);

// "Rot x and Tra z": the parameters that the open job is marked with as open; "" where there are none.
std::string NamesMarkedOpen();

// Before the job that is open is written to `path`: the note that a job file does not keep the orientations
// that are there. It has room for those of Kuka programs and of quaternions alone.
void NoteOrientationsLost(const std::string& path);

// After a job has been read from `path`: the note that a set has more coordinates than names. Points without
// a name are none; three places behind the names are what the search by distances leaves.
void NoteShortNames(const std::string& path);

// The same: the note that coordinates of a set of points, orientations, the shape, the result or its R
// vectors are infinite or no numbers. A file of points cannot bring such into a job, and what is computed
// from them is nothing.
void NoteNotFinite(const std::string& path);

}  // namespace corvinade::core
