// Normally distributed noise from a uniform generator; a seed gives the same numbers each time.
#pragma once

#include <array>
#include <cstdint>
#include <random>
#include <span>

namespace corvinade::fit {

// The uniform numbers of std::mt19937, a whole state of it at once: taken one by one they would cost more
// than the fits that they are for.
struct UniformBlocks {
    static constexpr int kWords = std::mt19937::state_size;
    std::array<std::uint32_t, kWords> State;

    explicit UniformBlocks(std::uint32_t seed);
    void Next(std::array<std::uint32_t, kWords>& words);
};

// Numbers of the normal distribution with mean 0 and deviation 1, made in blocks ahead of their use.
struct NoiseRecord {
    static constexpr int kPairs = UniformBlocks::kWords / 2;  // of uniform numbers, that a block is made from
    UniformBlocks Generator{std::mt19937::default_seed};
    std::array<double, kPairs> Ready{};
    int Count = 0, Next = 0;  // how many are in Ready, and the first that nobody has had yet
};

// Begins the sequence of a seed, which is that of std::mt19937; kUsualSeed is its own first one.
inline constexpr std::uint32_t kUsualSeed = std::mt19937::default_seed;
void SeedNoise(NoiseRecord& noise, std::uint32_t seed);

// One number of the normal distribution, by the polar method (G. Marsaglia, T. A. Bray: A convenient
// method for generating normal variables, SIAM Review 6, 1964). The second number that a pair of uniform
// ones could give is thrown away.
double GaussNoise(NoiseRecord& noise, double mean, double sigma);

// The numbers that as many calls of GaussNoise(0, 1) would give, in their order.
void FillWithNoise(NoiseRecord& noise, std::span<double> numbers);

}  // namespace corvinade::fit
