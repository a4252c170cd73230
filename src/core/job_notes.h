// What opening and saving a job file decide for the user.
#pragma once

#include <string>

// Before the job that is open is written to `path`: the note that a job file does not keep the orientations
// that are there. It has room for those of Kuka programs and of quaternions alone.
void NoteOrientationsLost(const std::string& path);

// After a job has been read from `path`: the note that a set has more coordinates than names. Points without
// a name are none; three places behind the names are what the search by distances leaves.
void NoteShortNames(const std::string& path);
