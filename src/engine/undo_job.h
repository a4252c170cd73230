// Steps that replace the job whole, as an import and the change of direction do.
#pragma once

#include "core/rooms.h"
#include "engine/undo.h"

namespace corvinade::engine {

// The kept job and the one in hand change places, and all windows show it. A result comes back as it was,
// where nothing has been calculated since; else as one that is stored. Pictures of an import close.
void ChangePlaces(KeptJob& other, JobChange change);

// A step that stands on other points than those before it.
void KeepStepOfJob(UndoStep step);
// What has been replaced is too large to be kept: there are no steps any more, and the command says why.
void EndSteps();
// The steps that there are stand on the points of now.
void StandOnThisJob();

// The boxes and fields of the calculation window, nothing while it is closed; and the way back.
std::optional<ParameterChoices> ChoicesNow();
void PutChoices(const ParameterChoices& choices);

}  // namespace corvinade::engine
