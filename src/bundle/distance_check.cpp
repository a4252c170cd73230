// What cannot be meant of the distances of a network.
#include "bundle/distance_check.h"

#include <algorithm>

#include "core/text.h"

namespace corvinade::bundle {

DistanceCheck::DistanceCheck(const BundleRecord& network)
    : network_(network), stations_(NumbersOf(network.StationName)), objects_(NumbersOf(network.ObjectName)) {}

DistanceCheck::Numbers DistanceCheck::NumbersOf(const std::vector<std::string>& names) {
    Numbers numbers;
    for (std::size_t i = 1; i < names.size(); ++i) numbers.emplace(names[i], static_cast<int>(i));
    return numbers;
}

DistanceFaults DistanceCheck::Of(std::size_t distance) const {
    const std::string& from = network_.DistancePair[1][distance];
    const std::string& to = network_.DistancePair[2][distance];
    const auto station = stations_.find(from), object = objects_.find(to);
    DistanceFaults faults;
    faults.NotPositive = !(network_.Net.DistanceValue[distance] > 0);
    faults.Unknown = station == stations_.end() || object == objects_.end();
    if (faults.Unknown) {
        faults.Swapped = AreNames(to, from);
    } else {
        const double *a = network_.Net.StationXYZ.Row(station->second),
                     *b = network_.Net.ObjectXYZ.Row(object->second);
        faults.OnePlace = std::equal(a + 1, a + 4, b + 1);
    }
    return faults;
}

bool DistanceCheck::AreNames(std::string_view station, std::string_view object) const {
    return stations_.count(station) != 0 && objects_.count(object) != 0;
}

std::string PairText(const BundleRecord& network, std::size_t distance) {
    return "\"" + Printable(network.DistancePair[1][distance]) + "\" to \"" +
           Printable(network.DistancePair[2][distance]) + "\"";
}

}  // namespace corvinade::bundle
