// The calculation of a job, whatever kind of job it is.
#pragma once

#include <span>

#include "core/rooms.h"

namespace corvinade::engine {

// A kind of job whose calculation is that of a room above.
struct CalculationAbove {
    bool (*IsOfJob)();
    void (*Calculate)();
};

// A row a kind; defined above all rooms.
std::span<const CalculationAbove> AllCalculationsAbove();

// The calculation of the first row that is of the job; of all other jobs ButtonCalcErsatz.
void CalculateJob();

}  // namespace corvinade::engine
