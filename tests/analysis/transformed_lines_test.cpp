// Lines of points through the transformation: what is written, and that the short road writes what the
// general one does.
#include "analysis/transformed_lines.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <random>
#include <sstream>

#include "cli/headless.h"
#include "core/job.h"
#include "core/platform.h"
#include "core/units.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

struct Result {
    std::string Text;
    LineCounts Counts;
    bool operator==(const Result& other) const {
        return Text == other.Text && Counts.Lines == other.Counts.Lines &&
               Counts.WithoutNumbers == other.Counts.WithoutNumbers &&
               Counts.FirstWithout == other.Counts.FirstWithout;
    }
};

class TransformedLines : public Program {
protected:
    TransformedLines() {
        Job.LengthUnitName = "millimeter";
        Job.AngleUnitName = "degree";
        Digits(3);
    }
    static void Digits(int digits) {
        Job.LengthDigits = static_cast<std::int16_t>(digits);
        RhoFestlegung();
    }
    Result Through(const std::string& content, char delimiter = ';', bool hasName = true,
                   bool plainOnly = false) {
        const PointText file = LoadPointText(Write("in.txt", content));
        Result result;
        const LineWork work = {[&](std::string_view lines) { result.Text += lines; }, nullptr, plainOnly};
        EXPECT_TRUE(TransformLines(file, {delimiter, hasName}, work, result.Counts));
        return result;
    }
    // A quarter turn about z and a shift: (x, y, z) comes to (10 + y, 20 - x, 30 + z).
    static void QuarterTurn() {
        Job.RotZ = Job.RotZCopy = kPi / 2;
        Job.TraX = 10;
        Job.TraY = 20;
        Job.TraZ = 30;
    }
    static void AnyTransformation() {
        Job.RotXCopy = 0.3;
        Job.RotYCopy = -0.4;
        Job.RotZCopy = 0.7;
        Job.ScaleX = 1.00042;
        Job.ScaleY = 0.9993;
        Job.ScaleZ = 1.0011;
        Job.AngleXY = 0.002;
        Job.TraX = 1234.5;
        Job.TraY = -876.25;
        Job.TraZ = 345.125;
    }
};

// A decimal number of up to 15 digits, rounded half away from zero by its digits alone.
std::string RoundedByDigits(bool negative, const std::string& whole, std::string fraction,
                            std::size_t places) {
    fraction.resize(std::max(fraction.size(), places + 1), '0');
    const bool up = fraction[places] >= '5';
    std::string digits = whole + fraction.substr(0, places);
    if (up) {
        std::size_t i = digits.size();
        while (i > 0 && digits[i - 1] == '9') digits[--i] = '0';
        if (i > 0) {
            ++digits[i - 1];
        } else {
            digits.insert(0, "1");
        }
    }
    const bool zero = digits.find_first_not_of('0') == std::string::npos;
    std::string text = digits.substr(0, digits.size() - places);
    text.erase(0, std::min(text.find_first_not_of('0'), text.size()));
    if (text.empty()) text = "0";
    if (places > 0) text += "." + digits.substr(digits.size() - places);
    return (negative && !zero ? "-" : "") + text;
}

}  // namespace

TEST_F(TransformedLines, ALineIsNameAndCoordinatesWithTabsBetween) {
    QuarterTurn();
    EXPECT_EQ(Through("A;1;2;3\r\nB;-4.5;0;100\n").Text,
              "A\t12.000\t19.000\t33.000\r\nB\t10.000\t24.500\t130.000\r\n");
}

TEST_F(TransformedLines, WithoutNamesTheNumberOfTheLineIsTheName) {
    QuarterTurn();
    EXPECT_EQ(Through("1;2;3\n\n4;5;6", ';', false).Text,
              "1\t12.000\t19.000\t33.000\r\n2\t10.000\t20.000\t30.000\r\n3\t15.000\t16.000\t36.000\r\n");
}

TEST_F(TransformedLines, CoordinatesAreInTheLengthUnit) {
    QuarterTurn();
    Job.LengthUnitName = "inch";
    RhoFestlegung();
    // 1 inch is 25.4 mm: 10 mm + 2 inch, 20 mm - 1 inch, 30 mm + 3 inch.
    EXPECT_EQ(Through("A;1;2;3").Text, "A\t2.394\t-0.213\t4.181\r\n");
}

