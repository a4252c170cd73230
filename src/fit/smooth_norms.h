// The optimum of L1 and L-infinity along a smooth way: by a logarithmic barrier, whose minimum Newton's
// method follows until the barrier is nothing, with multipliers of the rows that go with it ("primal-dual
// interior point method"; Wright, SIAM 1997). Unlike exchanges of rows it knows how the residuals curve, so
// it comes to rest where fewer rows than unknowns hold the optimum.
#pragma once

#include <vector>

#include "fit/exact_place.h"

namespace corvinade::fit {

// What an optimum rests on: weights of the rows that cancel out in each unknown. Of L1 each is between -1
// and 1, of L-infinity the sum of their sizes is 1.
struct SmoothOptimum {
    std::vector<double> Weights;
    int Steps = 0;
    bool Ended = false;  // the barrier is nothing
};

// From the present parameters on, which are left at the place found. That may be no better than the start,
// for the way begins in the middle; the caller compares.
SmoothOptimum FollowLeastSum(ExactPlace& place, const MayGoOn& mayGoOn);
SmoothOptimum FollowLeastLargest(ExactPlace& place, const MayGoOn& mayGoOn);

// What no choice of y can be below, by weights as above; what they leave over in the unknowns is allowed for.
double BoundOfSum(const LinearRows& rows, const std::vector<double>& weights);
double BoundOfLargest(const LinearRows& rows, const std::vector<double>& weights);

}  // namespace corvinade::fit
