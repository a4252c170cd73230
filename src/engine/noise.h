// The program's one source of noise, which begins anew with each start and so gives the same numbers each
// time.
#pragma once

#include "fit/noise.h"

inline NoiseRecord Noise;

void SeedNoise(std::uint32_t seed);
double GaussNoise(double mean, double sigma);
void FillWithNoise(std::span<double> numbers);
