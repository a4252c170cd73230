// A result as `fit --json` has printed it, in the place of a job.
#pragma once

#include <string>
#include <string_view>

#include "core/rooms.h"

namespace corvinade::cli {

// Do these bytes begin like JSON? No job file does.
bool LooksLikeResult(std::string_view bytes);

// Reads a result: the job is then one with its parameters, its units, its marks (not converged, parameters
// left open, a collapsed scale) and, as its only points, the transformed start points without a partner.
// Throws PlatformError, the job untouched, that names the file and the line and column, or the member, where
// something is missing, stands twice, is of another kind, or does not go with the rest: the matrix has to be
// that of the parameters.
//   hasPoints  false where the points were left out (--no-points)
void ReadResult(std::string_view bytes, const std::string& path, bool& hasPoints);

}  // namespace corvinade::cli
