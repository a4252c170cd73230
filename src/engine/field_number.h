// Numbers that the user types into the fields of the calculation window.
#pragma once

#include <string>

#include "core/rooms.h"

namespace corvinade::engine {

// The number of a field's text, as tolerant as a field has to be: with the system's decimal delimiter,
// else with the other one, else the number with "." that the text begins with, else 0.
double FieldNumber(const std::string& text);

// The same for the text of an angle, in the shown unit: degrees, minutes and seconds come as decimal
// degrees. A text that is none, in one of its fields too, gives 0.
double FieldAngle(const std::string& text);

// True for a text that is the value of a held parameter, neither "float" nor "not used".
bool IsHeldValue(const std::string& text);

// The value of a field in internal units: lengths (parameters 1 to 3) divided by the length factor,
// angles (4 to 6, 11 to 13, also as degree minute second) by the angle factor, everything else as it
// stands. Throws PlatformError for degree minute second with a field that is no number.
double ParameterFromText(int parameter, const std::string& text);

// Is the text of a held parameter a number, by any of the roads of FieldNumber but the last two? An empty one
// counts as 0, as an empty field of the window does.
bool IsParameterNumber(int parameter, const std::string& text);

// The warnings of the job's held values, and of start values in the fields of the calculation window, that
// are no numbers, and of what they count as.
void NoteHeldTexts();

// The first of these parameters; 0 where there is none.
int FirstHeldText();

}  // namespace corvinade::engine
