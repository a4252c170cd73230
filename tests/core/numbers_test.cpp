// Numbers as text: conversions and picture strings.
#include "core/numbers.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "cli/headless.h"
#include "core/platform.h"
#include "support/fixture.h"

using namespace corvinade;

using Numbers = Program;

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

// A whole number of any size as decimal digits, most significant first.
std::string TimesSmall(const std::string& digits, unsigned factor) {
    std::string out(digits.size(), '0');
    unsigned carry = 0;
    for (std::size_t i = digits.size(); i-- > 0;) {
        const unsigned sum = static_cast<unsigned>(digits[i] - '0') * factor + carry;
        out[i] = static_cast<char>('0' + sum % 10);
        carry = sum / 10;
    }
    for (; carry > 0; carry /= 10) out.insert(out.begin(), static_cast<char>('0' + carry % 10));
    return out;
}

struct Decimal {
    std::string Digits;  // a whole number
    int Places = 0;      // of which so many stand behind the point
};

// The exact decimal value of a finite, positive double, by multiplying out its binary form.
Decimal Exact(double value) {
    int exponent = 0;
    const double fraction = std::frexp(value, &exponent);
    Decimal result{std::to_string(static_cast<std::uint64_t>(std::ldexp(fraction, 53))), 0};
    for (exponent -= 53; exponent > 0; --exponent) result.Digits = TimesSmall(result.Digits, 2);
    for (; exponent < 0; ++exponent, ++result.Places) result.Digits = TimesSmall(result.Digits, 5);
    return result;
}

// Keeps the first `kept` digits (may be 0 or less) and rounds; a tie goes up, or to the even digit.
void RoundDigits(Decimal& number, int kept, bool tieToEven) {
    std::string& d = number.Digits;
    const std::size_t first = d.find_first_not_of('0');
    d.erase(0, first == std::string::npos ? d.size() : first);
    const int size = static_cast<int>(d.size());
    if (kept >= size) return;
    if (kept < 0) {
        d.clear();
        number.Places -= size;
        return;
    }
    const std::string rest = d.substr(static_cast<std::size_t>(kept));
    d.resize(static_cast<std::size_t>(kept));
    d.insert(d.begin(), '0');
    std::string half(rest.size(), '0');
    half[0] = '5';
    const bool odd = (d.back() - '0') % 2 == 1;
    const bool up = rest > half || (rest == half && (!tieToEven || odd));
    if (up) {
        std::size_t i = d.size();
        while (d[--i] == '9') d[i] = '0';
        ++d[i];
    }
    number.Places -= size - kept;
}

std::string ExpectedFormat(double value, int decimals) {
    Decimal number = value == 0 ? Decimal{"0", 0} : Exact(std::fabs(value));
    RoundDigits(number, 15, true);
    const std::size_t first = number.Digits.find_first_not_of('0');
    number.Digits.erase(0, first == std::string::npos ? number.Digits.size() - 1 : first);
    RoundDigits(number, static_cast<int>(number.Digits.size()) - number.Places + decimals, false);
    std::string digits = number.Digits;
    for (int place = number.Places; place < decimals; ++place) digits += '0';
    if (number.Places > decimals) digits.clear();
    const std::size_t significant = digits.find_first_not_of('0');
    const bool zero = significant == std::string::npos;
    digits.erase(0, zero ? digits.size() : significant);
    while (static_cast<int>(digits.size()) <= decimals) digits.insert(digits.begin(), '0');
    if (decimals > 0) digits.insert(digits.end() - decimals, '.');
    if (value < 0 && !zero) digits.insert(digits.begin(), '-');
    return digits;
}

std::string Picture(int decimals) {
    return decimals == 0 ? "0" : "0." + std::string(static_cast<std::size_t>(decimals), '0');
}

bool Reads(const std::string& text, char decimal, double& value) {
    return TextToNumber(text, decimal, value);
}

}  // namespace

TEST_F(Numbers, ThePlainConversionReadsTheNumberAtTheStart) {
    EXPECT_EQ(Val("12.5 mm"), 12.5);
    EXPECT_EQ(Val("  -3"), -3);
    EXPECT_EQ(Val("\t+4e2x"), 400);
    EXPECT_EQ(Val(".5"), 0.5);
    EXPECT_EQ(Val("5."), 5);
    EXPECT_EQ(Val("1,5"), 1);
    EXPECT_EQ(Val("1e"), 1);
    EXPECT_EQ(Val("1e+"), 1);
    EXPECT_EQ(Val("2E-3"), 0.002);
    EXPECT_EQ(Val("1 2 3"), 123);  // blanks are skipped wherever they stand
}

