// What cannot be meant of the distances of a network: between points that are not there, or at one place.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

#include "bundle/network.h"
#include "core/rooms.h"

namespace corvinade::bundle {

struct DistanceFaults {
    bool NotPositive = false;  // 0 or less, or no number at all
    bool Unknown = false;      // names a station or an object point that is not there; is left out
    bool Swapped = false;      // is unknown because the object point is named before the station
    bool OnePlace = false;     // between points at the same place, by the coordinates of now; is left out
};

class DistanceCheck {
public:
    // Of points with the same name the first counts. The network has all its points, and they stay where they
    // are as long as the check is used.
    explicit DistanceCheck(const BundleRecord& network);

    DistanceFaults Of(std::size_t distance) const;  // by its number, from 1
    // Is there a station and an object point of these names?
    bool AreNames(std::string_view station, std::string_view object) const;

private:
    using Numbers = std::unordered_map<std::string_view, int>;
    static Numbers NumbersOf(const std::vector<std::string>& names);

    const BundleRecord& network_;
    Numbers stations_, objects_;
};

// The names of a distance: "S1" to "P1", in quotation marks.
std::string PairText(const BundleRecord& network, std::size_t distance);

}  // namespace corvinade::bundle
