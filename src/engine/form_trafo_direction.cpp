// The direction of the job: which of the two point sets is the start.
#include <algorithm>

#include "core/controller.h"
#include "core/job.h"
#include "core/refresh.h"
#include "core/run.h"
#include "engine/calculation_window.h"

namespace {

FormTrafoBerechnung& w = TrafoWindow;

constexpr int kBlack = 0, kRed = 12;  // of the sixteen colours

// An array of a point set with room for `count` points, as long as the counts say.
template <class Array>
void CutTo(Array& array, std::int32_t count) {
    array.resize(static_cast<std::size_t>(count) + 1);
}

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
    {
        const BusyPointer busy;
        Job.DirectionMCStoOCS = ToFlag(DirectionSwitched());
        ShowDirection(" -> ");
    }
    MCS_OCS();
    TabelleFüllenNeu();
    UpdateAllGraphicsWindows();
    FuellenMainSheet();
    DistanceScale_Refill();
}

// The pairs stand first in both sets, so the use flags stay those of their points. The names of the two
// systems stay where they are.
void MCS_OCS() {
    ++Run.JobGeneration;
    std::swap(Job.MCS_Name, Job.OCS_Name);
    std::swap(Job.MCS_X, Job.OCS_X);
    std::swap(Job.MCS_Y, Job.OCS_Y);
    std::swap(Job.MCS_Z, Job.OCS_Z);
    std::swap(Job.nMCS, Job.nOCS);
    std::swap(Job.nMCSOnly, Job.nOCSOnly);
    const auto cut = [](auto& names, auto& x, auto& y, auto& z, std::int32_t count) {
        CutTo(names, count);
        CutTo(x, count);
        CutTo(y, count);
        CutTo(z, count);
    };
    cut(Job.MCS_Name, Job.MCS_X, Job.MCS_Y, Job.MCS_Z, Job.nMCS);
    cut(Job.OCS_Name, Job.OCS_X, Job.OCS_Y, Job.OCS_Z, Job.nOCS);
    // As after an import, the transformed points are the start points until they are calculated.
    Job.TMCS_Name = Job.MCS_Name;
    Job.TMCS_X = Job.MCS_X;
    Job.TMCS_Y = Job.MCS_Y;
    Job.TMCS_Z = Job.MCS_Z;
    // The parameters are those of the other direction until the next calculation.
    Run.TrafoValid = Run.CalcDone = kFalse;
    Run.JobDirty = kTrue;
    ProgrammLogik();
    if (IsLoaded("FormInputStatistic")) FORMfüllen();
}