TEST_F(Numbers, ThePlainConversionGivesZeroForATextWithoutANumber) {
    for (const char* text : {"", " ", "-", "+", ".", "-.", "abc", "e5", "+-1", "float", "nan", "inf", ","})
        EXPECT_EQ(Val(text), 0) << text;
}

TEST_F(Numbers, ThePlainConversionDoesNotDependOnTheSystem) {
    Headless.Decimal = ',';
    EXPECT_EQ(Val("1.5"), 1.5);
    EXPECT_EQ(Val("1,5"), 1);
}

TEST_F(Numbers, TheSystemsConversionTakesExactlyOneNumber) {
    double value = 7;
    const std::vector<std::pair<std::string, double>> good = {
        {"1", 1},     {" 1.5 ", 1.5},   {"\t-2e3\t", -2000}, {"+.25", 0.25},
        {"3.", 3},    {"1E-09", 1e-9},  {"1e-400", 0},       {"-1e-400", 0},
        {"0e999", 0}, {"1e308", 1e308}, {"007", 7},          {"4.9e-324", 4.9406564584124654e-324}};
    for (const auto& [text, expected] : good) {
        ASSERT_TRUE(Reads(text, '.', value)) << text;
        EXPECT_EQ(value, expected) << text;
    }
    value = 7;
    for (const char* text : {"",        " ",   "nan", "NaN", "inf",  "Infinity", "-inf", "1e400", "-1e400",
                             "1,234.5", "1,5", "+-1", "--1", "- 1",  "1 2",      "1x",   "x1",    "1e",
                             "1e+",     ".",   "-",   "e5",  "0x10", "1.2.3",    "1d5",  "1_0"}) {
        EXPECT_FALSE(Reads(text, '.', value)) << text;
        EXPECT_EQ(value, 7) << text;
    }
}

TEST_F(Numbers, WithTheCommaThePointIsNoDelimiter) {
    double value = 7;
    EXPECT_TRUE(Reads("1,5", ',', value));
    EXPECT_EQ(value, 1.5);
    EXPECT_TRUE(Reads(",5e1", ',', value));
    EXPECT_EQ(value, 5);
    EXPECT_FALSE(Reads("1.5", ',', value));
    EXPECT_FALSE(Reads("1.234,5", ',', value));
    EXPECT_FALSE(Reads("1,2,3", ',', value));
    EXPECT_TRUE(Reads("0," + std::string(200, '0') + "1", ',', value));
    EXPECT_EQ(value, 1e-201);
}

TEST_F(Numbers, TheSystemsConversionAsksTheSystemForItsDelimiter) {
    double value = 0;
    Headless.Decimal = ',';
    EXPECT_TRUE(TextToNumber("2,5", value));
    EXPECT_EQ(value, 2.5);
    EXPECT_FALSE(TextToNumber("2.5", value));
    Headless.Decimal = '.';
    EXPECT_TRUE(TextToNumber("2.5", value));
}

TEST_F(Numbers, ManyDigitsDecideBetweenTooLargeAndTooSmall) {
    const std::string zeros(400, '0');
    double value = 7;
    EXPECT_FALSE(Reads("1" + zeros, '.', value));
    EXPECT_FALSE(Reads("1" + zeros + "e-10", '.', value));
    EXPECT_FALSE(Reads("0." + zeros + "1e9999", '.', value));
    EXPECT_FALSE(Reads("1e99999999999999999999999", '.', value));
    EXPECT_EQ(value, 7);
    EXPECT_TRUE(Reads("0." + zeros + "1", '.', value));
    EXPECT_EQ(value, 0);
    EXPECT_TRUE(Reads("0." + zeros + "1e+10", '.', value));
    EXPECT_EQ(value, 0);
    EXPECT_TRUE(Reads("1e-99999999999999999999999", '.', value));
    EXPECT_EQ(value, 0);
    EXPECT_TRUE(Reads(zeros + "12", '.', value));
    EXPECT_EQ(value, 12);
    EXPECT_TRUE(Reads("1" + zeros + "e-390", '.', value));
    EXPECT_EQ(value, 1e10);
    EXPECT_EQ(Val("1" + zeros), kInf);
    EXPECT_EQ(Val("-1e400"), -kInf);
    EXPECT_EQ(Val("1e-400"), 0);
}

