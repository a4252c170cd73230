// The direction of the job: which of the two point sets is the start.
#include <algorithm>

#include "core/changes.h"
#include "core/controller.h"
#include "core/job.h"
#include "core/measurement_sigmas.h"
#include "core/run.h"
#include "engine/calculation_window.h"
#include "engine/undo.h"

namespace corvinade::engine {

namespace {

FormTrafoBerechnung& w = TrafoWindow;

constexpr int kBlack = 0, kRed = 12;  // of the sixteen colours

}  // namespace

bool DirectionSwitched() {
    return !IsTrue(Job.DirectionMCStoOCS);
}

void ShowDirection(const char* arrow) {
    const bool switched = DirectionSwitched();
    w.LabelDirection.Text = std::string(switched ? "OCS" : "MCS") + arrow + (switched ? "MCS" : "OCS");
    w.LabelDirection.ForeColor = QbColor(switched ? kRed : kBlack);
    w.BtnSwitchMcsOcs.BackColor = switched ? QbColor(kRed) : kSystemColour;
    w.LabelDirection.ToolTip =
        switched ? Job.NameOCS + " => " + Job.NameMCS : Job.NameMCS + " => " + Job.NameOCS;
}

void FormTrafoBerechnung::BtnSwitchMcsOcs_Click() {
    JobStep step;
    {
        const BusyPointer busy;
        Job.DirectionMCStoOCS = ToFlag(DirectionSwitched());
        ShowDirection(" -> ");
    }
    MCS_OCS();
    step.Keep("Direction", JobChange::Direction);
    Changed(What::Coordinates | What::Pairs);
}

// The pairs stand first in both sets, so the use flags stay those of their points. The names of the two
// systems stay where they are.
void MCS_OCS() {
    ++Run.JobGeneration;
    std::swap(Job.Start, Job.Target);
    SwapSigmas(Job);
    // As long as the counts say.
    Job.Start.Resize(Job.Start.Count());
    Job.Target.Resize(Job.Target.Count());
    // As after an import, the transformed points are the start points until they are calculated.
    Job.Transformed = Job.Start;
    // The parameters are those of the other direction until the next calculation.
    Run.TrafoValid = Run.CalcDone = kFalse;
    Run.JobDirty = kTrue;
    Changed(What::Counts | What::State);
}

}  // namespace corvinade::engine
