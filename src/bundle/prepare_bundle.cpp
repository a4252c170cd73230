// Which points of a network are adjusted, and between which of them its distances are.
#include "bundle/prepare_bundle.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "core/numbers.h"
#include "core/platform.h"
#include "fit/require.h"

namespace corvinade::bundle {

namespace {

constexpr std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// Numbers of names; of several equal ones the first counts.
using Numbers = std::unordered_map<std::string_view, int>;

// Whether the lists hold what the counts say; records can be written by name, one by one.
bool ListsHoldTheCounts(const BundleRecord& network) {
    const auto holds = [](std::int32_t count, std::size_t elements) {
        return count >= 0 && At(count) < elements;
    };
    const auto rows = [](const Matrix& matrix) { return At(std::max(matrix.Rows, 0)) + 1; };
    return holds(network.nStations, std::min(network.StationName.size(), rows(network.Net.StationXYZ))) &&
           holds(network.nObjectPoints, std::min(network.ObjectName.size(), rows(network.Net.ObjectXYZ))) &&
           (network.nDistances == 0 ||
            holds(network.nDistances,
                  std::min({network.DistancePair[1].size(), network.DistancePair[2].size(),
                            network.Net.DistanceValue.size()})));
}

}  // namespace

BundleWork PrepareBundle(const BundleRecord& network, double percent) {
    Require(percent >= 1 && percent <= 100);
    if (!ListsHoldTheCounts(network))
        throw PlatformError{
            "The network's counts of stations, object points and distances do not fit its lists."};
    const int step = static_cast<int>(Int(100 / percent));
    const int used = static_cast<int>(Int(percent * network.nObjectPoints / 100));
    const int points = network.nStations + used;
    if (3 * points - 6 > kMostUnknowns)
        throw PlatformError{"The network has " + std::to_string(3 * points - 6) +
                            " unknown coordinates; there is room for " + std::to_string(kMostUnknowns) +
                            ". Take a smaller percentage of the object points."};
    Numbers stations, objects;
    BundleChoice choice;
    for (int i = 1; i <= network.nStations; ++i) stations.emplace(network.StationName[At(i)], i);
    for (int i = 1; i <= used; ++i) {
        choice.UsedObject.push_back(1 + (i - 1) * step);
        objects.emplace(network.ObjectName[At(choice.UsedObject.back())], i);
    }
    const std::size_t distances = At(network.nDistances) + 1;
    choice.StationOf.resize(distances);
    choice.ObjectOf.resize(distances);
    for (std::size_t k = 1; k < distances; ++k) {
        const auto station = stations.find(network.DistancePair[1][k]);
        const auto object = objects.find(network.DistancePair[2][k]);
        if (station == stations.end() || object == objects.end()) continue;
        choice.StationOf[k] = station->second;
        choice.ObjectOf[k] = object->second;
    }
    BundleWork work = BeginBundle(network.nStations, std::move(choice));
    work.step = step;
    return work;
}

}  // namespace corvinade::bundle
