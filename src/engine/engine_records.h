// The engine's records by name.
#pragma once

#include "core/records.h"

std::span<const RecordEntry> EngineRecords();
