// Whether the points of a calculation tell its parameters apart.
#pragma once

// How many of the floating parameters of the last calculation the points in use leave open: turned by any
// amount about a line that all points stand on, say, they fit as well. What the result holds for such
// parameters is arbitrary, and their sigmas are no measure. By the rank of the design matrix about the
// points' centres, at the result.
// 0 for the distance and the tool model, which are not looked at, and where no calculation stands.
int OpenParameters();
