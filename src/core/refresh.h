// What a room needs done by one above it. These few procedures may be called from any room; each stands in
// the namespace of the room that defines it, and nothing else calls upwards. What only shows a change is no
// call: it is a row in the table of core/changes.h.
#pragma once

#include <string>

#include "core/rooms.h"

namespace corvinade::import {

struct TargetFile;

}  // namespace corvinade::import

namespace corvinade::paraboloid {

void EinlesenParaboloidData(const import::TargetFile& file);  // reads the shape file of an import
void ParaboloidNearestTargets();  // each start point's nearest point of the shape becomes its target
void CalculateParaboloid();  // the passes of a calculation of a job with a shape, and its Monte Carlo runs

}  // namespace corvinade::paraboloid

namespace corvinade::bundle {

void ReadBundleFile(const std::string& path);  // the reader behind the bundle file of the input dialog

}  // namespace corvinade::bundle
