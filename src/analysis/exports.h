// The files that hand the result to robot-cell tools, as text.
#pragma once

#include <string>
#include <string_view>

#include "core/rooms.h"

namespace corvinade::analysis {

// A number in the format "0.0000E+00": five digits, rounded half away from zero on its 15 digits, and an
// exponent of at least two, with the system's decimal delimiter.
std::string ScientificText(double value);

// A text by a picture string: a number in that format, any other text as it stands.
std::string FormatText(const std::string& text, std::string_view picture);

// The frame file: the job's translation in the length unit and the angles about x, y', z'' of its rotation,
// as the details window has them, in the angle unit. Where these come from the job's own angles, because a
// formula does not give the rotation back, a note says so. Where five digits lose more than 0.0005 mm or 1e-6
// rad of a number, a warning says of which and how much. It has no place for scales and shears: where the
// result has any, a warning names them.
std::string RobCadText(const std::string& place, const std::string& tool, const std::string& robot);

// The homogeneous matrix of rotation and translation, row by row in square brackets; no line end behind the
// last row. Scales and shears as above.
std::string RocalText();

// The transformed start points without a partner, a line a point: name, tab, X, tab, Y, tab, Z. A name that
// is a number comes in the format of lengths; a warning says so where that rounds it.
std::string OnlyMcsText();

// A path with other last four characters, as "cell.cvn" becomes "cell.txt".
std::string WithExtension(const std::string& path, std::string_view extension);

// Whether a result goes out that did not converge: the user is asked once, and where it converged never.
class UnconvergedConsent {
public:
    bool Given();

private:
    bool agreed_ = false;
};

}  // namespace corvinade::analysis
