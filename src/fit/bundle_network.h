// A network of stations and object points, and the distances between them: all that its adjustment knows.
#pragma once

#include <optional>
#include <vector>

#include "fit/arrays.h"

namespace corvinade::fit {

struct BundleNetwork {
    Matrix StationXYZ, ObjectXYZ;  // (1 to n, 1 to 3), mm
    Column DistanceValue{0};       // mm, from 1

    int Stations() const { return StationXYZ.Rows > 0 ? StationXYZ.Rows : 0; }
};

// Which object points take part, and between which points each distance is.
struct BundleChoice {
    std::vector<int> UsedObject{0};  // by number of an object point in use its number in the network, from 1
    // The station of each distance and its object point, by number among those in use; 0 = it has none, or
    // one that is not in use, and takes no part.
    std::vector<int> StationOf{0}, ObjectOf{0};
};

// A row of `A` has six elements: the direction from the object point to the station in the columns of the
// station, its opposite in those of the object point. A row without a station is zero.
struct DistanceRow {
    int Station = 0, Object = 0;  // numbers among the stations and among the object points in use
    double Direction[3] = {};
};

// What an adjustment works with. Columns are counted from 1, three a station and then three an object point
// in use; `Unknown` says which of them float.
struct BundleWork {
    std::vector<int> UsedObject{0};  // as in BundleChoice
    int step = 1;                    // every step-th object point of the network is in use
    int nUnknown = 0;
    std::vector<DistanceRow> A{{}};  // per distance, from 1
    Column l{0}, x{0}, v{0};         // mm; l and v per distance, x per unknown
    std::vector<int> Unknown{0};     // by column its number among the unknowns; 0 = held
    Matrix Qxx;                      // (1 to nUnknown, 1 to nUnknown)
    double BiggestX = 0;             // mm, biggest absolute x of the iteration
    double SumV = 0, SumVV = 0;      // of |v| in mm and v^2 in mm^2
    // Of the last whole iteration: the diagonal of Qxx by column, empty for one that was held.
    std::vector<std::optional<double>> Cofactor{{}};
    int OpenMoves = 0;       // how many independent moves of coordinates change no distance
    std::vector<bool> Open;  // by column: the distances leave it open; empty as long as unknown
    int Iterations = 0;      // whole ones
    std::vector<int> StationOf{0}, ObjectOf{0};  // as in BundleChoice
};

// Sizes everything that does not change from iteration to iteration.
BundleWork BeginBundle(int stations, BundleChoice choice);

}  // namespace corvinade::fit
