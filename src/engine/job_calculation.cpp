// The calculation of a job, whatever kind of job it is.
#include "engine/job_calculation.h"

#include "engine/calculation.h"

namespace corvinade::engine {

void CalculateJob() {
    for (const CalculationAbove& row : AllCalculationsAbove())
        if (row.IsOfJob()) return row.Calculate();
    ButtonCalcErsatz();
}

}  // namespace corvinade::engine