TEST_F(Numbers, ATextThatMustBeANumberIsNamedWhenItIsNone) {
    EXPECT_EQ(NumberFromText("2.5", "x"), 2.5);
    const std::string what = ErrorOf([] { NumberFromText("2\n5", "Field 3"); });
    EXPECT_EQ(what, "Field 3: \"2?5\" is not a number");
}

TEST_F(Numbers, ThePlainTextHasUpToFifteenDigits) {
    EXPECT_EQ(PlainText(1e-9), "1E-09");
    EXPECT_EQ(PlainText(0.5), "0.5");
    EXPECT_EQ(PlainText(-0.5), "-0.5");
    EXPECT_EQ(PlainText(0.0), "0");
    EXPECT_EQ(PlainText(-0.0), "0");
    EXPECT_EQ(PlainText(100.0), "100");
    EXPECT_EQ(PlainText(0.1 + 0.2), "0.3");
    EXPECT_EQ(PlainText(1.0 / 3), "0.333333333333333");
    EXPECT_EQ(PlainText(2.0 / 3), "0.666666666666667");
    EXPECT_EQ(PlainText(123456789012345.0), "123456789012345");
    EXPECT_EQ(PlainText(1e15), "1E+15");
    EXPECT_EQ(PlainText(1e300), "1E+300");
    EXPECT_EQ(PlainText(0.0001), "0.0001");
    EXPECT_EQ(PlainText(std::nan("")), "NaN");
    EXPECT_EQ(PlainText(kInf), "Infinity");
    EXPECT_EQ(PlainText(-kInf), "-Infinity");
}

TEST_F(Numbers, ThePlainTextBearsTheSystemsDelimiter) {
    Headless.Decimal = ',';
    EXPECT_EQ(PlainText(0.5), "0,5");
    EXPECT_EQ(PlainText(1.5e-9), "1,5E-09");
    EXPECT_EQ(FormatNumber(2.5, "0.00"), "2,50");
}

TEST_F(Numbers, ShortFloatsHaveSevenDigitsAndWholeNumbersAll) {
    EXPECT_EQ(PlainText(0.1F), "0.1");
    EXPECT_EQ(PlainText(8.25F), "8.25");
    EXPECT_EQ(PlainText(1.0F / 3), "0.3333333");
    EXPECT_EQ(PlainText(std::numeric_limits<std::int32_t>::min()), "-2147483648");
    EXPECT_EQ(PlainText(std::numeric_limits<std::int64_t>::max()), "9223372036854775807");
    EXPECT_EQ(PlainText(std::int16_t{-1}), "-1");
}

TEST_F(Numbers, ThePlainTextReadsBackToFifteenDigits) {
    std::mt19937_64 random(5);
    for (int round = 0; round < 20000; ++round) {
        const double value =
            std::ldexp(static_cast<double>(random()) - 9e18, static_cast<int>(random() % 200) - 160);
        double back = 0;
        ASSERT_TRUE(TextToNumber(PlainText(value), '.', back));
        ASSERT_NEAR(back, value, std::fabs(value) * 6e-15);
    }
}

TEST_F(Numbers, PicturesRoundHalfAwayFromZeroOnFifteenDigits) {
    EXPECT_EQ(FormatNumber(0.0005, "0.000"), "0.001");
    EXPECT_EQ(FormatNumber(-0.0005, "0.000"), "-0.001");
    EXPECT_EQ(FormatNumber(2.5, "0"), "3");
    EXPECT_EQ(FormatNumber(-2.5, "0"), "-3");
    EXPECT_EQ(FormatNumber(0.5, "0"), "1");
    EXPECT_EQ(FormatNumber(0.49, "0"), "0");
    EXPECT_EQ(FormatNumber(1.005, "0.00"), "1.01");  // 1.00499999999999989... has the digits 1.005
    EXPECT_EQ(FormatNumber(999.9995, "0.000"), "1000.000");
    EXPECT_EQ(FormatNumber(9.5, "0"), "10");
    EXPECT_EQ(FormatNumber(0.95, "0.0"), "1.0");
    EXPECT_EQ(FormatNumber(0.0449999, "0.0"), "0.0");
    EXPECT_EQ(FormatNumber(12.5, "0.000000000000"), "12.500000000000");
}

