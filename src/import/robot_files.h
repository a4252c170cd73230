// The kinds of target file, and the readers of robot programs.
#pragma once

#include <span>
#include <string>

#include "core/arrays.h"

// An entry of `ComboOCS_Data`, in the order of the list.
struct InputKind {
    const char* Entry;
    Flag* IsKind;    // the flag that says that this kind is chosen; at most one of all is true
    void (*Read)();  // reads the target file behind Einlesen_Neu; null = nothing more to read
};
std::span<const InputKind> InputKinds();

// The kind of the job, which is that of the import under way; the first one when it is of none. What the
// dialog shows is no kind of the job before its import goes on.
const InputKind& ChosenKind();

// Each reads a robot program into the target set: positions into OCS_* and nOCS, orientations into
// Job.RobotABC (rows 0 to n; columns 1 to 3 are the rotations about z, the new y and the new x, rad), the
// spans of these into Run.SpanA to SpanC. No pairs are left; the start set and the rest of the job are not
// touched. Lengths and angles in the file are in the units of Units.
// Throws PlatformError, naming file, line and the text found there, where a line lacks what its format needs;
// the poses before it are then in the job, with counts that fit. docs/robot-programs.md has the formats.
void EinlesenKUKAdatDatei();                       // Run.PathReader, poses named 1, 2, 3...
void EinlesenABB_MODX();                           // likewise
void EinlesenFanucDatei(const std::string& path);  // likewise; an error has its message besides

// The same from text files of name, x, y, z and three angles or a quaternion, in Run.PathReader. The checks
// of point files come first: Run.ImportFailed with a message where one fails, the job then as it was.
//   Writes  Run.RobotFileHasId, which stays set for the files after it, and Run.Delimiter
void EinlesenXYZABC();
void EinlesenABB();
