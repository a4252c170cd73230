// Which points of two sets are the same, by where they lie. Lengths in mm. Any number of threads may work at
// once.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "corvinade/error.h"
#include "corvinade/points.h"

namespace corvinade {

inline constexpr std::ptrdiff_t kNoPartner = -1;

// For sets in one system: each point of `start`, in their order, takes the nearest point of `target` that is
// still free and nearer than `tolerance`. Gives the place of the partner of each, from 0, or kNoPartner.
// Throws InvalidInput where a set has no points, coordinates are infinite or no number, or the tolerance is
// not above 0; Stopped where `stopIsWanted`, asked now and then, says so.
CORVINADE_API std::vector<std::ptrdiff_t> MatchByCoordinates(const Points& start, const Points& target,
                                                             double tolerance,
                                                             const std::function<bool()>& stopIsWanted = {});

// For sets in any two systems, as `corvinade-cli fit --match distance` does it: three distances between
// points of `start` that occur in `target` within the tolerance, and are clear of all others there, give a
// rigid transformation, and under it the points pair as above. No point has a partner where there are no such
// three distances. Throws as above, and where the distances of so many points do not fit into memory.
CORVINADE_API std::vector<std::ptrdiff_t> MatchByDistances(const Points& start, const Points& target,
                                                           double tolerance,
                                                           const std::function<bool()>& stopIsWanted = {});

}  // namespace corvinade
