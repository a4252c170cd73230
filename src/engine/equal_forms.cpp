// The job's result in the neatest of its equal forms.
#include "engine/equal_forms.h"

#include "core/job.h"
#include "core/notes.h"

namespace corvinade::engine {

namespace {

void TakeCopies() {
    Job.RotXCopy = Job.RotX;
    Job.RotYCopy = Job.RotY;
    Job.RotZCopy = Job.RotZ;
}

}  // namespace

void NiceRotSolOfFit(const FitModel& model, Matrix& Q) {
    Parameters parameters = ParametersOf(Job);
    const bool turns = TakeWholeTurnsOff(model, parameters);
    if (!TakeNicerRotation(model, parameters, Q) && !turns) return;
    PutParameters(parameters, Job);
    TakeCopies();
}

bool TakePositiveForm(const FitModel& model, Matrix& Q) {
    Parameters parameters = ParametersOf(Job);
    if (!TakePositiveForm(model, parameters, Q)) return false;
    PutParameters(parameters, Job);
    TakeCopies();
    AddNote(NoteCode::NearestForm,
            "The result with negative scales is shown in its equal form with positive scales");
    return true;
}

}  // namespace corvinade::engine
