// What pairs say to a plain fit by least squares.
#include "fit/pair_moments.h"

#include <cmath>

#include "fit/require.h"

namespace corvinade::fit {

namespace {

using Twice = DoubleDouble;

Twice Plus(Twice a, const Twice& b) {
    a.Add(b.High);
    a.Add(b.Low);
    return a;
}

// Brings what is beyond the last digit of the high part back into it.
Twice Tidied(const Twice& a) {
    Twice tidy;
    tidy.Add(a.High);
    tidy.Add(a.Low);
    return tidy;
}

Twice Minus(const Twice& a, const Twice& b) {
    return Tidied(Plus(a, {-b.High, -b.Low}));
}

Twice Times(const Twice& a, const Twice& b) {
    Twice product;
    product.AddProduct(a.High, b.High);
    product.Low += a.High * b.Low + a.Low * b.High;
    return Tidied(product);
}

Twice Over(const Twice& a, const Twice& b) {
    Twice quotient, rest = a;
    for (int digits = 0; digits < 3; ++digits) {
        const double part = rest.High / b.High;
        quotient.Add(part);
        rest = Minus(rest, Times({part, 0}, b));
    }
    return Tidied(quotient);
}

Twice Root(const Twice& a) {
    const Twice root{std::sqrt(a.High), 0};
    const Twice rest = Minus(a, Times(root, root));
    return Tidied(Plus(root, {rest.High / (2 * root.High), 0}));
}

using Square = std::array<std::array<Twice, 6>, 6>;

// The covariance about the mean, divided by the number of pairs.
Square CovarianceOf(const PairMoments& moments, std::array<Twice, 6>& mean) {
    const auto whole = static_cast<double>(moments.Count);
    const Twice count{
        whole,
        static_cast<double>(static_cast<std::int64_t>(moments.Count - static_cast<std::uint64_t>(whole)))};
    for (std::size_t i = 0; i < 6; ++i) mean[i] = Over(moments.Sums.Value(static_cast<int>(i)), count);
    Square covariance;
    int sum = 6;
    for (std::size_t i = 0; i < 6; ++i)
        for (std::size_t j = i; j < 6; ++j)
            covariance[j][i] = covariance[i][j] =
                Minus(Over(moments.Sums.Value(sum++), count), Times(mean[i], mean[j]));
    return covariance;
}

// L of C = L L'. What is left of a direction that the others hold already is rounding, and counts as 0.
Square TriangleOf(const Square& covariance, const std::array<Twice, 6>& mean) {
    constexpr double kRounding = 1e-29;
    Square L{};
    for (std::size_t k = 0; k < 6; ++k) {
        Twice rest = covariance[k][k];
        for (std::size_t j = 0; j < k; ++j) rest = Minus(rest, Times(L[k][j], L[k][j]));
        if (!(rest.High > kRounding * (covariance[k][k].High + mean[k].High * mean[k].High))) continue;
        L[k][k] = Root(rest);
        for (std::size_t i = k + 1; i < 6; ++i) {
            Twice row = covariance[i][k];
            for (std::size_t j = 0; j < k; ++j) row = Minus(row, Times(L[i][j], L[k][j]));
            L[i][k] = Over(row, L[k][k]);
        }
    }
    return L;
}

// The waves cos 1, sin 1, cos 2, ... over `count` places: their sums are 0, their squares have the mean 1,
// and each is at right angles to all others.
double WaveAt(std::size_t wave, std::size_t place, std::size_t count) {
    constexpr double kTwoPi = 6.28318530717958647692;
    const std::size_t turns = wave / 2 + 1;
    const double angle = kTwoPi * static_cast<double>(turns * place % count) / static_cast<double>(count);
    // The fastest one goes up and down.
    if (2 * turns == count) return place % 2 == 0 ? 1 : -1;
    return std::sqrt(2.0) * (wave % 2 == 0 ? std::cos(angle) : std::sin(angle));
}

}  // namespace

void AddPair(const std::array<double, 6>& pair, PairMoments& moments) {
    const TakenApart one = TakeApart(1.0);
    std::array<TakenApart, 6> parts;
    for (std::size_t i = 0; i < 6; ++i) parts[i] = TakeApart(pair[i]);
    int sum = 0;
    for (const TakenApart& part : parts) moments.Sums.AddProduct(sum++, part, one);
    for (std::size_t i = 0; i < 6; ++i)
        for (std::size_t j = i; j < 6; ++j) moments.Sums.AddProduct(sum++, parts[i], parts[j]);
    moments.Sums.CountOne();
    ++moments.Count;
}

std::array<std::vector<double>, 6> StandInPairs(const PairMoments& moments) {
    Require(moments.Count > 0);
    std::array<Twice, 6> mean;
    const Square covariance = CovarianceOf(moments, mean);
    const Square L = TriangleOf(covariance, mean);
    const std::size_t count =
        moments.Count < kMostStandIns ? static_cast<std::size_t>(moments.Count) : kMostStandIns;
    std::vector<std::array<Twice, 6>> pairs(count, mean);
    std::size_t wave = 0;
    for (std::size_t k = 0; k < 6; ++k) {
        // So many pairs have no more directions: what is left is rounding.
        if (L[k][k].High == 0 || wave + 1 >= count) continue;
        for (std::size_t i = 0; i < count; ++i) {
            const Twice along{WaveAt(wave, i, count), 0};
            for (std::size_t axis = k; axis < 6; ++axis)
                pairs[i][axis] = Tidied(Plus(pairs[i][axis], Times(along, L[axis][k])));
        }
        ++wave;
    }
    std::array<std::vector<double>, 6> columns;
    for (std::size_t axis = 0; axis < 6; ++axis)
        for (const auto& pair : pairs) columns[axis].push_back(pair[axis].Value());
    return columns;
}

}  // namespace corvinade::fit