TEST_F(Numbers, PicturesNeverShowANegativeZero) {
    EXPECT_EQ(FormatNumber(-0.0004, "0.000"), "0.000");
    EXPECT_EQ(FormatNumber(-0.0, "0.000"), "0.000");
    EXPECT_EQ(FormatNumber(-1e-300, "0.000000"), "0.000000");
    EXPECT_EQ(FormatNumber(-0.4, "0"), "0");
    EXPECT_EQ(FormatNumber(-0.00051, "0.000"), "-0.001");
}

TEST_F(Numbers, PicturesShowVeryLargeNumbersWithAllTheirPlaces) {
    std::string expected(301, '0');
    expected[0] = '1';
    EXPECT_EQ(FormatNumber(1e300, "0"), expected);
    EXPECT_EQ(FormatNumber(-1.7976931348623157e308, "0").size(), 310U);
    EXPECT_EQ(FormatNumber(123456789012345678.0, "0"), "123456789012346000");
}

TEST_F(Numbers, PicturesShowWhatIsNotFiniteAsAWord) {
    EXPECT_EQ(FormatNumber(std::nan(""), "0.000"), "NaN");
    EXPECT_EQ(FormatNumber(kInf, "0.000"), "Infinity");
    EXPECT_EQ(FormatNumber(-kInf, "0"), "-Infinity");
}

TEST_F(Numbers, PicturesAgreeWithExactDecimalArithmetic) {
    std::mt19937_64 random(17);
    std::vector<double> values = {0,    1,    0.1,       0.5,  0.05, 1e-7,
                                  1e-6, 5e-7, 4.9999e-7, 1e15, 1e16, 123456.7890625};
    for (int i = 0; i < 1500; ++i) {
        values.push_back(static_cast<double>(random() % 2000001) / 2000);   // ties at three places
        values.push_back(static_cast<double>(random() % 100000001) / 1e7);  // close to ties
        values.push_back(std::ldexp(static_cast<double>(random() >> 11), -static_cast<int>(random() % 90)));
        double any = 0;
        const std::uint64_t bits = random();
        std::memcpy(&any, &bits, sizeof any);
        if (i % 10 == 0 && std::isfinite(any)) values.push_back(any);
    }
    for (const double value : values)
        for (const int decimals : {0, 1, 3, 4, 6, 12})
            for (const double sign : {1.0, -1.0})
                ASSERT_EQ(FormatNumber(sign * value, Picture(decimals)),
                          ExpectedFormat(sign * value, decimals))
                    << std::hexfloat << value;
}

TEST_F(Numbers, IntRoundsTowardsMinusInfinity) {
    EXPECT_EQ(Int(1.9), 1);
    EXPECT_EQ(Int(-1.1), -2);
    EXPECT_EQ(Int(-3), -3);
    EXPECT_EQ(Int(-0.5), -1);
}

TEST_F(Numbers, WholeNumbersRoundHalfToEven) {
    EXPECT_EQ(ToInt16(0.5, "x"), 0);
    EXPECT_EQ(ToInt16(1.5, "x"), 2);
    EXPECT_EQ(ToInt16(2.5, "x"), 2);
    EXPECT_EQ(ToInt16(-0.5, "x"), 0);
    EXPECT_EQ(ToInt16(-1.5, "x"), -2);
    EXPECT_EQ(ToInt16(-2.5, "x"), -2);
    EXPECT_EQ(ToInt32(2.4999, "x"), 2);
    EXPECT_EQ(ToInt32(1e9 + 0.5, "x"), 1000000000);
}

TEST_F(Numbers, WholeNumbersOutsideTheirTypeAreRefused) {
    EXPECT_EQ(ToInt16(32767.4, "x"), 32767);
    EXPECT_EQ(ToInt16(-32768.5, "x"), -32768);
    EXPECT_EQ(ErrorOf([] { ToInt16(32767.5, "Count"); }), "Count: 32767.5 is out of range");
    EXPECT_NE(ErrorOf([] { ToInt16(-32769, "x"); }), "");
    EXPECT_EQ(ToInt32(2147483647.4, "x"), 2147483647);
    EXPECT_NE(ErrorOf([] { ToInt32(2147483648.0, "x"); }), "");
    EXPECT_NE(ErrorOf([] { ToInt32(std::nan(""), "x"); }), "");
    EXPECT_NE(ErrorOf([] { ToInt32(-kInf, "x"); }), "");
}
