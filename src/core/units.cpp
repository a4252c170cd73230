// Unit factors, number formats and the angle form degree, minute, second.
#include "core/units.h"

#include <algorithm>
#include <cmath>

#include "core/controller.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/settings.h"
#include "core/text.h"

namespace corvinade::core {

namespace {

constexpr UnitRow kLengthUnits[] = {{"millimeter", 1, {"mm", "millimeter"}, 1000, " millimeter per meter"},
                                    {"meter", 1.0 / 1000, {"m", "meter"}, 1000000, " ppm"},
                                    {"inch", 1 / 25.4, {"in", "inch"}, 10000, " 10thou per inch"},
                                    {"feet", 1 / 304.8, {"ft", "feet"}}};

constexpr UnitRow kAngleUnits[] = {{"degree", 180 / kPi, {"deg", "degree"}},
                                   {"grad (gon)", 200 / kPi, {"gon"}},
                                   {"rad", 1, {"rad"}},
                                   {"mrad", 1000, {"mrad"}},
                                   {"arcsecond", 648000 / kPi, {"arcsecond"}},
                                   {"arcminute", 10800 / kPi, {"arcminute"}},
                                   {kDegreeMinuteSecond, 180 / kPi, {"dms"}}};

constexpr const char* kDigitFormats[] = {"0", "0.0", "0.00", "0.000", "0.0000", "0.00000", "0.000000"};
constexpr const char* kScaleFormats[] = {"0.000000", "0.000000000000"};

void TakeFactor(std::span<const UnitRow> units, const std::string& name, double& factor) {
    for (const UnitRow& unit : units)
        if (name == unit.Name) factor = unit.Factor;
}

void TakeFormat(std::span<const char* const> formats, int digits, std::string& format) {
    if (digits >= 0 && digits < static_cast<int>(formats.size()))
        format = formats[static_cast<std::size_t>(digits)];
}

}  // namespace

std::span<const UnitRow> LengthUnits() {
    return kLengthUnits;
}
std::span<const UnitRow> AngleUnits() {
    return kAngleUnits;
}
bool IsUnitName(std::span<const UnitRow> units, std::string_view name) {
    return name.empty() ||
           std::any_of(units.begin(), units.end(), [name](const UnitRow& unit) { return name == unit.Name; });
}
std::string NoUnitName(std::span<const UnitRow> units, std::string_view name) {
    std::string known;
    for (const UnitRow& unit : units) known.append(known.empty() ? "" : ", ").append(unit.Name);
    return "the unit \"" + Printable(name) + "\" is none of " + known;
}
std::span<const char* const> DigitFormats() {
    return kDigitFormats;
}
std::span<const char* const> ScaleFormats() {
    return kScaleFormats;
}

void RhoFestlegung() {
    TakeFactor(kLengthUnits, Job.LengthUnitName, Units.LengthFactor);
    TakeFactor(kAngleUnits, Job.AngleUnitName, Units.AngleFactor);
    TakeFormat(kDigitFormats, Job.LengthDigits, Units.FmtLength);
    TakeFormat(kDigitFormats, Job.AngleDigits, Units.FmtAngle);
    TakeFormat(kScaleFormats, Settings.ScaleDigits, Units.FmtScale);
    SetStatus(1, Job.LengthUnitName);
    SetStatus(2, Job.AngleUnitName);
}

std::string WinkelFormat(double value_rad, double factor, const std::string& format,
                         const std::string& unit) {
    if (unit != kDegreeMinuteSecond) return FormatNumber(value_rad * factor, format);
    const double sign = value_rad == 0 ? 1 : value_rad / std::fabs(value_rad);
    const double degrees = std::fabs(value_rad) * factor;
    const double wholeDegrees = std::trunc(degrees);
    const double minutes = (degrees - wholeDegrees) * 60;
    const double seconds = (minutes - std::trunc(minutes)) * 60;
    return PlainText(sign * wholeDegrees) + " " + PlainText(std::trunc(minutes)) + " " +
           FormatNumber(seconds, Units.FmtAngle);
}

std::string WinkelFormat(double value_rad) {
    return WinkelFormat(value_rad, Units.AngleFactor, Units.FmtAngle, Job.AngleUnitName);
}

bool IsItGradMinSek(const std::string& text) {
    bool result = false;
    for (const char c : text) {
        if (c == ' ') result = true;
        const bool allowed = c == '.' || c == ' ' || c == ',' || c == '-' || (c >= '0' && c <= '9');
        if (!allowed) break;
    }
    return result;
}

double GradMinSekToZahl(std::string text) {
    const auto number = [](const std::string& field) {
        return field.empty() ? 0 : NumberFromText(field, "Angle in degrees, minutes and seconds");
    };
    const std::string degrees = Zerpflück(text, ' ');
    const double sign = degrees.starts_with('-') ? -1 : 1;
    double value = std::fabs(number(degrees));
    value += number(Zerpflück(text, ' ')) / 60;
    value += number(Zerpflück(text, ' ')) / 3600;
    return sign * value;
}

std::string SaveWinkelZurück(const std::string& text) {
    return IsItGradMinSek(text) ? PlainText(GradMinSekToZahl(text)) : text;
}

}  // namespace corvinade::core
