// The program's one source of noise, which begins anew with each start and so gives the same numbers each
// time.
#pragma once

#include "core/rooms.h"
#include "fit/noise.h"

namespace corvinade::engine {

inline NoiseRecord Noise;

void SeedNoise(std::uint32_t seed);

}  // namespace corvinade::engine
