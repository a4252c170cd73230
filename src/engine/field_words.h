// What a field of a result says, in a sentence: for who asks "What is this?".
#pragma once

#include <string>

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::engine {

// Of a field of the calculation window; "" of any other control, and of one that is no result.
std::string WhatIs(const Control& control);

}  // namespace corvinade::engine
