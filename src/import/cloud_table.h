// Text clouds that are tables: what the reader of tables makes of them.
#pragma once

#include <optional>
#include <string_view>

#include "core/rooms.h"
#include "import/cloud.h"
#include "import/cloud_columns.h"

namespace corvinade::import {

// The form of a file by its first lines, all of them whole. Nothing where they are no table of points, or one
// whose heading names what no table has (`headed`, and the reader of tables finds no heading). Throws
// PlatformError where the reader of tables refuses it.
std::optional<FoundForm> FormOfTable(const CloudTask& task, CloudKind kind, std::string_view lines,
                                     bool headed);

}  // namespace corvinade::import
