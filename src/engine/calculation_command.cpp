// The calculation as other rooms ask for it.
#include "core/job.h"
#include "core/refresh.h"
#include "core/run.h"
#include "core/window.h"
#include "engine/calculation.h"
#include "engine/presets.h"
#include "engine/seed.h"

namespace {

// A stop ends the calculation that it came to, whichever way that ends, and not the next one.
struct StopRequestTaken {
    StopRequestTaken() = default;
    ~StopRequestTaken() { Run.StopRequested = kFalse; }
    StopRequestTaken(const StopRequestTaken&) = delete;
    StopRequestTaken& operator=(const StopRequestTaken&) = delete;
};

}  // namespace

void myButtonCalculate() {
    const BusyPointer busy;
    const StopRequestTaken stop;
    // A job without a choice of parameters stands on six.
    if (Job.ParamText[1].empty()) SelectPreset("6");
    ChooseDefaultSeeds();
    ButtonCalcErsatz();
}

double CalculationSigmaXYZ() {
    return Calculation.SigmaXYZ;
}
