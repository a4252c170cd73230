// Digits of a number in a text that its value does not keep.
#include "core/lost_digits.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "core/numbers.h"
#include "core/text.h"

namespace corvinade::core {

namespace {

// A number that a program wrote of a 64-bit float, with more digits than tell it from its neighbours: the
// float gives the same digits again.
bool GivesTheseDigits(double value, const std::string& digits) {
    constexpr std::size_t kMostAsked = 60;
    if (!std::isfinite(value) || value == 0 || digits.size() > kMostAsked) return false;
    char text[kMostAsked + 20];
    const auto end = std::to_chars(text, text + sizeof text, std::fabs(value), std::chars_format::scientific,
                                   static_cast<int>(digits.size()) - 1);
    std::string given;
    for (const char* c = text; c != end.ptr && *c != 'e'; ++c)
        if (*c != '.') given += *c;
    return given == digits;
}

}  // namespace

std::string LostDigits(std::string_view field) {
    const auto named = [&field] { return "The number \"" + Printable(field) + "\""; };
    // As many a 64-bit float gives back, whatever the number.
    constexpr std::size_t kMostDigits = 17;
    const std::size_t exponent = field.find_first_of("eE");
    if (field.size() <= kMostDigits && exponent == std::string_view::npos) return "";
    std::string digits;
    for (const char c : field.substr(0, exponent))
        if (c >= '0' && c <= '9' && !(digits.empty() && c == '0')) digits += c;
    if (digits.empty()) return "";
    while (digits.ends_with('0')) digits.pop_back();
    std::string plain(field);
    std::replace(plain.begin(), plain.end(), ',', '.');
    if (digits.size() > kMostDigits)
        return GivesTheseDigits(Val(plain), digits)
                   ? ""
                   : named() + " has more digits than are kept, which are " + std::to_string(kMostDigits);
    if (Val(plain) != 0) return "";
    return named() + " is smaller than any that can be kept and counts as 0";
}

}  // namespace corvinade::core