TEST_F(TransformedLines, ALineThatHoldsNoPointReadsAsZerosAndIsCounted) {
    QuarterTurn();
    const Result result = Through("A;1;2;3\nthis;is;no;point\n\nB;1;2;x\nC;4;5;6\n");
    EXPECT_EQ(result.Text,
              "A\t12.000\t19.000\t33.000\r\nthis\t10.000\t20.000\t30.000\r\n\t10.000\t20.000\t30.000\r\n"
              "B\t12.000\t19.000\t30.000\r\nC\t15.000\t16.000\t36.000\r\n");
    EXPECT_EQ(result.Counts.Lines, 5);
    EXPECT_EQ(result.Counts.WithoutNumbers, 3);
    EXPECT_EQ(result.Counts.FirstWithout, 2);
}

TEST_F(TransformedLines, AFieldIsReadAsFarAsItIsANumber) {
    EXPECT_EQ(Through("A;12abc;1e2;-.5x").Text, "A\t12.000\t100.000\t-0.500\r\n");
}

TEST_F(TransformedLines, OnASystemWithDecimalCommaTheCommaIsThePoint) {
    Headless.Decimal = ',';
    EXPECT_EQ(Through("A;1,5;2,25;-3,125").Text, "A\t1,500\t2,250\t-3,125\r\n");
    EXPECT_EQ(Through("A;1.5;2.25;-3.125").Text, "A\t1,500\t2,250\t-3,125\r\n");
    EXPECT_EQ(Through("A;1,5;2,25;-3,125").Counts.WithoutNumbers, 0);
}

TEST_F(TransformedLines, OnASystemWithDecimalPointAValueEndsAtItsComma) {
    const Result result = Through("A;1,5;2;3");
    EXPECT_EQ(result.Text, "A\t1.000\t2.000\t3.000\r\n");
    EXPECT_EQ(result.Counts.WithoutNumbers, 1);
}

TEST_F(TransformedLines, FurtherFieldsAndRepeatedDelimitersAreNothing) {
    EXPECT_EQ(Through(";;A;; 1;2 ;3;rest of it\nB;1;2;3 \t\nC 1\t2;3;4").Text,
              "A\t1.000\t2.000\t3.000\r\nB\t1.000\t2.000\t3.000\r\nC\t1.000\t2.000\t3.000\r\n");
}

TEST_F(TransformedLines, NamesKeepTheirLetters) {
    EXPECT_EQ(Through("Rück;1;2;3\n").Text,
              "R\xFC"
              "ck\t1.000\t2.000\t3.000\r\n")
        << "single-byte where it can";
    EXPECT_EQ(Through("R\xFC"
                      "ck;1;2;3\n")
                  .Text,
              "R\xFC"
              "ck\t1.000\t2.000\t3.000\r\n");
    EXPECT_EQ(Through("点;1;2;3\n").Text, "点\t1.000\t2.000\t3.000\r\n");
}

TEST_F(TransformedLines, ALastLineWithoutEndAndReturnsAloneAreLines) {
    EXPECT_EQ(Through("A;1;2;3\rB;4;5;6").Text, "A\t1.000\t2.000\t3.000\r\nB\t4.000\t5.000\t6.000\r\n");
    EXPECT_EQ(Through("A;1;2;3").Counts.Lines, 1);
    EXPECT_EQ(Through("A;1;2;3\n\n").Counts.Lines, 2);
}

// Nothing could stand in its place but a word that is no number.
TEST_F(TransformedLines, ANumberBeyondAllBoundsEndsTheWork) {
    const auto error = [this](const std::string& text) {
        try {
            Through(text);
        } catch (const PlatformError& refusal) {
            return refusal.What.substr(refusal.What.find("line "));
        }
        return std::string();
    };
    EXPECT_EQ(error("A;1;2;3\nB;1e999;1;1\n"),
              "line 2: \"1e999\" in x of point \"B\" is larger than any number that can be kept");
    EXPECT_EQ(error("A;1;-1e400mm;3\n"),
              "line 1: \"-1e400mm\" in y of point \"A\" is larger than any number that can be kept");
    Job.ScaleZ = 1e10;
    EXPECT_EQ(error("A;1;2;1e300\n"),
              "line 1: the transformed z of point \"A\" is larger than any number that can be kept");
    Job.ScaleZ = 1;
    EXPECT_EQ(error("A;1;2;1e300\n"), "");
    EXPECT_EQ(Through("B;1e-400;123456789012345678901234567890;0\n").Counts.WithoutNumbers, 0);
}

