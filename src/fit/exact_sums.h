// Sums of products of doubles without any rounding, after R. M. Neal, Fast exact summation using small and
// large superaccumulators (2015): a fixed-point number as wide as all that can come, in digits of 32 bits
// with room for carries. The order of additions does not matter to a single bit.
#pragma once

#include <cstdint>
#include <vector>

#include "fit/double_double.h"

namespace corvinade::fit {

// A finite double taken apart: Mantissa * 2^Exponent, and its sign.
struct TakenApart {
    std::uint64_t Mantissa = 0;
    int Exponent = 0;  // -1074 to 971
    bool Negative = false;
};
TakenApart TakeApart(double value);

class ExactSums {
public:
    explicit ExactSums(int count);

    void AddProduct(int sum, const TakenApart& a, const TakenApart& b);
    // Tells that every sum has got one more product, so that carries are brought on before there are too
    // many.
    void CountOne() {
        if (++since_ == kMostBetween) Settle();
    }
    // As many sums. The other one keeps its value.
    void Merge(const ExactSums& other);

    // A sum rounded to twice the digits of a double; it has to be below 1e300.
    DoubleDouble Value(int sum) const;

    // The digits of a sum's amount, of 32 bits each, from that of 2^(32 first - 2148) on, without zeroes at
    // either end: the same for the same sum, whatever it was made of.
    struct Digits {
        bool Negative = false;
        int First = 0;
        std::vector<std::uint32_t> Of;
    };
    Digits DigitsOf(int sum) const;
    // False, and nothing has changed, where they are none of a sum.
    bool SetDigits(int sum, const Digits& digits);

private:
    static constexpr int kDigits = 134;
    static constexpr int kMostBetween = 1 << 28;
    std::int64_t* Place(int sum) { return &digits_[static_cast<std::size_t>(sum * kDigits)]; }
    // Brings the carries on: all digits but the last are 0 to 2^32 - 1 then.
    void Settle();

    std::vector<std::int64_t> digits_;
    int since_ = 0;
};

}  // namespace corvinade::fit
