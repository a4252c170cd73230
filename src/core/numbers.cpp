// Conversions between numbers and text.
#include "core/numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "core/platform.h"
#include "core/text.h"

namespace corvinade::core {

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// Reads "digits[.digits][e[+-]digits]" with at least one digit. Returns the end of what belongs to the
// number, or `begin` when there is none. No sign.
const char* ScanUnsigned(const char* begin, const char* end, char decimal) {
    const char* at = begin;
    bool digits = false;
    while (at != end && IsDigit(*at)) ++at, digits = true;
    if (at != end && *at == decimal) {
        ++at;
        while (at != end && IsDigit(*at)) ++at, digits = true;
    }
    if (!digits) return begin;
    if (at != end && (*at == 'e' || *at == 'E')) {
        const char* exponent = at + 1;
        if (exponent != end && (*exponent == '+' || *exponent == '-')) ++exponent;
        if (exponent != end && IsDigit(*exponent)) {
            while (exponent != end && IsDigit(*exponent)) ++exponent;
            at = exponent;
        }
    }
    return at;
}

// Is a scanned number with decimal point below 1? Only asked of numbers far outside the range of a
// 64-bit float, so the power of ten of the first digit that counts decides.
bool IsBelowOne(const char* begin, const char* end) {
    const char* const exponentMark = std::find_if(begin, end, [](char c) { return c == 'e' || c == 'E'; });
    const char* const point = std::find(begin, exponentMark, '.');
    const char* const first =
        std::find_if(begin, exponentMark, [](char c) { return IsDigit(c) && c != '0'; });
    if (first == exponentMark) return true;
    const double power = static_cast<double>(point - first) - (first < point ? 1 : 0);
    double exponent = 0;
    if (exponentMark != end) {
        const char* at = exponentMark + 1;
        const bool negative = *at == '-';
        if (*at == '-' || *at == '+') ++at;
        for (; at != end; ++at) exponent = exponent * 10 + (*at - '0');
        if (negative) exponent = -exponent;
    }
    return power + exponent < 0;
}

// Value of a scanned number with decimal point. A number too small for a 64-bit float is 0; false for
// one that is too large.
bool Convert(const char* begin, const char* end, double& value) {
    const auto [stop, error] = std::from_chars(begin, end, value);
    if (error == std::errc() && stop == end) return true;
    if (error != std::errc::result_out_of_range || !IsBelowOne(begin, end)) return false;
    value = 0;
    return true;
}

std::string WithDelimiter(std::string text) {
    const char decimal = WrittenDecimal();
    if (decimal != '.')
        for (char& c : text)
            if (c == '.') c = decimal;
    return text;
}

std::string PlainDigits(double value, int digits) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value > 0 ? "Infinity" : "-Infinity";
    if (value == 0) return "0";
    std::array<char, 40> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                      std::chars_format::general, digits);
    return WithDelimiter(UpperAscii({buffer.data(), static_cast<std::size_t>(result.ptr - buffer.data())}));
}

}  // namespace

double Val(std::string_view text) {
    std::string digits;  // blanks inside a number are skipped too
    for (const char c : text)
        if (!IsBlank(c)) digits += c;
    const char* begin = digits.data();
    const char* const end = begin + digits.size();
    const bool negative = begin != end && *begin == '-';
    if (begin != end && (*begin == '-' || *begin == '+')) ++begin;
    const char* const stop = ScanUnsigned(begin, end, '.');
    if (stop == begin) return 0;
    double value = 0;
    if (!Convert(begin, stop, value)) value = std::numeric_limits<double>::infinity();
    return negative ? -value : value;
}

bool TextToNumber(std::string_view text, char decimal, double& value) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    const bool negative = !text.empty() && text.front() == '-';
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) text.remove_prefix(1);
    const char* begin = text.data();
    const char* end = begin + text.size();
    if (text.empty() || ScanUnsigned(begin, end, decimal) != end) return false;
    double number = 0;
    if (decimal == '.') {
        if (!Convert(begin, end, number)) return false;
    } else {
        std::array<char, 64> shortForm{};
        std::string longForm;
        char* copy = shortForm.data();
        if (text.size() > shortForm.size()) {
            longForm.resize(text.size());
            copy = longForm.data();
        }
        for (std::size_t i = 0; i < text.size(); ++i) copy[i] = text[i] == decimal ? '.' : text[i];
        if (!Convert(copy, copy + text.size(), number)) return false;
    }
    value = negative ? -number : number;
    return true;
}

bool TextToNumber(std::string_view text, double& value) {
    return TextToNumber(text, SystemDecimal(), value);
}

double NumberFromText(std::string_view text, std::string_view what) {
    double value = 0;
    if (!TextToNumber(text, value))
        throw PlatformError{std::string(what) + ": \"" + Printable(text) + "\" is not a number"};
    return value;
}

