// The adjustment of a network by distances, one iteration after the other: the coordinates of stations and
// object points are changed so that the distances computed from them agree with the measured ones, the sum of
// the squares of what is left being least. Six coordinates of three stations are held, since distances fix
// neither place nor direction.
#pragma once

#include <cstdint>
#include <functional>

#include "fit/arrays.h"
#include "fit/bundle_network.h"

namespace corvinade::fit {

// The steps of an iteration, in their order.
enum class BundleStage : std::uint8_t {
    Rows,        // A and l stand
    Transposed,  // likewise the transpose of A
    Weighted,    // ... and its product with the weights
    Normal,      // the normal matrix, its inverse is to come
    Inverted,
    RightSide,
    Solved,     // x
    Residuals,  // v
    Added       // the network has its new coordinates
};

enum class BundleStep {
    Whole,      // all steps were done, the network has the new coordinates
    OnALine,    // all stations are on one line; nothing was changed
    NotFinite,  // the new coordinates are beyond numbers; nothing was changed
    Ended       // `GoOn` has said so; nothing was changed
};

// Who hears an iteration. Either may be unset.
struct BundleStepListener {
    std::function<void(BundleStage)> Heard;  // a step is done
    std::function<bool()> GoOn;              // again and again within a long step; false ends the iteration
};

// The rows of `A` and `l`, measured minus computed distance, from the present coordinates. A distance whose
// point was not found, or whose points coincide, so that it has no direction, leaves a row of zeros.
void AMatrix(const BundleNetwork& network, BundleWork& work);

// Chooses the six coordinates that are held and fills `Unknown`: all of station 1; of the next station that
// does not coincide with it the two that run across the line to it most; of the next station off this line
// the one that runs across the plane of the three most. What is 0 but for the rounding of coordinates counts
// as 0. False when there are no such stations.
bool HoldDatum(const BundleNetwork& network, BundleWork& work);

// N = A' P A with all weights 1, from the six elements of each row, put into Qxx; every element is the sum of
// its products in the order of the distances, as the product of the whole matrices has it.
void NormalMatrix(int stations, BundleWork& work);

// One iteration: A, datum, N, its inverse, x, v, and the new coordinates.
BundleStep BundleIteration(BundleNetwork& network, BundleWork& work, const BundleStepListener& listener);

// Measure of accuracy of a distance: sqrt([vv] / (n - 1)) with n distances, mm; 0 for fewer than two.
double BundleS0(const BundleWork& work);

// Accuracy of the coordinate of a column, mm; nothing for one that was held or is open.
std::optional<double> BundleAccuracy(const BundleWork& work, int column);

}  // namespace corvinade::fit
