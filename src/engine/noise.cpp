// Normally distributed noise. Nothing but the noise takes numbers from the generator, and always in
// pairs, so that making many at once changes nothing in the sequence.
#include "engine/noise.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "engine/lanes.h"

namespace {

constexpr int kPairs = NoiseRecord::kPairs;

#if defined(__x86_64__) && !defined(CORVINADE_NO_CLONES)
#define ON_ANY_VECTORS __attribute__((target_clones("avx512f", "avx2", "default")))
#else
#define ON_ANY_VECTORS
#endif

// Natural logarithm of a number from 2^-1000 to 1, to one or two units of the last place: m 2^k with m
// about 1, and log m = 2 artanh((m - 1) / (m + 1)) as a series. Free of branches and of the C library, so
// that many are computed at once and come out the same on every machine.
inline double Logarithm(double x) {
    constexpr std::uint64_t kRootOfHalf = 0x3FE6A09E00000000;  // m lies from here to twice as much
    constexpr std::uint64_t kShift = 1024;                     // keeps the exponent above 0
    constexpr double kLn2High = 0x1.62e42feep-1, kLn2Low = 0x1.a39ef35793c76p-33;
    constexpr std::uint64_t kTwoTo52 = 0x4330000000000000;  // a number whose last bit counts ones
    const auto bits = std::bit_cast<std::uint64_t>(x);
    const std::uint64_t exponent = (bits - kRootOfHalf + (kShift << 52)) >> 52;
    const double m = std::bit_cast<double>(bits - ((exponent - kShift) << 52));
    const double k = std::bit_cast<double>(exponent | kTwoTo52) - (0x1p52 + static_cast<double>(kShift));
    const double f = m - 1;
    const double t = f / (2 + f);
    const double z = t * t, z2 = z * z, z4 = z2 * z2;
    const double low = (1.0 / 3 + z * (1.0 / 5)) + z2 * (1.0 / 7 + z * (1.0 / 9));
    const double high = (1.0 / 11 + z * (1.0 / 13)) + z2 * (1.0 / 15 + z * (1.0 / 17));
    const double rest = 1.0 / 19 + z * (1.0 / 21);
    const double series = z * (low + z4 * (high + z4 * rest));
    // 2 t is f less a little; taken as f less that little it keeps its last digits.
    const double little = f * t;
    return k * kLn2High + (f - (little - (2 * t * series + k * kLn2Low)));
}

// Pairs of uniform numbers in (-1, 1) and the squares of their distances from 0.
ON_ANY_VECTORS void SquareThem(const std::int32_t* uniform, double* u, double* s) {
    for (int i = 0; i < kPairs; ++i) {
        // 2 r - 1 of r = w / 2^32, w without sign: its highest bit turned over makes it w - 2^31.
        const double a = uniform[i] * 0x1p-31, b = uniform[kPairs + i] * 0x1p-31;
        u[i] = a;
        s[i] = a * a + b * b;
    }
}

ON_ANY_VECTORS void Stretch(int count, const double* u, const double* s, double* normal) {
    for (int i = 0; i < count; ++i) normal[i] = u[i] * std::sqrt(-2 * Logarithm(s[i]) / s[i]);
}

#undef ON_ANY_VECTORS

void MakeBlock() {
    alignas(kLaneAlignment) std::array<std::int32_t, 2 * kPairs> uniform;
    alignas(kLaneAlignment) std::array<double, kPairs> u, s;
    for (std::size_t i = 0; i < kPairs; ++i)
        for (const std::size_t half : {i, kPairs + i})
            uniform[half] =
                static_cast<std::int32_t>(static_cast<std::uint32_t>(Noise.Generator()) ^ 0x80000000U);
    SquareThem(uniform.data(), u.data(), s.data());
    std::size_t accepted = 0;
    for (std::size_t i = 0; i < kPairs; ++i) {
        const double square = s[i];
        u[accepted] = u[i];
        s[accepted] = square;
        accepted += static_cast<std::size_t>((square > 0) & (square < 1));
    }
    Stretch(static_cast<int>(accepted), u.data(), s.data(), Noise.Ready.data());
    Noise.Count = static_cast<int>(accepted);
    Noise.Next = 0;
}

}  // namespace

void SeedNoise(std::uint32_t seed) {
    Noise = NoiseRecord{};
    Noise.Generator.seed(seed);
}

double GaussNoise(double mean, double sigma) {
    double number = 0;
    FillWithNoise({&number, 1});
    return number * sigma + mean;
}

void FillWithNoise(std::span<double> numbers) {
    while (!numbers.empty()) {
        while (Noise.Next == Noise.Count) MakeBlock();
        const std::size_t taken =
            std::min(numbers.size(), static_cast<std::size_t>(Noise.Count - Noise.Next));
        std::copy_n(Noise.Ready.begin() + Noise.Next, taken, numbers.begin());
        Noise.Next += static_cast<int>(taken);
        numbers = numbers.subspan(taken);
    }
}
