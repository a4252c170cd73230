// Digits of a number in a text that its value does not keep.
#include "core/lost_digits.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>

using namespace corvinade;

namespace {

TEST(LostDigitsOfAText, AFloatWrittenWithMoreDigitsThanItTakesLosesNone) {
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> mantissa(-1, 1);
    for (int i = 0; i < 2000; ++i) {
        const double value = std::ldexp(mantissa(random), i % 60 - 20);
        for (const char* form : {"%.18e", "%.20f", "%.25g", "%.30e"}) {
            char text[120];
            std::snprintf(text, sizeof text, form, value);
            // Fixed places cut a small number short, which is a rounding of the file's own.
            if (form[3] == '0' && std::fabs(value) < 1) continue;
            EXPECT_EQ(LostDigits(text), "") << text;
        }
    }
}

TEST(LostDigitsOfAText, OthersAreTold) {
    EXPECT_NE(LostDigits("1234567.123456789012"), "");
    EXPECT_NE(LostDigits("1.000000000000000000001"), "");
    EXPECT_NE(LostDigits("-0,1234567890123456789"), "");
    EXPECT_NE(LostDigits("1e-400"), "");
    EXPECT_EQ(LostDigits("1234567.1234567890"), "");
    EXPECT_EQ(LostDigits("100000000000000000000000"), "");
    EXPECT_EQ(LostDigits("word"), "");
    EXPECT_EQ(LostDigits(""), "");
}

}  // namespace
