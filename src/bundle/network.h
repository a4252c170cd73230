// The network in memory: stations, object points and the distances measured between them.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "core/arrays.h"
#include "core/rooms.h"
#include "fit/bundle_network.h"

namespace corvinade::bundle {

struct BundleRecord {
    std::string BundleFilePath;
    std::int16_t nStations = 0, nObjectPoints = 0;
    std::int32_t nDistances = 0;
    std::vector<std::string> StationName{""}, ObjectName{""};  // from 1
    BundleNetwork Net;                                         // coordinates and distances
    // Per distance the names of its station and its object point, from 1; elements 1 and 2 are in use.
    std::array<std::vector<std::string>, 3> DistancePair;
    // Fields that should be numbers and are none, or not to their end, and where the first of them is.
    std::int64_t NoNumbers = 0;
    std::string FirstNoNumber;  // "line 7, "one""

    std::uint64_t Generation = 0;  // counted up when a file is read and when the window opens

    bool IsEmpty() const { return nStations == 0 && nObjectPoints == 0 && nDistances == 0; }
};
inline BundleRecord Bundle;

}  // namespace corvinade::bundle