std::string PlainText(double value) {
    return PlainDigits(value, 15);
}
std::string PlainText(float value) {
    return PlainDigits(static_cast<double>(value), 7);
}
std::string PlainText(std::int64_t value) {
    return std::to_string(value);
}

namespace {

// The number in a picture by plain arithmetic: false where its 15 digits, on which it is rounded, or the
// rounding of the product could decide otherwise. Both are off by less than 1e-5 of the last decimal for what
// is taken here.
bool FormatPlainly(double value, int decimals, std::string& text) {
    constexpr std::array<double, 10> kPowersOfTen = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
    constexpr double kMost = 1e9, kDoubt = 1e-4;
    if (decimals < 0 || decimals >= static_cast<int>(kPowersOfTen.size())) return false;
    const auto places = static_cast<std::size_t>(decimals);
    const double scaled = std::fabs(value) * kPowersOfTen[places];
    if (!(scaled < kMost)) return false;
    const double whole = std::floor(scaled), rest = scaled - whole;
    if (std::fabs(rest - 0.5) < kDoubt) return false;
    const std::uint64_t number = static_cast<std::uint64_t>(whole) + (rest > 0.5 ? 1 : 0);
    std::array<char, 24> digits{};
    const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    const auto count = static_cast<std::size_t>(end - digits.data());
    if (value < 0 && number != 0) text += '-';
    const std::size_t zeros = count <= places ? places + 1 - count : 0;
    // All but the last `places` of the zeros and digits stand before the delimiter.
    const std::size_t before = zeros + count - places;
    for (std::size_t i = 0; i < zeros + count; ++i) {
        if (i == before) text += WrittenDecimal();
        text += i < zeros ? '0' : digits[i - zeros];
    }
    return true;
}

}  // namespace

std::string FormatNumber(double value, std::string_view picture) {
    if (!std::isfinite(value)) return PlainDigits(value, 15);
    const std::size_t point = picture.find('.');
    const int decimals = point == std::string_view::npos ? 0 : static_cast<int>(picture.size() - point - 1);
    std::string text;
    if (FormatPlainly(value, decimals, text)) return text;

    // The 15 digits d.dddd...e+xx, then rounding by hand: half away from zero on what is shown there.
    std::array<char, 40> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::fabs(value),
                                      std::chars_format::scientific, 14);
    std::string digits(1, buffer[0]);
    digits.append(buffer.data() + 2, 14);
    int exponent = 0;
    const char* exponentText = buffer.data() + 17;
    if (*exponentText == '+') ++exponentText;
    std::from_chars(exponentText, result.ptr, exponent);

    const int kept = exponent + 1 + decimals;  // digits that stand before the cut
    bool up = false;
    if (kept < 15) {
        up = kept >= 0 && digits[static_cast<std::size_t>(kept)] >= '5';
        digits.resize(static_cast<std::size_t>(kept < 0 ? 0 : kept));
    } else {
        digits.append(static_cast<std::size_t>(kept - 15), '0');
    }
    if (kept <= 0) digits.clear();
    // `digits` is now the whole number value * 10^decimals.
    if (up) {
        std::size_t i = digits.size();
        while (i > 0 && digits[i - 1] == '9') digits[--i] = '0';
        if (i > 0) {
            ++digits[i - 1];
        } else {
            digits.insert(digits.begin(), '1');
        }
    }
    if (static_cast<int>(digits.size()) <= decimals)
        digits.insert(0, static_cast<std::size_t>(decimals + 1) - digits.size(), '0');
    const bool zero = digits.find_first_not_of('0') == std::string::npos;
    if (value < 0 && !zero) text += '-';
    text.append(digits, 0, digits.size() - static_cast<std::size_t>(decimals));
    if (decimals > 0) {
        text += WrittenDecimal();
        text.append(digits, digits.size() - static_cast<std::size_t>(decimals), std::string::npos);
    }
    return text;
}

PointInTexts::PointInTexts() {
    ++WrittenNumbers.Points;
}

PointInTexts::~PointInTexts() {
    --WrittenNumbers.Points;
}

char WrittenDecimal() {
    return WrittenNumbers.Points > 0 ? '.' : SystemDecimal();
}

double Int(double value) {
    return std::floor(value);
}

namespace {

template <class Whole>
Whole ToWhole(double value, std::string_view what) {
    const double whole = std::nearbyint(value);  // the default rounding mode is half to even
    const bool fits = whole >= static_cast<double>(std::numeric_limits<Whole>::min()) &&
                      whole <= static_cast<double>(std::numeric_limits<Whole>::max());
    if (!fits) throw PlatformError{std::string(what) + ": " + PlainText(value) + " is out of range"};
    return static_cast<Whole>(whole);
}

}  // namespace

std::int16_t ToInt16(double value, std::string_view what) {
    return ToWhole<std::int16_t>(value, what);
}
std::int32_t ToInt32(double value, std::string_view what) {
    return ToWhole<std::int32_t>(value, what);
}

}  // namespace corvinade::core
