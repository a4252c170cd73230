// The adjustment of a network from beginning to end, and what it hands on: two point files, the job made of
// them, and the texts of the result.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "bundle/network.h"
#include "bundle/prepare_bundle.h"
#include "core/rooms.h"
#include "fit/bundle_adjustment.h"

namespace corvinade::bundle {

inline constexpr double kWindowLimit = 1e-6;  // mm, in place of kBundleLimit for the copy of the window

struct BundleTelling {
    std::function<void(const char*)> Log;              // each step, in words
    std::function<void(const BundleWork&)> Iteration;  // each whole iteration
    std::function<bool()> Ours;                        // after each yield: may the work go on?
};

// The adjustment of fit/, heard by the program: it ends where Run.StopRequested is set. Yields once an
// iteration, and within long steps.
BundleEnd AdjustBundle(BundleRecord& network, BundleWork& work, double limit_mm,
                       const BundleTelling& telling);

// What the window shows of a step.
const char* BundleStageText(BundleStage stage);

// What a user is told of an end that is not the wanted one; "" for Converged, Stopped and Abandoned.
std::string BundleEndText(BundleEnd end, const BundleWork& work);

// Notes an end without convergence, of the file of the network: what is shown is not its best fit. The note
// of an adjustment of before goes.
void NoteBundleEnd(const BundleRecord& network, const BundleWork& work, BundleEnd end);

// What there is to say before an adjustment, in the file and in the choice of points; "" when there is
// nothing.
std::string BundleWarnings(const BundleRecord& network, const BundleWork& work);

// A percentage of object points from a text. Throws PlatformError when it is no number; nothing, with a
// message, when it is not 1 to 100.
std::optional<double> PercentageFromText(const std::string& text);
std::string CheckPercentage(double percent);  // "" or why it cannot be taken

// The stations and the object points in use, a line each: name, tab, X, tab, Y, tab, Z, in the present unit.
std::string NetworkText(const BundleRecord& network, const BundleWork& work);

// The same of an adjusted network. Where the distances leave a coordinate of any point open, a fifth field
// says of every point whether it is such a one: kMarkOfOpenPoint or kMarkOfFixedPoint.
std::string AdjustedText(const BundleRecord& network, const BundleWork& work);

// NetworkText with the accuracy of each coordinate behind them, "0" for one that was held, "open" for one
// that the distances leave open.
std::string ResultText(const BundleRecord& network, const BundleWork& work);

// The values of x and v of the last whole iteration, a line each.
std::string VectorsText(const BundleWork& work);

// "Iterations 1 Biggest x 0.5 [v] 2 [vv] 1" and a line end.
std::string IterationLine(const BundleWork& work);

inline constexpr const char* kBundleStartFile = "BündelMCS.txt";   // the adjusted network
inline constexpr const char* kBundleTargetFile = "BündelOCS.txt";  // the approximate network

// Writes a network's text as the file of this name in a folder, which is created where it is missing; gives
// its path. Throws PlatformError.
std::string WriteNetwork(const std::string& folder, const char* name, const std::string& text);

// Makes the job of the two files: their points are read and paired by name, what belonged to the points of
// before goes, and everything that shows points follows. A message tells what keeps it from that; the job is
// without valid data then. Throws PlatformError where a file cannot be read.
void TakeBundleAsJob(const std::string& startPath, const std::string& targetPath);

}  // namespace corvinade::bundle
