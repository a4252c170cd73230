// Quantiles of the distributions that tests of an adjustment stand on.
#include "fit/distributions.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace corvinade::fit {

namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
constexpr double kTiny = 1e-300;
constexpr int kMostTerms =
    10000000;  // of a series: a few times the root of the degrees of freedom are needed

bool IsProbability(double p) {
    return p > 0 && p < 1;
}

// log Gamma(a) less (a - 1/2) log a - a + log(2 pi)/2 (A&S 6.1.41), for a of 10 and more.
double StirlingRest(double a) {
    const double s = 1 / (a * a);
    return (1.0 / 12 - s * (1.0 / 360 - s * (1.0 / 1260 - s * (1.0 / 1680 - s / 1188)))) / a;
}

constexpr double kFromStirling = 10;

// x^a e^-x / Gamma(a + 1). Of large a the logarithms of its factors would cancel to half of their digits.
double GammaFactor(double a, double x) {
    if (a < kFromStirling) return std::exp(a * std::log(x) - x - std::lgamma(a + 1));
    const double mu = (x - a) / a;
    return std::exp(-a * (mu - std::log1p(mu)) - StirlingRest(a)) / std::sqrt(2 * std::acos(-1.0) * a);
}

// The incomplete gamma function, its part below and above x, by series (A&S 6.5.29) or continued fraction
// (6.5.31) by the modified method of Lentz.
struct Parts {
    double Below, Above;
};

Parts GammaParts(double a, double x) {
    if (!(x > 0)) return {0, 1};
    if (std::isinf(x)) return {1, 0};
    const double factor = GammaFactor(a, x);
    if (x < a + 1) {
        double term = 1, sum = 1;
        for (int k = 1; k < kMostTerms && term > sum * kEpsilon / 4; ++k) sum += term *= x / (a + k);
        const double below = std::min(1.0, factor * sum);
        return {below, 1 - below};
    }
    double b = x + 1 - a, c = 1 / kTiny, d = 1 / b, h = d;
    for (int k = 1; k < kMostTerms; ++k) {
        const double numerator = -k * (k - a);
        b += 2;
        d = numerator * d + b;
        c = b + numerator / c;
        if (std::fabs(d) < kTiny) d = kTiny;
        if (std::fabs(c) < kTiny) c = kTiny;
        d = 1 / d;
        h *= c * d;
        if (std::fabs(c * d - 1) < kEpsilon) break;
    }
    const double above = std::min(1.0, a * factor * h);
    return {1 - above, above};
}

// log Gamma(a + b) - log Gamma(a) - log Gamma(b).
double LogOfInverseBeta(double a, double b) {
    if (a < b) std::swap(a, b);
    if (a < kFromStirling) return std::lgamma(a + b) - std::lgamma(a) - std::lgamma(b);
    const double ratio =
        (a - 0.5) * std::log1p(b / a) + b * std::log(a + b) - b + StirlingRest(a + b) - StirlingRest(a);
    if (b < kFromStirling) return ratio - std::lgamma(b);
    const double ofB = (b - 0.5) * std::log(b) - b + 0.5 * std::log(2 * std::acos(-1.0)) + StirlingRest(b);
    return ratio - ofB;
}

// The incomplete beta function I_x(a, b) (A&S 26.5.8), y = 1 - x with its own digits.
double BetaFraction(double a, double b, double x, double y) {
    double c = 1, d = 1 - (a + b) * x / (a + 1);
    if (std::fabs(d) < kTiny) d = kTiny;
    d = 1 / d;
    double h = d;
    const auto step = [&](double numerator) {
        d = 1 + numerator * d;
        c = 1 + numerator / c;
        if (std::fabs(d) < kTiny) d = kTiny;
        if (std::fabs(c) < kTiny) c = kTiny;
        d = 1 / d;
        h *= c * d;
        return c * d;
    };
    for (int k = 1; k < kMostTerms; ++k) {
        step(k * (b - k) * x / ((a + 2 * k - 1) * (a + 2 * k)));
        const double last = step(-(a + k) * (a + b + k) * x / ((a + 2 * k) * (a + 2 * k + 1)));
        if (std::fabs(last - 1) < kEpsilon) break;
    }
    const double logX = y < 0.5 ? std::log1p(-y) : std::log(x);
    const double logY = x < 0.5 ? std::log1p(-x) : std::log(y);
    return std::exp(a * logX + b * logY + LogOfInverseBeta(a, b)) / a * h;
}

double IncompleteBeta(double a, double b, double x, double y) {
    if (!(x > 0)) return 0;
    if (!(y > 0)) return 1;
    const bool swaps = x > (a + 1) / (a + b + 2);
    const double part = std::min(1.0, swaps ? BetaFraction(b, a, y, x) : BetaFraction(a, b, x, y));
    return swaps ? 1 - part : part;
}

// Where a rising function reaches a value, between two places that it does so at; to the last digits.
template <class Function>
double WhereItReaches(double value, double low, double high, Function function) {
    constexpr int kMostHalvings = 2000;
    for (int k = 0; k < kMostHalvings; ++k) {
        // Places of one sign are halved by their ratio, for they may lie orders apart.
        const double middle = low > 0 && high > 2 * low ? std::sqrt(low) * std::sqrt(high) : (low + high) / 2;
        if (!(middle > low && middle < high)) break;
        (function(middle) < value ? low : high) = middle;
    }
    return (low + high) / 2;
}

// The same of a positive place, however small or large.
template <class Function>
double WherePositive(double value, Function function) {
    constexpr double kLeast = 1e-300, kMost = 1e300;
    return WhereItReaches(value, kLeast, kMost, function);
}

