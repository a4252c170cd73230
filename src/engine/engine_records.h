// The engine's records by name.
#pragma once

#include "core/records.h"
#include "core/rooms.h"

namespace corvinade::engine {

std::span<const RecordEntry> EngineRecords();

}  // namespace corvinade::engine
