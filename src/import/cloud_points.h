// All points of a cloud, or of another carrier, as the two systems of an import take them.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "core/measurement_sigmas.h"
#include "core/point_set.h"
#include "core/rooms.h"
#include "import/cloud.h"

namespace corvinade::import {

// By the first bytes of a file and its extension; by the latter alone where it cannot be read or is a pipe.
CloudKind KindOfFile(const std::string& path);

// Is it a carrier that says by itself what its columns are? Other text is a table.
bool IsCarrier(CloudKind kind);

// How the points of a file are wanted.
struct CloudReading {
    CloudWish Wish;
    bool NamesOnce = false;        // two points of one name are refused: pairs are found by names
    double UsualUnitsPerMm = 1;    // where the file does not name its unit
    std::function<bool()> GoesOn;  // asked now and then; false ends the reading. Unset = nobody is
};

struct CloudSet {
    PointSet Points;         // mm
    PointAccuracies Sigmas;  // of each point, mm; empty = it has none
    CloudFacts Facts;
};

// The points of one system. Their names are their numbers, time stamps, or those of the CgPoints. Of the
// control points of a map START takes the source coordinates, and TARGET those of the map. Nothing where
// GoesOn has ended it. Throws PlatformError as RunCloud does.
std::optional<CloudSet> ReadCloud(const std::string& path, CloudReading reading, bool isTarget);

// Both systems of a file that holds them, point by point.
struct CloudPairs {
    CloudSet Start, Target;
};
CloudPairs ReadCloudPairs(const std::string& path, CloudReading reading);

}  // namespace corvinade::import
