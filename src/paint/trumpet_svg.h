// The trumpet plot as SVG.
#pragma once

#include <string>

#include "analysis/distance_pairs.h"
#include "analysis/trumpet_plot.h"
#include "core/rooms.h"

namespace corvinade::paint {

// An SVG document in light or dark as its reader has it: axes with their units, and a point a pair. Pairs
// that fall on one place are drawn once. Where they are few, each names its pair under the mouse. Reads Job
// (names and units) and Units.
//   plot         its size and its axes
//   notAllPairs  said in the picture: pairs may lie beyond the axes, which were never found for all of them
std::string TrumpetSvg(const DistancePoints& points, const std::string& title, const TrumpetPlot& plot,
                       bool notAllPairs = false);

}  // namespace corvinade::paint