TEST_F(TransformedLines, ALineLongerThanEveryBlockIsOneLine) {
    const std::string name(700000, 'n');
    EXPECT_EQ(
        Through(name + ";1;2;3\n" + name + ";4;5;6;" + name + "\nA;7;8;9").Text,
        name + "\t1.000\t2.000\t3.000\r\n" + name + "\t4.000\t5.000\t6.000\r\nA\t7.000\t8.000\t9.000\r\n");
}

TEST_F(TransformedLines, TheWorkCanBeEndedInTheMiddle) {
    std::string content;
    for (int i = 0; i < 200000; ++i) content += "A;1;2;3\n";
    const PointText file = LoadPointText(Write("in.txt", content));
    LineCounts counts;
    int asked = 0;
    double last = 0;
    const LineWork work = {[](std::string_view) {},
                           [&](double share) {
                               EXPECT_GT(share, last);
                               EXPECT_LE(share, 1);
                               last = share;
                               return ++asked < 2;
                           }};
    EXPECT_FALSE(TransformLines(file, {';', true}, work, counts));
    EXPECT_EQ(asked, 2);
    EXPECT_LT(counts.Lines, 200000);
}

// The truth is the chain written out by its elements: scales, then oblique axes, then the rotation of the
// coordinates.
TEST_F(TransformedLines, EveryParameterOfTheChainTakesPart) {
    Digits(6);
    AnyTransformation();
    Job.Azimuth = 1.1;
    Job.AngleZtoXY = -0.03;
    const long double a = 0.3L, b = -0.4L, c = 0.7L, xy = 0.002L, az = 1.1L, zt = -0.03L;
    const std::array<std::array<long double, 3>, 3> points = {
        {{1234.5L, -987.25L, 55.125L}, {-0.5L, 2000.0L, -3500.75L}, {4000.0L, 0.0L, 1.0L}}};
    std::string in;
    for (const auto& p : points) {
        char line[100];
        std::snprintf(line, sizeof line, "P;%.4Lf;%.4Lf;%.4Lf\n", p[0], p[1], p[2]);
        in += line;
    }
    for (int i = 0; i < 50; ++i) in += "behind;0;0;0\n";  // the short road ends before the last lines
    for (const bool plainOnly : {false, true}) {
        std::istringstream lines(Through(in, ';', true, plainOnly).Text);
        for (const auto& p : points) {
            const long double sx = 1.00042L * p[0], sy = 0.9993L * p[1], sz = 1.0011L * p[2];
            const long double x = sx + std::sin(xy) * sy + std::cos(az) * std::sin(zt) * sz;
            const long double y = std::cos(xy) * sy + std::sin(az) * std::sin(zt) * sz;
            const long double z = std::cos(zt) * sz;
            const std::array<long double, 3> expected = {
                1234.5L + std::cos(b) * std::cos(c) * x +
                    (std::sin(c) * std::cos(a) + std::sin(b) * std::sin(a) * std::cos(c)) * y +
                    (std::sin(a) * std::sin(c) - std::sin(b) * std::cos(a) * std::cos(c)) * z,
                -876.25L - std::sin(c) * std::cos(b) * x +
                    (std::cos(a) * std::cos(c) - std::sin(b) * std::sin(a) * std::sin(c)) * y +
                    (std::sin(a) * std::cos(c) + std::sin(b) * std::cos(a) * std::sin(c)) * z,
                345.125L + std::sin(b) * x - std::sin(a) * std::cos(b) * y + std::cos(a) * std::cos(b) * z};
            std::string name;
            lines >> name;
            for (const long double value : expected) {
                double shown = 0;
                lines >> shown;
                EXPECT_NEAR(shown, static_cast<double>(value), 6e-7);  // half of the last digit shown
            }
        }
        EXPECT_TRUE(lines) << "every number was there";
    }
}

