// What a calculation puts on the clipboard, by the setting of the options window.
#pragma once

#include <string>

#include "core/rooms.h"

namespace corvinade::engine {

// The text of the mode that Settings.ClipboardValue names, on the clipboard; nothing in the modes that have
// none, and nothing without a calculation of this job. Reads the job, the last calculation and Selection;
// shows a message where the clipboard refuses.
void ReportToClipboard();

// The texts by themselves, in the present units and formats. All of them read the job, Calculation (of this
// job) and Selection; lines end in CR LF, fields are divided by tabs. A result that did not converge, and in
// the robots' texts parameters that the points leave open, have a line "Notice: ..." in front.

// Everything: files, parameters, quality, and a line a pair with its cylinder and sphere forms. "MCS" in
// those forms is the transformed start point, as in the main sheet. Behind a parameter that the points leave
// open stands "open". Where there are notes they follow at the end: a line "Notes", and a line each with its
// severity and what it says.
std::string CompleteProtocol();

// The translation and the negated rotation, each value with a tab behind it. With Settings.InvertedBMW those
// of the inverse, behind a notice when more than a rotation and a translation was calculated; where the
// inverse has no parameters of the model's own form, which a message then says, its translation alone.
// Writes Inverse in that case. Looks at the fields of the calculation window, or without it at what they
// would show.
std::string BmwParameters();

// The translation, the negated rotation in reversed order, with Settings.AdTCP the negated tool vector, and
// a comment on what all that is.
std::string KukaParameters();

}  // namespace corvinade::engine
