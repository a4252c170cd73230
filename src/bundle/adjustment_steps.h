// The adjustment of a network by distances, one iteration after the other: the coordinates of stations and
// object points are changed so that the distances computed from them agree with the measured ones, the sum of
// the squares of what is left being least. Six coordinates of three stations are held, since distances fix
// neither place nor direction.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "bundle/network.h"
#include "core/arrays.h"
#include "core/rooms.h"

namespace corvinade::bundle {

// A row of `A` has six elements: the direction from the object point to the station in the columns of the
// station, its opposite in those of the object point. A row without a station is zero.
struct DistanceRow {
    int Station = 0, Object = 0;  // numbers among the stations and among the object points in use
    double Direction[3] = {};
};

// What an adjustment works with. Columns are counted from 1, three a station and then three an object point
// in use; `Unknown` says which of them float.
struct BundleWork {
    std::vector<int> UsedObject{0};  // by number of an object point in use its number in the network, from 1
    int step = 1;
    int nUnknown = 0;
    std::vector<DistanceRow> A{{}};  // per distance, from 1
    Column l{0}, x{0}, v{0};         // mm; l and v per distance, x per unknown
    std::vector<int> Unknown{0};     // by column its number among the unknowns; 0 = held
    Matrix Qxx;                      // (1 to nUnknown, 1 to nUnknown)
    double BiggestX = 0;             // mm, biggest absolute x of the iteration
    double SumV = 0, SumVV = 0;      // of |v| in mm and v^2 in mm^2
    // Of the last whole iteration: the diagonal of Qxx by column, empty for one that was held.
    std::vector<TaggedValue> Cofactor{{}};
    int OpenMoves = 0;       // how many independent moves of coordinates change no distance
    std::vector<bool> Open;  // by column: the distances leave it open; empty as long as unknown
    int Iterations = 0;      // whole ones
    std::vector<int> StationOf{0}, ObjectOf{0};  // the points of each distance; 0 = not found or not in use
};

enum class BundleStep {
    Whole,      // all steps were done, the network has the new coordinates
    OnALine,    // all stations are on one line; nothing was changed
    NotFinite,  // the new coordinates are beyond numbers; nothing was changed
    Ended       // `GoOn` has said so; nothing was changed
};

// What an iteration tells and asks while it runs. Either may be unset.
struct BundleListener {
    std::function<void(const char*)> Log;  // the name of a step
    std::function<bool()> GoOn;            // again and again within a long step; false ends the iteration
};

// Percent of the object points to 1st, 1 + step-th, ... with step = Int(100 / percent) and
// Int(percent n / 100) of them, and the points of each distance. Sizes everything that does not change from
// iteration to iteration.
//   percent   1 to 100
// Throws PlatformError where the unknowns are more than a matrix is held for, naming how many there may be.
BundleWork PrepareBundle(const BundleRecord& network, double percent);
inline constexpr int kMostUnknowns = 12000;  // a matrix of 1.2 GB

// The rows of `A` and `l`, measured minus computed distance, from the present coordinates. A distance whose
// point was not found, or whose points coincide, so that it has no direction, leaves a row of zeros.
void AMatrix(const BundleRecord& network, BundleWork& work);

// Chooses the six coordinates that are held and fills `Unknown`: all of station 1; of the next station that
// does not coincide with it the two that run across the line to it most; of the next station off this line
// the one that runs across the plane of the three most. What is 0 but for the rounding of coordinates counts
// as 0. False when there are no such stations.
bool HoldDatum(const BundleRecord& network, BundleWork& work);

// N = A' P A with all weights 1, from the six elements of each row, put into Qxx; every element is the sum of
// its products in the order of the distances, as the product of the whole matrices has it.
void NormalMatrix(int stations, BundleWork& work);

// One iteration: A, datum, N, its inverse, x, v, and the new coordinates.
BundleStep BundleIteration(BundleRecord& network, BundleWork& work, const BundleListener& listener);

// Measure of accuracy of a distance: sqrt([vv] / (n - 1)) with n distances, mm; 0 for fewer than two.
double BundleS0(const BundleRecord& network, const BundleWork& work);

}  // namespace corvinade::bundle
