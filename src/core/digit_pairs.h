// The two digits of each number below 100, "00" to "99", for numbers that are written pair by pair.
#pragma once

#include <array>
#include <cstddef>

#include "core/rooms.h"

namespace corvinade::core {

inline constexpr std::array<char, 200> kDigitPairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

}  // namespace corvinade::core
