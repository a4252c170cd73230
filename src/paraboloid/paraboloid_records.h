// The records of the fit to a shape by name.
#pragma once

#include "core/records.h"

std::span<const RecordEntry> ParaboloidRecords();
