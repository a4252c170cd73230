// Points of a fit that come from clouds and other carriers, and from files that hold both systems.
#pragma once

#include <string>

#include "cli/fit_options.h"
#include "core/measurement_sigmas.h"
#include "core/point_set.h"
#include "core/rooms.h"
#include "import/cloud.h"

namespace corvinade::cli {

// A set of points that has been read ahead of the import.
struct CloudSet {
    bool Read = false;       // else the import reads it
    PointSet Points;         // mm
    PointAccuracies Sigmas;  // of each point; empty = it has none
    CloudFacts Facts;
};

// Reads START or TARGET where it is a carrier of points other than a table. "" or why it cannot be read.
// Names are the numbers of the points, time stamps, or those of the CgPoints. Of the control points of a map
// START takes the source coordinates and TARGET those of the map.
std::string ReadCloudSet(const FitOptions& options, bool isTarget, CloudSet& set);

// Both from the file of --pairs.
std::string ReadCloudPairs(const FitOptions& options, CloudSet& start, CloudSet& target);

}  // namespace corvinade::cli
