// Every record with mutable state stands in one table; this gives each its start value, so that every
// test begins in a new program.
#pragma once

#include "core/rooms.h"

namespace corvinade::core {

void FreshStart();

}  // namespace corvinade::core
