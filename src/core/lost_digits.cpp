// Digits of a number in a text that its value does not keep.
#include "core/lost_digits.h"

#include <algorithm>

#include "core/numbers.h"
#include "core/text.h"

namespace corvinade::core {

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
    if (digits.size() > kMostDigits)
        return named() + " has more digits than are kept, which are " + std::to_string(kMostDigits);
    std::string plain(field);
    std::replace(plain.begin(), plain.end(), ',', '.');
    if (Val(plain) != 0) return "";
    return named() + " is smaller than any that can be kept and counts as 0";
}

}  // namespace corvinade::core