// How often a two-sided test finds Student's variable of a shifted numerator, by the numerator: good where
// few degrees of freedom spread the denominator widely.
double FoundByNumerator(double shift, double critical, double freedom) {
    constexpr double kStep = 0.02, kReach = 9;
    double found = 0, all = 0;
    for (int k = static_cast<int>(-kReach / kStep); k * kStep <= kReach; ++k) {
        const double z = k * kStep, weight = std::exp(-z * z / 2);
        const double share = (z + shift) / critical;
        all += weight;
        found += weight * GammaParts(freedom / 2, freedom * share * share / 2).Below;
    }
    return found / all;
}

// The same by the denominator, whose logarithm is u: where that is narrow. Sums of equal steps come to all
// digits here, since the density ends in both directions faster than any power.
double FoundByDenominator(double shift, double critical, double freedom) {
    constexpr double kNothing = -45;
    // Shares of the density's width and of that of the normal step within it.
    const double step = std::min(0.2 / std::sqrt(freedom), 0.2 / (1 + critical));
    double found = 0, all = 0;
    for (const int sign : {1, -1})
        for (int k = sign > 0 ? 0 : 1;; ++k) {
            const double u = sign * k * step, c = std::exp(u);
            const double density = freedom * (u - std::expm1(2 * u) / 2);
            if (density < kNothing) break;
            const double weight = std::exp(density);
            all += weight;
            found += weight * (NormalAbove(critical * c - shift) + NormalAbove(critical * c + shift));
        }
    return found / all;
}

template <class Found>
double ShiftFoundWith(double power, double most, Found found) {
    if (!IsProbability(power)) return kNone;
    if (found(0.0) >= power) return 0;
    double low = 0, high = most, below = found(low) - power, above = found(high) - power;
    while (above < 0 && high < 1e12) {
        low = high;
        below = above;
        above = found(high *= 2) - power;
    }
    // Regula falsi, the value at an end that stays is halved (Illinois).
    for (int k = 0, side = 0; k < 200 && high - low > 1e-13 * high; ++k) {
        const double middle = (low * above - high * below) / (above - below);
        if (!(middle > low && middle < high)) break;
        const double here = found(middle) - power;
        if (std::fabs(here) < 1e-15) return middle;
        if (here < 0) {
            low = middle;
            below = here;
            if (side == -1) above /= 2;
            side = -1;
        } else {
            high = middle;
            above = here;
            if (side == 1) below /= 2;
            side = 1;
        }
    }
    return std::fabs(above) < std::fabs(below) ? high : low;
}

}  // namespace

double NormalAbove(double x) {
    return std::erfc(x / std::sqrt(2.0)) / 2;
}

double StudentAbove(double t, double freedom) {
    const double square = t * t;
    const double half =
        std::isinf(square)
            ? 0
            : IncompleteBeta(freedom / 2, 0.5, freedom / (freedom + square), square / (freedom + square)) / 2;
    return t >= 0 ? half : 1 - half;
}

double ChiSquareAbove(double x, double freedom) {
    return GammaParts(freedom / 2, x / 2).Above;
}

double FisherAbove(double f, double m, double n) {
    if (!(f > 0)) return 1;
    return IncompleteBeta(n / 2, m / 2, n / (n + m * f), m * f / (n + m * f));
}

double NormalQuantile(double above) {
    constexpr double kFar = 40;
    if (!IsProbability(above)) return kNone;
    if (above > 0.5) return -NormalQuantile(1 - above);
    return WhereItReaches(-above, 0, kFar, [](double x) { return -NormalAbove(x); });
}

double StudentQuantile(double above, double freedom) {
    if (!IsProbability(above) || !(freedom >= 1)) return kNone;
    if (above > 0.5) return -StudentQuantile(1 - above, freedom);
    if (above == 0.5) return 0;
    return WherePositive(-above, [freedom](double t) { return -StudentAbove(t, freedom); });
}

double ChiSquareQuantile(double above, double freedom) {
    if (!IsProbability(above) || !(freedom >= 1)) return kNone;
    return WherePositive(-above, [freedom](double x) { return -ChiSquareAbove(x, freedom); });
}

double ChiSquareLowQuantile(double below, double freedom) {
    if (!IsProbability(below) || !(freedom >= 1)) return kNone;
    return WherePositive(below, [freedom](double x) { return GammaParts(freedom / 2, x / 2).Below; });
}

double FisherQuantile(double above, double m, double n) {
    if (!IsProbability(above) || !(m >= 1) || !(n >= 1)) return kNone;
    return WherePositive(-above, [m, n](double f) { return -FisherAbove(f, m, n); });
}

double TauQuantile(double above, double redundancy) {
    if (!(redundancy >= 2)) return kNone;
    const double t = StudentQuantile(above, redundancy - 1);
    return std::sqrt(redundancy) / std::sqrt((redundancy - 1) / (t * t) + 1);
}

double NormalShift(double critical, double power) {
    return ShiftFoundWith(power, critical + 2, [critical](double shift) {
        return NormalAbove(critical - shift) + NormalAbove(critical + shift);
    });
}

double StudentShift(double critical, double freedom, double power) {
    constexpr double kFewDegrees = 10;
    if (!(freedom >= 1)) return kNone;
    const auto found = freedom < kFewDegrees ? FoundByNumerator : FoundByDenominator;
    return ShiftFoundWith(power, critical + 2, [=](double shift) { return found(shift, critical, freedom); });
}

}  // namespace corvinade::fit
