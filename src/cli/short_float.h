// 32-bit floats in JSON.
#pragma once

#include <array>
#include <charconv>

#include "core/rooms.h"

namespace corvinade::cli {

// The number with the fewest digits that is this float, as one writes it: 0.1 and not 0.10000000149011612.
inline double ShortFloat(float value) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    double number = 0;
    return std::from_chars(text.data(), end, number).ec == std::errc() ? number : static_cast<double>(value);
}

}  // namespace corvinade::cli
