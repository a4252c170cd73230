// Sums of products of doubles without any rounding.
#include "fit/exact_sums.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "fit/require.h"

namespace corvinade::fit {

namespace {

constexpr int kLowest = 2148;  // the lowest bit of a product is that of 2^-2148
constexpr std::uint64_t kDigit = 0xffffffff;

// The two halves of a product of 53 by 53 bits, by digits of 32.
struct Product {
    std::uint64_t Low, High;
    Product(std::uint64_t a, std::uint64_t b) {
        const std::uint64_t aLow = a & kDigit, aHigh = a >> 32, bLow = b & kDigit, bHigh = b >> 32;
        const std::uint64_t low = aLow * bLow, middle = aHigh * bLow + (low >> 32), other = aLow * bHigh;
        const std::uint64_t sum = (middle & kDigit) + (other & kDigit);
        Low = (sum << 32) | (low & kDigit);
        High = aHigh * bHigh + (middle >> 32) + (other >> 32) + (sum >> 32);
    }
};

void SettleDigits(std::int64_t* digits, int count) {
    for (int i = 0; i + 1 < count; ++i) {
        const std::int64_t carry = digits[i] >> 32;
        digits[i] -= carry * (std::int64_t{1} << 32);
        digits[i + 1] += carry;
    }
}

}  // namespace

TakenApart TakeApart(double value) {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    const int exponent = static_cast<int>((bits >> 52) & 0x7ff);
    const std::uint64_t fraction = bits & ((std::uint64_t{1} << 52) - 1);
    return {exponent == 0 ? fraction : fraction | (std::uint64_t{1} << 52), std::max(exponent, 1) - 1075,
            (bits >> 63) != 0};
}

ExactSums::ExactSums(int count) : digits_(static_cast<std::size_t>(count * kDigits)) {}

void ExactSums::AddProduct(int sum, const TakenApart& a, const TakenApart& b) {
    const Product product(a.Mantissa, b.Mantissa);
    const int place = a.Exponent + b.Exponent + kLowest;
    const int by = place & 31;
    // 106 bits, moved by up to 31: five digits. A shift of a whole word is none.
    const std::uint64_t low = product.Low << by;
    const std::uint64_t middle = (product.High << by) | (by == 0 ? 0 : product.Low >> (64 - by));
    const std::uint64_t high = by == 0 ? 0 : product.High >> (64 - by);
    const std::int64_t sign = a.Negative != b.Negative ? -1 : 1;
    std::int64_t* const to = Place(sum) + (place >> 5);
    to[0] += sign * static_cast<std::int64_t>(low & kDigit);
    to[1] += sign * static_cast<std::int64_t>(low >> 32);
    to[2] += sign * static_cast<std::int64_t>(middle & kDigit);
    to[3] += sign * static_cast<std::int64_t>(middle >> 32);
    to[4] += sign * static_cast<std::int64_t>(high);
}

void ExactSums::Settle() {
    for (std::size_t at = 0; at < digits_.size(); at += kDigits) SettleDigits(&digits_[at], kDigits);
    since_ = 0;
}

void ExactSums::Merge(const ExactSums& other) {
    Require(digits_.size() == other.digits_.size());
    ExactSums settled = other;
    settled.Settle();
    Settle();
    for (std::size_t i = 0; i < digits_.size(); ++i) digits_[i] += settled.digits_[i];
    since_ = 1;
}

ExactSums::Digits ExactSums::DigitsOf(int sum) const {
    const auto first = digits_.begin() + sum * kDigits;
    std::vector<std::int64_t> own(first, first + kDigits);
    SettleDigits(own.data(), kDigits);
    Digits digits;
    digits.Negative = own.back() < 0;
    if (digits.Negative) {
        for (std::int64_t& digit : own) digit = -digit;
        SettleDigits(own.data(), kDigits);
    }
    int end = kDigits;
    while (end > 0 && own[static_cast<std::size_t>(end - 1)] == 0) --end;
    while (digits.First < end && own[static_cast<std::size_t>(digits.First)] == 0) ++digits.First;
    for (int i = digits.First; i < end; ++i)
        digits.Of.push_back(static_cast<std::uint32_t>(own[static_cast<std::size_t>(i)]));
    return digits;
}

bool ExactSums::SetDigits(int sum, const Digits& digits) {
    const int count = static_cast<int>(digits.Of.size());
    if (digits.First < 0 || digits.First > kDigits - 1 || count > kDigits - 1 - digits.First) return false;
    std::int64_t* const to = Place(sum);
    std::fill_n(to, kDigits, 0);
    for (int i = 0; i < count; ++i)
        to[digits.First + i] =
            (digits.Negative ? -1 : 1) * static_cast<std::int64_t>(digits.Of[static_cast<std::size_t>(i)]);
    return true;
}

DoubleDouble ExactSums::Value(int sum) const {
    const Digits digits = DigitsOf(sum);
    DoubleDouble value;
    const int count = static_cast<int>(digits.Of.size());
    // Five digits have 129 bits at least.
    for (int i = count - 1; i >= std::max(0, count - 5); --i)
        value.Add(std::ldexp((digits.Negative ? -1.0 : 1.0) * digits.Of[static_cast<std::size_t>(i)],
                             32 * (digits.First + i) - kLowest));
    return value;
}

}  // namespace corvinade::fit
