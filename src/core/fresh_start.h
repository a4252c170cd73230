// Every record with mutable state stands in one table, and so does every window; this gives each its start
// value, for a program that starts and for every test.
#pragma once

#include "core/rooms.h"

namespace corvinade::core {

void FreshStart();

}  // namespace corvinade::core
