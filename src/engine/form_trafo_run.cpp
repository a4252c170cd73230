// The run of a calculation: from the click on the button until everything shows the new result.
#include "core/changes.h"
#include "core/controller.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "engine/calculation.h"
#include "engine/calculation_window.h"
#include "engine/clipboard_report.h"
#include "engine/form_trafo_details.h"
#include "engine/job_calculation.h"
#include "engine/monte_carlo.h"
#include "engine/presets.h"
#include "engine/seed.h"
#include "engine/selection.h"

namespace corvinade::engine {

namespace {

FormTrafoBerechnung& w = TrafoWindow;

bool WindowIsOpen() {
    return IsLoaded("FormTrafoBerechnung");
}

// From the click until everything shows the result nothing else begins. Further points from the clipboard
// end the run that they arrive in with one of their own inside it.
class Running {
public:
    Running() {
        CalculationWindow.Running = true;
        w.BtnCalculate.Enabled = false;
    }
    ~Running() {
        CalculationWindow.Running = before_;
        w.BtnCalculate.Enabled = !before_;
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

private:
    bool before_ = CalculationWindow.Running;
};

class StopEnabled {
public:
    StopEnabled() { w.BtnSTOP.Enabled = true; }
    ~StopEnabled() { w.BtnSTOP.Enabled = false; }
    StopEnabled(const StopEnabled&) = delete;
    StopEnabled& operator=(const StopEnabled&) = delete;
};

// A stop ends the calculation that it came to, whichever way that ends, and not the next one.
struct StopRequestTaken {
    StopRequestTaken() = default;
    ~StopRequestTaken() { Run.StopRequested = kFalse; }
    StopRequestTaken(const StopRequestTaken&) = delete;
    StopRequestTaken& operator=(const StopRequestTaken&) = delete;
};

void RememberSolution() {
    for (int parameter = kTraX; parameter < kParameterEnd; ++parameter)
        CalculationWindow.LastSolution[static_cast<std::size_t>(parameter)] = ParameterValue(Job, parameter);
}

// False when other points have come in meanwhile.
bool ShowResultElsewhere() {
    const std::uint64_t generation = Run.JobGeneration;
    Changed(What::Result);
    ShowChanges();  // until then nothing else begins
    if (Run.JobGeneration != generation) return false;
    Run.JobDirty = kTrue;
    return true;
}

// Without its window a calculation takes the choice that the job carries; a job without one stands on six
// parameters.
void TakeChoiceOfJob() {
    if (Job.ParamText[1].empty()) SelectPreset("6");
    SelectionFromJob();
    ChooseDefaultSeeds();
}

// Where another calculation is to follow, that one shows everything.
void CalculateAndShow() {
    ++CalculationWindow.Started;
    const StopEnabled stoppable;
    const StopRequestTaken stop;
    RememberSolution();
    ShowNow(What::NextResult);
    if (!WindowIsOpen()) TakeChoiceOfJob();
    const std::uint64_t generation = Run.JobGeneration;
    CalculateJob();
    Run.StopRequested = kFalse;  // showing the result is not what was stopped
    // A job whose points were replaced meanwhile is shown by what replaced them.
    if (Run.JobGeneration != generation) return;
    if (WindowIsOpen()) {
        if (CalculationWindow.Again) return;
        ResetArrows();
        FormThings();
        if (CalculationWindow.Again && WindowIsOpen()) return;
    } else {
        ReportToClipboard();
    }
    if (!ShowResultElsewhere()) return;
    const bool spread = IsTrue(MonteCarlo.MonteCarloOn) && IsTrue(MonteCarlo.MonteCarloDone);
    if (spread) ShowDetails();  // where its statistics stand
}

}  // namespace

void myButtonCalculate() {
    ShowChanges();  // what has led to the calculation is seen ahead of it
    const BusyPointer busy;
    const Running running;
    do {
        CalculationWindow.Again = false;
        CalculateAndShow();
    } while (CalculationWindow.Again && WindowIsOpen());
}

double CalculationSigmaXYZ() {
    return Calculation.SigmaXYZ;
}

bool RecalculatesByItself() {
    return IsTrue(Job.AutoRecalc) && CalculationWindow.ManyChanges == 0;
}

void RecalculateIfAutomatic() {
    if (RecalculatesByItself() && WindowIsOpen()) FormTrafoBerechnung::BtnCalculate_Click();
}

void FormTrafoBerechnung::BtnCalculate_Click() {
    if (CalculationWindow.Running) {
        CalculationWindow.Again = true;
        return;
    }
    myButtonCalculate();
}

void FormTrafoBerechnung::BtnSTOP_Click() {
    YieldToEvents();
    Run.StopRequested = kTrue;
    w.BtnSTOP.Enabled = false;
}

void FormTrafoBerechnung::BtnSEED_Click() {
    TakeSelection();
    SeedsFromResult();
    for (const ParameterControls& row : ParameterRows())
        SetText(*row.SeedText, Selection.SeedText[static_cast<std::size_t>(row.Parameter)]);
}

void FormTrafoBerechnung::BtnDetails_Click() {
    const BusyPointer busy;
    ShowDetails();
}

}  // namespace corvinade::engine
