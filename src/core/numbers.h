// Numbers as text: plain value conversion, the system's own conversion, and picture strings.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/rooms.h"

namespace corvinade::core {

// The plain value conversion, independent of the system's settings: reads a number with "." as decimal
// point from the start of the text, skips blanks, stops at the first character that cannot belong to
// it, and gives 0 for a text without a number.
double Val(std::string_view text);

// The system's conversion: exactly one number with `decimal` as decimal delimiter, optional sign and
// exponent, blanks around it. No digit grouping, no "nan", no "inf", nothing beyond the range of a
// 64-bit float. False, and `value` untouched, when the text is anything else.
bool TextToNumber(std::string_view text, char decimal, double& value);
bool TextToNumber(std::string_view text, double& value);  // with the system's delimiter

// The same, for places where a number must stand. Throws PlatformError naming `what` and the text.
double NumberFromText(std::string_view text, std::string_view what);

// A number's plain text form: up to 15 significant digits, the system's decimal delimiter, an exponent
// where the value is below 1e-4 or has more than 15 places ("1E-09", "0.5"). 32-bit floats have 7 digits.
std::string PlainText(double value);
std::string PlainText(float value);
std::string PlainText(std::int64_t value);
inline std::string PlainText(std::int32_t value) {
    return PlainText(static_cast<std::int64_t>(value));
}
inline std::string PlainText(std::int16_t value) {
    return PlainText(static_cast<std::int64_t>(value));
}

// A number by a picture string such as "0.000": rounded half away from zero on its 15 significant
// digits, with the system's decimal delimiter, never a negative zero. Numbers that are not finite show
// as "NaN", "Infinity" and "-Infinity".
std::string FormatNumber(double value, std::string_view picture);

// As long as one lives, numbers are written with a decimal point whatever the system has: in texts that
// programs read. Texts of the user's are read as ever.
class PointInTexts {
public:
    PointInTexts();
    ~PointInTexts();
    PointInTexts(const PointInTexts&) = delete;
    PointInTexts& operator=(const PointInTexts&) = delete;
};
struct WrittenNumbersRecord {
    int Points = 0;  // how many of these live
};
inline WrittenNumbersRecord WrittenNumbers;

// The decimal delimiter that numbers are written with now.
char WrittenDecimal();

// Rounds towards minus infinity.
double Int(double value);

// To a whole number, half to even. Throws PlatformError naming `what` outside the type's range.
std::int16_t ToInt16(double value, std::string_view what);
std::int32_t ToInt32(double value, std::string_view what);

}  // namespace corvinade::core
