// Places beside the one where the passes of the fit to a shape rest. Along a table of few rows the sum of
// squared distances has many places of rest, since points hang between its kinks, and the one where the
// passes end is a matter of where they began.
#pragma once

#include "fit/shape_run.h"

namespace corvinade::fit {

struct BesideSearch {
    bool Better = false;  // the parameters are those of a place with a lesser sum than before
    // There are places of rest beside the best one whose sum is hardly larger; or the way to the best one was
    // found too seldom to be sure that it is the best; or the surface that bends evenly along the table has
    // its least place farther off than the mean error explains.
    bool Doubt = false;
};

// From the present parameters: Gauss-Newton steps on the distances from the segments of the
// table, from the place itself, from that of the surface that bends evenly along the table, and from places
// beside it along the directions that the shape holds, each by so much as changes the sum by about itself.
// Where all of these come back to one place that is all; otherwise the search goes on from the best of them,
// and from some sixty more, which are the same each time; of more than some hundreds of points from fewer.
// A sum counts as lesser where it is so by more than a hundredth of the squared mean error, and a millionth
// of itself: what is less moves no parameter by more than a tenth of its sigma. The rotation about the axis
// takes no part, and scales change by a tenth at most, since one of 0 fits any shape.
// Asks at each sum whether it is to go on. Where it is stopped, the parameters are as before, and so they are
// where nothing is better, to the last bit.
//   Lost  the parameters are of no use
PassEnd SearchBeside(ShapeRun& run, BesideSearch& found);

}  // namespace corvinade::fit
