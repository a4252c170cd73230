// Normally distributed noise. Nothing but the noise takes numbers from the generator, and always in
// pairs, so that making many at once changes nothing in the sequence.
#include "fit/noise.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "fit/any_vectors.h"
#include "fit/lanes.h"

namespace corvinade::fit {

namespace {

constexpr int kPairs = NoiseRecord::kPairs;

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

using Engine = std::mt19937;
constexpr int kWords = UniformBlocks::kWords;

// One step of the generator for one word of its state (M. Matsumoto, T. Nishimura: Mersenne twister,
// ACM Transactions on Modeling and Computer Simulation 8, 1998).
inline std::uint32_t Twisted(std::uint32_t word, std::uint32_t next, std::uint32_t far) {
    constexpr auto kLower = static_cast<std::uint32_t>((1U << Engine::mask_bits) - 1);
    constexpr auto kTwist = static_cast<std::uint32_t>(Engine::xor_mask);
    const std::uint32_t y = (word & ~kLower) | (next & kLower);
    return far ^ (y >> 1) ^ ((0U - (y & 1U)) & kTwist);
}

inline std::uint32_t Tempered(std::uint32_t y) {
    y ^= y >> Engine::tempering_u;
    y ^= (y << Engine::tempering_s) & static_cast<std::uint32_t>(Engine::tempering_b);
    y ^= (y << Engine::tempering_t) & static_cast<std::uint32_t>(Engine::tempering_c);
    return y ^ (y >> Engine::tempering_l);
}

// Each loop reads a word before it or a later one writes it, so its steps may be taken side by side.
ON_ANY_VECTORS void NextState(std::uint32_t* x, std::uint32_t* words) {
    constexpr int kFar = Engine::shift_size;
    for (int k = 0; k < kWords - kFar; ++k) x[k] = Twisted(x[k], x[k + 1], x[k + kFar]);
    for (int k = kWords - kFar; k < kWords - 1; ++k) x[k] = Twisted(x[k], x[k + 1], x[k + kFar - kWords]);
    x[kWords - 1] = Twisted(x[kWords - 1], x[0], x[kFar - 1]);
    for (int k = 0; k < kWords; ++k) words[k] = Tempered(x[k]);
}

// Pairs of uniform numbers in (-1, 1): the first of each, and the square of its distance from 0.
ON_ANY_VECTORS void SquareThem(const std::uint32_t* words, double* u, double* s) {
    // 2 r - 1 of r = w / 2^32: with its highest bit turned over, and a sign, w is less by 2^31.
    const auto centred = [](std::uint32_t word) {
        return static_cast<double>(static_cast<std::int32_t>(word ^ 0x80000000U)) * 0x1p-31;
    };
    for (int i = 0; i < kPairs; ++i) {
        const double a = centred(words[2 * i]), b = centred(words[2 * i + 1]);
        u[i] = a;
        s[i] = a * a + b * b;
    }
}

ON_ANY_VECTORS void Stretch(int count, const double* u, const double* s, double* normal) {
    for (int i = 0; i < count; ++i) normal[i] = u[i] * std::sqrt(-2 * Logarithm(s[i]) / s[i]);
}

void MakeBlock(NoiseRecord& noise) {
    alignas(kLaneAlignment) std::array<std::uint32_t, kWords> words;
    alignas(kLaneAlignment) std::array<double, kPairs> u, s;
    noise.Generator.Next(words);
    SquareThem(words.data(), u.data(), s.data());
    std::size_t accepted = 0;
    for (std::size_t i = 0; i < kPairs; ++i) {
        const double square = s[i];
        u[accepted] = u[i];
        s[accepted] = square;
        accepted += static_cast<std::size_t>((square > 0) & (square < 1));
    }
    Stretch(static_cast<int>(accepted), u.data(), s.data(), noise.Ready.data());
    noise.Count = static_cast<int>(accepted);
    noise.Next = 0;
}

}  // namespace

UniformBlocks::UniformBlocks(std::uint32_t seed) {
    State[0] = seed;
    for (std::uint32_t i = 1; i < kWords; ++i)
        State[i] = static_cast<std::uint32_t>(Engine::initialization_multiplier) *
                       (State[i - 1] ^ (State[i - 1] >> (Engine::word_size - 2))) +
                   i;
}

void UniformBlocks::Next(std::array<std::uint32_t, kWords>& words) {
    NextState(State.data(), words.data());
}

void SeedNoise(NoiseRecord& noise, std::uint32_t seed) {
    noise = NoiseRecord{.Generator = UniformBlocks(seed)};
}

double GaussNoise(NoiseRecord& noise, double mean, double sigma) {
    double number = 0;
    FillWithNoise(noise, {&number, 1});
    return number * sigma + mean;
}

void FillWithNoise(NoiseRecord& noise, std::span<double> numbers) {
    while (!numbers.empty()) {
        while (noise.Next == noise.Count) MakeBlock(noise);
        const std::size_t taken =
            std::min(numbers.size(), static_cast<std::size_t>(noise.Count - noise.Next));
        std::copy_n(noise.Ready.begin() + noise.Next, taken, numbers.begin());
        noise.Next += static_cast<int>(taken);
        numbers = numbers.subspan(taken);
    }
}

}  // namespace corvinade::fit
