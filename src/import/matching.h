// Which points of the two sets are the same: they are brought to the front of both sets, pair i at
// position i with equal names, and the working arrays are filled.
#pragma once

#include "core/arrays.h"
#include "core/measurement_sigmas.h"
#include "core/rooms.h"

namespace corvinade::import {

// What the input dialog chooses for the matching.
struct MatchingOptions {
    bool CheckRenameMCS = false;     // a paired start point takes the name of its target point
    bool CheckRenameOCS = false;     // a paired target point takes the name of its start point
    bool CheckUseOnlyFirst = false;  // the search by distances uses the first target points alone
    double TextMaxOCS = 0;           // how many of them; cut to a whole number
};

// Accuracies of the points that an import has under way, of which the job knows nothing before it is done.
// Those of a set are of as many points as that has names, or of none. Sorting and pairing take them along.
struct PairedSigmas {
    PointAccuracies Start, Target;
};
inline PairedSigmas SigmasUnderWay;

// Sorts both sets by name and brings the points of equal name to the front. A name that occurs twice in
// a set stops it: message, Run.ImportFailed. That is set too where a large import must end (long_import.h).
void MCS_OCS_aufbereiten();

// Brings the points of equal name to the front of both sets, in the order of their names. Each set has
// no name twice. Counts are not touched (GetInfoFromData).
void SortForIdentPts();

// Counts anew: every point of both sets, and as pairs the positions at which both have the same name.
void GetInfoFromData();

// Makes the transformed points those of the start, and sizes RVec* and UseFlags (whose content stays) by the
// pairs. A job that the calculation window has marked as switched is switched again. An import that is
// cancelled meanwhile leaves all of them as they were.
void IdentischePkte_Neu();

// Pairs each start point, in their order, with the nearest target point that is still free and nearer
// than Run.Etta once the start point is transformed with the parameters of the job. Paired points get
// equal names as the options say; Job.Pairs() counts them. The points stay where they are, so that the count
// is that alone: MCS_OCS_aufbereiten brings the pairs to the front by their names. A search that takes long
// shows its progress and yields. Run.StopRequested, cleared first, ends it without a pair; so do points that
// replace these ones meanwhile, with Run.ImportFailed and nothing written.
void PärchenSuchen(const MatchingOptions& options);

}  // namespace corvinade::import
