// All parameters of the job at once.
#include "engine/parameter_values.h"

ParameterValues JobParameters() {
    ParameterValues values{};
    for (int k = kTraX; k < kParameterEnd; ++k) values[static_cast<std::size_t>(k)] = ParameterValue(Job, k);
    return values;
}

void SetJobParameters(const ParameterValues& values) {
    for (int k = kTraX; k < kParameterEnd; ++k) ParameterValue(Job, k) = values[static_cast<std::size_t>(k)];
}
