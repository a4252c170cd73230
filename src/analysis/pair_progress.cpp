// Long work over the pairs of points.
#include "analysis/pair_progress.h"

#include <algorithm>

#include "core/platform.h"
#include "core/run.h"

namespace corvinade::analysis {

PairProgress::PairProgress(const std::string& caption, std::int64_t steps) : shown_(steps > kQuickSteps) {
    if (!shown_) return;
    // Work begun inside the yields of other long work shares its window.
    own_ = !IsLoaded(FormProgressBar_Entry.Name);
    if (!own_) return;
    ShowWindow(FormProgressBar_Entry.Name);
    Progress.Window.Caption = caption;
    stopBefore_ = Run.StopRequested;
    Run.StopRequested = kFalse;
}

PairProgress::~PairProgress() {
    if (!own_) return;
    UnloadWindow(FormProgressBar_Entry.Name);
    Run.StopRequested = stopBefore_;
}

bool PairProgress::GoesOn(double share) {
    if (!shown_) return true;
    SetValue(Progress.ProgressBar1, std::clamp(static_cast<int>(100 * share), 0, 100));
    YieldToEvents();
    return !IsTrue(Run.StopRequested);
}

}  // namespace corvinade::analysis
