// Text clouds that are tables: what the reader of tables makes of them.
#pragma once

#include <optional>
#include <string>
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

// Is the text of `path` something that the reader of plain points takes otherwise than it is meant: is there
// a heading, or whatever else in front of the rows, a unit, a delimiter or an encoding that it does not know,
// are cells in quotes or names with blanks, or does the reader of tables refuse or doubt it? The decimal
// delimiter and commas of thousands are left to the other reader, which asks about the one and warns of the
// others. Looks at the first MiB. The columns as in --columns; nothing where it is a plain one, or no table.
std::optional<std::string> ColumnsOfTableAlone(const std::string& path, const CloudWish& wish);

}  // namespace corvinade::import
