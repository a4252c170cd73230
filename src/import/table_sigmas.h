// The standard deviations that stand in a table beside its points.
#pragma once

#include <string>

#include "core/measurement_sigmas.h"
#include "core/rooms.h"
#include "import/table_reader.h"

namespace corvinade::import {

// Those of each point of a table that has been read, mm; without any where it has no such columns. An axis
// that has none beside others that have is free of errors, which is added to the table's notes with `path`.
PointAccuracies SigmasOfTable(TableResult& table, const std::string& path);

}  // namespace corvinade::import
