// The calculation as other rooms ask for it.
#include "core/job.h"
#include "core/refresh.h"
#include "core/window.h"
#include "engine/calculation.h"
#include "engine/presets.h"

void myButtonCalculate() {
    const BusyPointer busy;
    // A job without a choice of parameters stands on six.
    if (Job.ParamText[1].empty()) SelectPreset("6");
    for (int i = 1; i <= 3 && Job.SeedName[1].empty(); ++i)
        Job.SeedIndex[static_cast<std::size_t>(i)] = static_cast<std::int16_t>(i);
    ButtonCalcErsatz();
}

double CalculationSigmaXYZ() {
    return Calculation.SigmaXYZ;
}
