// The program's one source of noise.
#include "engine/noise.h"

namespace corvinade::engine {

void SeedNoise(std::uint32_t seed) {
    SeedNoise(Noise, seed);
}

}  // namespace corvinade::engine
