// The result of a fit in all forms of rotation, in the table and in JSON.
#pragma once

#include <iosfwd>
#include <nlohmann/json_fwd.hpp>

#include "cli/fit_style.h"
#include "core/rooms.h"
#include "engine/solution_details.h"

namespace corvinade::cli {

// A triple of angles that does not give the rotation is left out ("-" in the table, null in JSON): in gimbal
// lock the conversions of the engine may find none.
void WriteDetails(const SolutionDetails& details, const Style& style, std::ostream& out);
nlohmann::ordered_json DetailsJson(const SolutionDetails& details);

// A matrix as three rows of three numbers.
nlohmann::ordered_json Rows(const Mat3& matrix);

}  // namespace corvinade::cli
