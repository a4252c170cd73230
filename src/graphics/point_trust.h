// What pictures show of the accuracy of points: the statistics of the last calculation, worked out once for
// it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/rooms.h"
#include "fit/adjustment_statistics.h"

namespace corvinade::graphics {

// Values of ScreenRecord::ColorBased that colour points by something else than their deviation.
inline constexpr const char* kByStandardized = "w";  // the largest of its three standardised residuals
inline constexpr const char* kByAccuracy = "a";      // sigma of the transformed point, x y z together, mm
bool ColoursByTrust(const std::string& colorBased);

// Null where there are none, of a job without calculation for instance.
const AdjustmentStatistics* StatisticsForPictures();

// What colours pair i in one of these two ways: 0 or more, NaN where it is not known.
double TrustOfPair(const std::string& colorBased, int i);

// The upper limit that a scale of such colours begins with: the critical value, the largest sigma; 0 where
// there is none.
double TrustLimit(const std::string& colorBased);

// The statistics that are kept, and what they are of.
struct PointTrustRecord {
    bool Known = false;
    std::uint64_t JobGeneration = 0, Started = 0, Stamp = 0;
    std::optional<AdjustmentStatistics> Of;
};
inline PointTrustRecord PointTrust;

}  // namespace corvinade::graphics
