// The trumpet plot as a file of its own, SVG or PNG.
#pragma once

#include <string>

#include "analysis/distance_pairs.h"
#include "analysis/trumpet_plot.h"
#include "core/rooms.h"

namespace corvinade::paint {

// "" or why a plot cannot be written under this name: it ends in .svg or .png, in any case of letters.
std::string CheckTrumpetFile(const std::string& path);

// What the plot is of, in words.
std::string TrumpetTitle(const DistancePoints& points, bool withResult);

// A plot of its usual size, with axes for all pairs and room for their numbers. Reads Units.
TrumpetPlot WholeTrumpetPlot(const DistancePoints& points);
// The same in another size, pixels.
TrumpetPlot SizedTrumpetPlot(const DistancePoints& points, int width, int height);

// The plot as a PNG file: black on white, two pixels of the file for one of the plot, as many as fit into
// 20 million for a large one. Reads Job (names and units) and Units. Throws PlatformError where there is no
// memory for it.
//   notAllPairs  said in the picture, as in TrumpetSvg
//   scale        so many pixels of the file instead; 0 = as told
std::string TrumpetPng(const DistancePoints& points, const std::string& title, const TrumpetPlot& plot,
                       bool notAllPairs = false, double scale = 0);

// The plot as a page of its own, as the bytes of a PDF file.
std::string TrumpetPage(const DistancePoints& points, const std::string& title, const TrumpetPlot& plot,
                        double width_mm, double height_mm);

// Writes the one or the other, by the end of the path. Throws PlatformError as WriteFile.
void WriteTrumpetPicture(const std::string& path, const DistancePoints& points, const std::string& title,
                         const TrumpetPlot& plot, bool notAllPairs = false);

}  // namespace corvinade::paint
