// Points and notes of the program as the library hands them on.
#pragma once

#include "corvinade/point_file.h"
//
#include <vector>

#include "core/measurement_sigmas.h"
#include "core/notes.h"
#include "core/point_set.h"

namespace corvinade::library {

NamedPoints NamedPointsOf(const core::PointSet& points, const core::PointAccuracies& sigmas);
std::vector<FileNote> FileNotesOf(const std::vector<core::Note>& notes);

}  // namespace corvinade::library
