// Units and number formats: from internal millimetres and radians to what is shown, and back.
// A shown value is internal x factor; a value read is text value / factor.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

#include "core/arrays.h"
#include "core/rooms.h"
#include "fit/angles.h"

namespace corvinade::core {

struct UnitsRecord {
    double LengthFactor = 1;         // mm to the shown unit
    double AngleFactor = 180 / kPi;  // rad to the shown unit
    std::string FmtLength = "0.000", FmtAngle = "0.0000", FmtScale = "0.000000";
};
inline UnitsRecord Units;

struct UnitRow {
    const char* Name;  // in jobs, settings and the lists of the window
    double Factor;     // internal to shown
    // Names on a command line: the one that its help shows, and another one or nullptr.
    std::array<const char*, 2> Given;
    // Of a length: how a scale m is told in words, as (1 - m) x ScaleFactor and these; nullptr: it is not.
    double ScaleFactor = 0;
    const char* ScaleWords = nullptr;
};
std::span<const UnitRow> LengthUnits();  // in the order of their list
std::span<const UnitRow> AngleUnits();

// Is this one of these units' names? The empty one is as well: nothing has been chosen yet.
bool IsUnitName(std::span<const UnitRow> units, std::string_view name);

// What is wrong with a name that is none of them: `the unit "x" is none of millimeter, ...`.
std::string NoUnitName(std::span<const UnitRow> units, std::string_view name);

inline constexpr const char* kDegreeMinuteSecond = "360°60'60''";

// The picture string of 0 to 6 digits, and that of `ScaleDigits` 0 or 1.
std::span<const char* const> DigitFormats();
std::span<const char* const> ScaleFormats();

// Computes factors and formats from the names and digits of the job and the settings and writes the
// unit names to panels 1 and 2 of the status bar. An unknown name leaves its factor, digits outside
// 0 to 6 leave their format.
void RhoFestlegung();

// An angle as text.
//   value_rad  the angle; `factor`, `format`, `unit` usually those of the present settings
// In degrees, minutes and seconds the sign is carried by the degrees alone: values between -1 and 0
// degrees lose it.
std::string WinkelFormat(double value_rad, double factor, const std::string& format, const std::string& unit);
std::string WinkelFormat(double value_rad);  // with the present settings

// Is this a text in the form degree minute second? A blank makes it one; the scan ends at the first
// character that is neither digit, ".", ",", "-" nor blank.
bool IsItGradMinSek(const std::string& text);

// Such a text in decimal degrees; the sign is that of the first field's first character. Throws
// PlatformError when a field is no number.
double GradMinSekToZahl(std::string text);

// Makes a number text of an angle input: decimal degrees for a degree minute second text, else the
// text itself.
std::string SaveWinkelZurück(const std::string& text);

}  // namespace corvinade::core
