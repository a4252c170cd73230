// The reader of network files.
#pragma once

#include <string>

#include "bundle/network.h"
#include "core/rooms.h"

namespace corvinade::bundle {

// Reads the text file of a theodolite network, lengths in the present unit. Behind each keyword, which
// begins a line, one line is skipped; then come the entries up to a line that begins with "END":
//   "Theodolite"      name X Y Z, and a second line that is skipped
//   "Object Points"   likewise
//   "Distances"       name of the station, name of the object point, distance
// in this order; lines between the sections are passed over. No content is refused: a number that is none is
// 0, one is read as far as it goes, a missing name is empty.
//   Reads   Units.LengthFactor
// Throws PlatformError where the file cannot be read, ends before its third section does, or has more
// stations or object points than 32767; it names the file and what is missing.
BundleRecord BündelInputFileEinlesen(const std::string& path);

// What the file says that cannot be meant, for the user before an adjustment: numbers and distances that are
// none, names that are not there, and distances of two points at one place; "" when there is nothing.
inline constexpr const char* kNoDistance =
    "There is no distance between a station and an object point of the file, so nothing can be adjusted.";
std::string BundleObjections(const BundleRecord& network);

}  // namespace corvinade::bundle
