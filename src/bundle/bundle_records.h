// The records of the bundle by name.
#pragma once

#include <span>

#include "core/records.h"
#include "core/rooms.h"

namespace corvinade::bundle {

std::span<const RecordEntry> BundleRecords();

}  // namespace corvinade::bundle
