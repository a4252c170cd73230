// The program's one source of noise.
#include "engine/noise.h"

namespace corvinade::engine {

void SeedNoise(std::uint32_t seed) {
    SeedNoise(Noise, seed);
}

double GaussNoise(double mean, double sigma) {
    return GaussNoise(Noise, mean, sigma);
}

void FillWithNoise(std::span<double> numbers) {
    FillWithNoise(Noise, numbers);
}

}  // namespace corvinade::engine
