// The room's rows in the table of changes.
#pragma once

#include <span>

#include "core/changes.h"
#include "core/rooms.h"

namespace corvinade::engine {

std::span<const ChangeRow> EngineChanges();

}  // namespace corvinade::engine
