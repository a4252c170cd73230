// What each pass of the adjustment does with its corrections.
#include "engine/corrections.h"

#include "core/job.h"
#include "core/settings.h"

namespace corvinade::engine {

double Threshold() {
    return Settings.BestFit_Etta == 0 ? 1e-9 : Settings.BestFit_Etta;
}

void AddCorrections(const FitModel& model, const Column& x) {
    Parameters parameters = ParametersOf(Job);
    AddCorrections(model, x, parameters);
    PutParameters(parameters, Job);
}

}  // namespace corvinade::engine
