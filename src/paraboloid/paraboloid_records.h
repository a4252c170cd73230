// The records of the fit to a shape by name.
#pragma once

#include "core/records.h"
#include "core/rooms.h"

namespace corvinade::paraboloid {

std::span<const RecordEntry> ParaboloidRecords();

}  // namespace corvinade::paraboloid
