// Where the iteration of the adjustment begins.
#pragma once

#include <array>
#include <optional>

#include "fit/parameters.h"
#include "fit/seed.h"

namespace corvinade::fit {

// Start values of the user's own by parameter number; nothing where the raw one stays.
using OwnStarts = std::array<std::optional<double>, kParameterEnd>;

// Puts them in, of translation, rotation, scales and the frame's angles.
void TakeOwnStarts(const OwnStarts& starts, Parameters& parameters);

// A choice of parameters and the user's own start values, by parameter number; mm, rad and factors. A
// parameter that neither floats nor is held keeps its neutral value. Value is 0 where none is held.
struct StartChoice {
    std::array<bool, kParameterEnd> Floats{}, Held{};
    std::array<bool, kParameterEnd> Seeded{};  // begins at a value of the user's own
    std::array<double, kParameterEnd> Value{};
    OwnStarts Own;
};

// All parameters that a fit begins with: the raw solution of the seed points, the user's own start values and
// the value of every parameter that is held. Depends on nothing of an earlier fit.
Parameters StartValues(const StartChoice& choice, const SeedPoints& seeds);

}  // namespace corvinade::fit
