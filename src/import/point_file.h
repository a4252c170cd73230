// Text point files: lines of name, X, Y, Z or of X, Y, Z alone, in the chosen length unit. The two files
// of a job, further start points, and a file written anew under other names.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "core/arrays.h"
#include "core/platform.h"
#include "core/point_set.h"
#include "core/rooms.h"
#include "import/reading.h"

namespace corvinade::import {

// What may stand in the fifth field of a point of an adjusted network, where its distances leave points open:
// such a one, whose coordinates are arbitrary, and all others. Any other fifth field is a remark.
inline constexpr const char* kMarkOfOpenPoint = "open";
inline constexpr const char* kMarkOfFixedPoint = "determined";

struct PointFiles {
    std::string Start, Target;
    bool TargetIsCopy = false;  // the target set is a copy of the start set, and no file is read for it
    Reading How{};
    // Points that have been read already, mm: they are taken, and no file is read for their set. Null = none.
    PointSet *StartPoints = nullptr, *TargetPoints = nullptr;
};

// Reads two point files, all checks included, and divides every value by Units.LengthFactor.
//   Reads   Run.Delimiter, Units
//   Writes  Job.Start, Job.Target, and RobotABC, which has no rows then; no pairs are left.
//           Run.Delimiter, Run.ImportFailed with a message where a file is unsuitable. What was read
//           before a failure stays, with counts that fit.
// Throws PlatformError where a file cannot be read or has no point, and where a field of the start file is
// no number or too large for its unit, naming file, line and field. In the target file such a field leaves
// its value without a number, which counts as 0.
void Einlesen_Neu(const PointFiles& files);
void Einlesen_Neu();  // those of the job; the target set of one with a shape is such a copy

// Appends the points of a further file to the start set; `prefix` and `suffix` are put around each name.
// A file without names numbers its points from 1. The transformed points get copies of the new ones; the
// target set and the pairs are not touched.
// False, with the message shown and the job untouched, when a check fails. Throws PlatformError as
// Einlesen_Neu does for the start file, the job untouched then too.
bool ReadMorePoints(const std::string& path, const std::string& prefix, const std::string& suffix);

// The same with points that have been read already, mm; the path is for notes.
void AddMorePoints(const std::string& path, PointSet points, const std::string& prefix,
                   const std::string& suffix);

// Writes a point file anew: a line of name, X, Y, Z in mm for each point, with Run.Delimiter between them
// and this decimal delimiter. The old file is kept under its path with ".$" behind it, as often
// as it takes to find a free name. All arrays have their elements from 1 on; an empty value is written
// as 0. Throws PlatformError when the disk refuses; the old file then stands in its old place.
void RewritePointFile(const std::string& path, std::span<const std::string> names,
                      std::span<const TaggedValue> x, std::span<const TaggedValue> y,
                      std::span<const double> z, char decimal = SystemDecimal());

}  // namespace corvinade::import
