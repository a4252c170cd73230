// What follows a change in the points as they are paired.
#pragma once

#include <span>

#include "core/changes.h"
#include "core/rooms.h"

namespace corvinade::import {

// The room's rows in the table of changes.
std::span<const ChangeRow> ImportChanges();

}  // namespace corvinade::import
