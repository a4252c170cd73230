// The room's rows in the table of changes.
#pragma once

#include <span>

#include "core/changes.h"

std::span<const ChangeRow> AnalysisChanges();
