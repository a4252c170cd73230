// Digits of a number in a text that its value does not keep.
#pragma once

#include <string>
#include <string_view>

#include "core/rooms.h"

namespace corvinade::core {

// What of a number does not fit into a 64-bit float, as the text of a note: digits beyond the 17 that are
// kept, or all of them where it is too small. "" for any other field, that of a float which was written with
// more digits than it takes among them.
std::string LostDigits(std::string_view field);

}  // namespace corvinade::core
