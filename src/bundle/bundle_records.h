// The records of the bundle by name.
#pragma once

#include <span>

#include "core/records.h"

std::span<const RecordEntry> BundleRecords();
