// The trumpet plot as a picture of its own.
#pragma once

#include <string>

#include "analysis/distance_pairs.h"

// An SVG document in light or dark as its reader has it: axes with their units, and a point a pair. Pairs
// that fall on one place are drawn once. Where they are few, each names its pair under the mouse. Reads Job
// (names and units) and Units.
std::string TrumpetSvg(const DistancePoints& points, const std::string& title);