// The truth is rounding the digits of the text; the transformation is that which changes nothing.
TEST_F(TransformedLines, ValuesAreRoundedHalfAwayFromZeroAtEveryNumberOfDigits) {
    std::mt19937_64 random(20240611);
    for (int places = 0; places <= 6; ++places) {
        Digits(places);
        std::string in, expected;
        for (int line = 0; line < 60000; ++line) {
            in += "P" + std::to_string(line);
            expected += "P" + std::to_string(line);
            for (int i = 0; i < 3; ++i) {
                std::string whole = std::to_string(random() % 1000000);
                whole.resize(1 + random() % whole.size());
                std::string fraction = std::to_string(1000000000 + random() % 1000000000).substr(1);
                // Some exactly in the middle, some beside it.
                if (line % 3 == 0) fraction = fraction.substr(0, static_cast<std::size_t>(places)) + "5";
                if (line % 9 == 3) fraction = fraction.substr(0, static_cast<std::size_t>(places)) + "4999";
                fraction.resize(std::min<std::size_t>(fraction.size(), 15 - whole.size()));
                const bool negative = random() % 2 == 0;
                in += (negative ? ";-" : ";") + whole + (fraction.empty() ? "" : ".") + fraction;
                expected +=
                    "\t" + RoundedByDigits(negative, whole, fraction, static_cast<std::size_t>(places));
            }
            in += "\n";
            expected += "\r\n";
        }
        EXPECT_TRUE(Through(in).Text == expected) << places;
    }
}

TEST_F(TransformedLines, TheShortRoadWritesWhatTheGeneralOneWrites) {
    std::mt19937_64 random(7);
    AnyTransformation();
    for (const char* unit : {"millimeter", "inch"}) {
        Job.LengthUnitName = unit;
        for (int places = 0; places <= 6; ++places) {
            Digits(places);
            std::string in;
            for (int line = 0; line < 30000; ++line) {
                in += "P" + std::to_string(line);
                for (int i = 0; i < 3; ++i) {
                    // All sizes from the last digit shown to far beyond what is measured.
                    const std::uint64_t number = random() >> (14 + random() % 50);
                    std::string digits = std::to_string(number);
                    digits.insert(random() % (digits.size() + 1), ".");
                    in += (random() % 2 == 0 ? ";-" : ";") + digits;
                }
                in += line % 2 == 0 ? "\r\n" : "\n";
            }
            EXPECT_TRUE(Through(in) == Through(in, ';', true, true)) << unit << places;
        }
    }
}

TEST_F(TransformedLines, DamagedTextsTakeBothRoadsToTheSameBytes) {
    std::mt19937_64 random(11);
    AnyTransformation();
    const std::string_view pieces = ";;;;,. \t\n\r\n-+eE0123456789019ABx:\xC3\xBC\xFE\xFF*#\xC3\xBE";
    for (int round = 0; round < 4000; ++round) {
        Headless.Decimal = round % 3 == 0 ? ',' : '.';
        Digits(round % 7);
        std::string in;
        const auto lines = static_cast<int>(random() % 12);
        for (int line = 0; line < lines; ++line)
            in += "P" + std::to_string(line) + ";" + std::to_string(random() % 100000) + ".25;-0.5;" +
                  std::to_string(random() % 100) + (random() % 2 == 0 ? "\r\n" : "\n");
        const auto changes = static_cast<int>(random() % 8);
        for (int change = 0; change < changes && !in.empty(); ++change) {
            const std::size_t at = random() % in.size();
            const char piece = pieces[random() % pieces.size()];
            switch (random() % 3) {
                case 0:
                    in[at] = piece;
                    break;
                case 1:
                    in.insert(at, 1, piece);
                    break;
                default:
                    in.erase(at, random() % 4);
            }
        }
        const char delimiter = std::string_view(";;; \t,:*#")[random() % 9];
        const bool hasName = random() % 3 != 0;
        // Both take it to its end, or refuse it for the same number.
        const auto through = [&](bool plainOnly) {
            try {
                return Through(in, delimiter, hasName, plainOnly);
            } catch (const PlatformError& refusal) {
                Result refused;
                refused.Text = refusal.What;
                return refused;
            }
        };
        EXPECT_TRUE(through(false) == through(true)) << in;
    }
}

TEST_F(TransformedLines, ATextOfEveryLengthIsReadToItsEndAndNoFurther) {
    const std::string whole = "P1;1.25;-2.5;3\r\nP2;4;5;6.125\nP3;7;8;9;more\n";
    for (std::size_t length = 0; length <= whole.size(); ++length)
        EXPECT_TRUE(Through(whole.substr(0, length)) == Through(whole.substr(0, length), ';', true, true))
            << length;
}
