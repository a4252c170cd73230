// Point lines through the transformation.
#include "analysis/transformed_lines.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>

#include "core/arrays.h"
#include "core/digit_pairs.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/transform.h"

namespace corvinade::analysis {

namespace {

constexpr std::array<double, 16> kPowersOfTen = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

struct Lines {
    const LineForm& Form;
    char Decimal;     // the system's
    double Factor;    // Units.LengthFactor
    Mat3 M;           // the chain's product
    Vec3 Shift;       // mm
    std::string Out;  // lines not yet handed on
    LineCounts& Counts;
    RowNotes* Rows;
    const std::string& Path;
    std::string Decoded = {}, Scratch = {}, Field = {}, Text = {};
};

// The point in the target system, in the unit shown. The same operations in the same order as the chain has
// them for one point.
inline void Carry(const Lines& s, std::array<double, 3>& xyz) {
    const Mat3& M = s.M;
    double x = xyz[0], y = xyz[1], z = xyz[2];
    if (s.Factor != 1) {  // nothing changes otherwise
        x /= s.Factor;
        y /= s.Factor;
        z /= s.Factor;
    }
    const Vec3 turned(M(1, 1) * x + M(1, 2) * y + M(1, 3) * z, M(2, 1) * x + M(2, 2) * y + M(2, 3) * z,
                      M(3, 1) * x + M(3, 2) * y + M(3, 3) * z);
    for (std::size_t i = 0; i < 3; ++i)
        xyz[i] = (s.Shift(static_cast<int>(i) + 1) + turned(static_cast<int>(i) + 1)) * s.Factor;
}

// --- The general road -------------------------------------------------------------------------------------

constexpr std::array<const char*, 3> kAxes = {"x", "y", "z"};

// A coordinate that no number can hold has nothing that could be written in its place.
[[noreturn]] void RefuseInfinite(Lines& s, const std::string& what) {
    s.Counts.Refused = s.Counts.Lines;
    throw PlatformError{"Cannot read \"" + s.Path + "\", line " + std::to_string(s.Counts.Lines) + ": " +
                        what};
}

void PlainLine(Lines& s, std::string_view line, bool decode) {
    std::string_view rest = line;
    if (decode && !IsAscii(line)) {
        s.Decoded = DecodeText(line);
        rest = s.Decoded;
    }
    const char delimiter = s.Form.Delimiter;
    if (s.Form.HasName) {
        s.Text = CutField(rest, delimiter, s.Scratch);
    } else {
        s.Text = std::to_string(s.Counts.Lines);
    }
    std::array<double, 3> xyz{};
    const std::string name = s.Text;
    const auto place = [&name](std::size_t axis) {
        return std::string(kAxes[axis]) + " of point \"" + Printable(name) + "\"";
    };
    const bool isEmpty = !HoldsMore(line);
    if (isEmpty && s.Rows != nullptr)
        s.Rows->Count(NoteCode::EmptyCoordinate, s.Counts.Lines,
                      [] { return "An empty line is taken as a point whose coordinates are 0"; });
    bool numbers = true, passed = !line.empty() && line.front() == delimiter;
    for (std::size_t i = 0; i < 3; ++i) {
        passed = passed || (!rest.empty() && rest.front() == delimiter);
        s.Field = CutField(rest, delimiter, s.Scratch);
        if (s.Decimal == ',') std::replace(s.Field.begin(), s.Field.end(), ',', '.');
        xyz[i] = Val(s.Field);
        if (!std::isfinite(xyz[i])) RefuseInfinite(s, TooLarge(s.Field, place(i)));
        double exact = 0;
        const bool number = TextToNumber(s.Field, '.', exact);
        numbers = numbers && number;
        if (s.Rows == nullptr || isEmpty) continue;
        if (number) {
            s.Rows->LookAtDigits(s.Field, s.Counts.Lines);
        } else {
            s.Rows->LookAtPlainValue(s.Field, place(i), s.Counts.Lines);
        }
    }
    if (!numbers) {
        ++s.Counts.WithoutNumbers;
        if (s.Counts.FirstWithout == 0) s.Counts.FirstWithout = s.Counts.Lines;
    }
    const bool marked = s.Rows != nullptr && s.Form.HasName && s.Rows->TakeMark(rest, name, s.Counts.Lines);
    if (s.Rows != nullptr && (passed || (HoldsMore(rest) && !marked)))
        s.Rows->Look(decode ? DecodeText(line) : std::string(line), s.Counts.Lines);
    Carry(s, xyz);
    for (std::size_t i = 0; i < 3; ++i) {
        if (!std::isfinite(xyz[i]))
            RefuseInfinite(s, "the transformed " + place(i) + " is larger than any number that can be kept");
        s.Text += '\t';
        s.Text += FormatNumber(xyz[i], Units.FmtLength);
    }
    s.Text += kLineEnd;
    if (IsAscii(s.Text)) {
        s.Out += s.Text;
    } else {
        s.Out += EncodeText(s.Text);
    }
}

// --- The short road ---------------------------------------------------------------------------------------
// Eight characters at a time, as one word with the first of them lowest: how many digits there are is found
// without a branch for each, which no processor foretells in numbers of all lengths.

using Word = std::uint64_t;

constexpr Word Each(unsigned byte) {
    return 0x0101010101010101U * byte;
}

inline Word Load(const char* at) {
    Word word = 0;
    std::memcpy(&word, at, sizeof word);
    return word;
}

// 0x80 in the lowest byte that is wanted; what stands above it tells nothing. 0 where there is none.
inline Word NoDigit(Word digits) {  // characters that '0' has been taken from, bit by bit
    return ((digits + Each(0x76)) | digits) & Each(0x80);
}
inline Word EqualTo(Word word, Word character) {
    const Word difference = word ^ character;
    return (difference - Each(1)) & ~difference & Each(0x80);
}
inline Word BelowOrBeyond(Word word) {  // blanks, control characters, and all that is not ASCII
    return ((word - Each(0x21)) | word) & Each(0x80);
}

inline unsigned Before(Word marks) {  // bytes before the lowest one that is not 0
    return static_cast<unsigned>(std::countr_zero(marks)) / 8;
}

// The number of eight digits; zeros may stand in front of it.
inline Word NumberOf(Word digits) {
    digits = digits * 10 + (digits >> 8);
    return ((digits & 0x000000FF000000FFU) * 0x000F424000000064U +
            ((digits >> 16) & 0x000000FF000000FFU) * 0x0000271000000001U) >>
           32;
}
// That of the first `count` digits, 1 to 7 of them.
inline Word NumberOf(Word digits, std::size_t count) {
    return NumberOf(digits << (64 - 8 * count));
}

// Reads a decimal number of 1 to 15 digits at `at`, which ends behind it. False for any other field.
inline bool ShortNumber(const char*& at, char decimal, char delimiter, double& value) {
    const char* p = at;
    const bool negative = *p == '-';
    p += static_cast<int>(negative);
    Word number = 0;
    std::size_t places = 0;
    const Word whole = Load(p) ^ Each('0');
    const Word wholeEnd = NoDigit(whole);
    if (wholeEnd == 0) return false;
    const std::size_t wholeDigits = Before(wholeEnd);
    p += wholeDigits;
    if ((*p == '.' || *p == decimal) && *p != delimiter) {
        const char* const point = ++p;
        const Word fraction = Load(p) ^ Each('0');
        const Word fractionEnd = NoDigit(fraction);
        places = fractionEnd == 0 ? 8 : Before(fractionEnd);
        p += places;
        if (places != 0 && wholeDigits + places <= 8 && fractionEnd != 0) {
            // Both parts in one word, which is the usual case.
            const Word both = (whole & ((Word{1} << 8 * wholeDigits) - 1))
                                  << (64 - 8 * (wholeDigits + places)) |
                              fraction << (64 - 8 * places);
            number = NumberOf(both);
        } else {
            if (wholeDigits > 0) number = NumberOf(whole, wholeDigits);
            unsigned digit = 0;
            for (p = point; (digit = static_cast<unsigned>(static_cast<unsigned char>(*p)) - '0') <= 9 &&
                            p - point <= 15;
                 ++p)
                number = number * 10 + digit;
            places = static_cast<std::size_t>(p - point);
        }
    } else if (wholeDigits > 0) {
        number = NumberOf(whole, wholeDigits);
    }
    const std::size_t digits = wholeDigits + places;
    if (digits < 1 || digits > 15) return false;
    // The sign without a branch: it changes from number to number.
    const double size = static_cast<double>(number) / kPowersOfTen[places];
    value = std::bit_cast<double>(std::bit_cast<Word>(size) | static_cast<Word>(negative) << 63);
    at = p;
    return true;
}

inline char* PutPair(char* at, Word pair) {
    std::memcpy(at, &kDigitPairs[2 * pair], 2);
    return at + 2;
}

// The digits of a number below 100,000,000, the first one lowest, without '0' added.
inline Word EightDigits(Word number) {
    // Two groups of four, four of two, eight digits: each step divides all groups at once.
    Word digits = number / 10000 | (number % 10000) << 32;
    Word upper = (digits * 10486 >> 20) & 0x0000007F0000007FU;
    digits = (digits - upper * 100) << 16 | upper;
    upper = (digits * 103 >> 10) & 0x000F000F000F000FU;
    return (digits - upper * 10) << 8 | upper;
}

inline void Put(char* at, Word characters) {
    std::memcpy(at, &characters, sizeof characters);
}

char* PutLarge(char* at, Word number);

// Digits of a whole number; up to 8 characters behind them are overwritten.
inline char* PutWhole(char* at, Word number) {
    if (number >= 100000000) return PutLarge(at, number);
    const Word digits = EightDigits(number);
    const unsigned zeros = Before(digits | Word{1} << 56);  // the last one is shown for 0 too
    Put(at, (digits | Each('0')) >> 8 * zeros);
    return at + (8 - zeros);
}

char* PutLarge(char* at, Word number) {
    at = PutWhole(at, number / 100000000);
    number %= 100000000;
    for (Word unit = 1000000; unit > 0; unit /= 100) at = PutPair(at, number / unit % 100);
    return at;
}

// Puts a value with `places` decimals; null where only the general formatter knows how it is rounded.
template <int places>
inline char* PutShort(char* at, double value, char decimal) {
    constexpr std::array<Word, 7> kUnits = {1, 10, 100, 1000, 10000, 100000, 1000000};
    constexpr Word kUnit = kUnits[places];
    // The general formatter rounds to 15 digits first, which moves the value by 5e-15 of itself at most,
    // and the product here by 2^-53 of itself.
    constexpr double kRoundings = 6e-15;
    const double scaled = std::fabs(value) * static_cast<double>(kUnit);
    if (!(scaled < 1e13)) return nullptr;
    const auto below = static_cast<std::int64_t>(scaled);
    const double behind = scaled - static_cast<double>(below) - 0.5;
    if (std::fabs(behind) <= kRoundings * scaled) return nullptr;
    const Word number = static_cast<Word>(below) + (behind > 0 ? 1U : 0U);
    *at = '-';
    at += static_cast<int>(value < 0) & static_cast<int>(number != 0);
    if (number < 100000000) {
        // Whole part and decimals are eight digits together, which is the usual case. At least one of the
        // whole part is shown.
        constexpr unsigned kWhole = 8 - places;
        const Word digits = EightDigits(number);
        const unsigned zeros = Before(digits | Word{1} << 8 * (kWhole - 1));
        const Word text = digits | Each('0');
        Put(at, text >> 8 * zeros);
        at += kWhole - zeros;
        if constexpr (places > 0) {
            Put(at, text >> 8 * kWhole << 8 | static_cast<unsigned char>(decimal));
            at += places + 1;
        }
        return at;
    }
    const Word whole = number / kUnit;
    at = PutWhole(at, whole);
    if constexpr (places > 0) {
        Word rest = number - whole * kUnit;
        *at++ = decimal;
        if constexpr (places % 2 == 1) {
            constexpr Word kFirst = kUnit / 10;
            *at++ = static_cast<char>('0' + rest / kFirst);
            rest %= kFirst;
        }
        if constexpr (places >= 6) at = PutPair(at, rest / 10000 % 100);
        if constexpr (places >= 4) at = PutPair(at, rest / 100 % 100);
        if constexpr (places >= 2) at = PutPair(at, rest % 100);
    }
    return at;
}

constexpr std::size_t kLongestName = 64;
constexpr std::size_t kLongestLine = kLongestName + 3 * 24 + 16;  // with what is overwritten behind it
constexpr std::ptrdiff_t kLookAhead = 192;                        // no line is looked at further than that

// Puts the name at `at`, which ends behind its delimiter; null where it is none that the short road knows.
inline char* PutName(char* put, const char*& at, char delimiter) {
    const Word delimiters = Each(static_cast<unsigned char>(delimiter));
    for (std::size_t length = 0; length < kLongestName; length += 8) {
        const Word word = Load(at + length);
        std::memcpy(put + length, &word, sizeof word);
        const Word marks = EqualTo(word, delimiters) | BelowOrBeyond(word);
        if (marks == 0) continue;
        length += Before(marks);
        if (at[length] != delimiter || length == 0) return nullptr;
        at += length + 1;
        return put + length;
    }
    return nullptr;
}

// The marks are short, and most remarks are told apart by their first letter.
inline bool EndsInMark(const char* at, const char* stop) {
    if (stop > at && stop[-1] == '\r') --stop;
    if (at >= stop || stop - at > 16 || (*at != 'o' && *at != 'd' && *at != ' ')) return false;
    return IsMark({at, static_cast<std::size_t>(stop - at)});
}

// Takes the line at `at` where it is one that the short road knows; the next line's beginning, or null. There
// are kLookAhead characters of text.
template <int places>
const char* ShortLine(Lines& s, const char* at, const char* end, char*& out) {
    const char delimiter = s.Form.Delimiter, decimal = s.Decimal;
    char* put =
        s.Form.HasName ? PutName(out, at, delimiter) : PutWhole(out, static_cast<Word>(s.Counts.Lines) + 1);
    if (put == nullptr) return nullptr;
    std::array<double, 3> xyz;  // NOLINT: all three are read
    for (std::size_t i = 0; i < 3; ++i) {
        if (i > 0 && *at++ != delimiter) return nullptr;
        if (!ShortNumber(at, decimal, delimiter, xyz[i])) return nullptr;
    }
    bool further = false;
    if (*at == '\n') {
        ++at;
    } else if (*at == '\r' && at[1] == '\n') {
        at += 2;
    } else {
        // Further fields are passed over, but for a mark that says something of the point.
        if (*at != delimiter && *at != ' ' && *at != '\t') return nullptr;
        const auto* lineFeed =
            static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)));
        const char* const stop = lineFeed == nullptr ? end : lineFeed;
        further = std::any_of(
            at, stop, [delimiter](char c) { return c != delimiter && c != ' ' && c != '\t' && c != '\r'; });
        if (further && s.Form.HasName && EndsInMark(at + 1, stop)) return nullptr;
        at = lineFeed == nullptr ? end : lineFeed + 1;
    }
    Carry(s, xyz);
    for (const double value : xyz) {
        *put++ = '\t';
        put = PutShort<places>(put, value, decimal);
        if (put == nullptr) return nullptr;
    }
    *put++ = '\r';
    *put++ = '\n';
    out = put;
    ++s.Counts.Lines;
    if (further && s.Counts.MoreFields++ == 0) s.Counts.FirstMore = s.Counts.Lines;
    return at;
}

using ShortRoad = const char* (*)(Lines&, const char*, const char*, char*&);
constexpr std::array<ShortRoad, 7> kShortRoads = {ShortLine<0>, ShortLine<1>, ShortLine<2>, ShortLine<3>,
                                                  ShortLine<4>, ShortLine<5>, ShortLine<6>};

constexpr std::size_t kBlock_bytes = 1 << 18;
constexpr std::int64_t kLinesBetweenQuestions = 1 << 15;

}  // namespace

bool TransformLines(const PointText& file, const LineForm& form, const LineWork& work, LineCounts& counts) {
    counts = LineCounts{};
    BuildChain();
    const std::size_t point = Units.FmtLength.find('.');
    const int places = point == std::string::npos ? 0 : static_cast<int>(Units.FmtLength.size() - point - 1);
    Lines s = {form, SystemDecimal(), Units.LengthFactor, Chain.Product, Vec3(Job.TraX, Job.TraY, Job.TraZ),
               {},   counts,          work.Rows,          file.Path};
    const bool shortRoad = std::endian::native == std::endian::little && !work.PlainOnly &&
                           !file.LoneReturns && form.Delimiter != '\0' && places <= 6 &&
                           Units.FmtLength == DigitFormats()[static_cast<std::size_t>(places)];
    const ShortRoad takeShort = shortRoad ? kShortRoads[static_cast<std::size_t>(places)] : nullptr;

    std::string buffer(kBlock_bytes + kLongestLine, '\0');
    char* out = buffer.data();
    const auto handOn = [&] {
        work.Write({buffer.data(), static_cast<std::size_t>(out - buffer.data())});
        out = buffer.data();
    };
    LineWalk walk(file);
    const char* const begin = file.Text.data();
    const char* const end = begin + file.Text.size();
    std::int64_t question = kLinesBetweenQuestions;
    while (!walk.Rest.empty()) {
        const char* at = walk.Rest.data();
        if (takeShort != nullptr) {
            while (end - at >= kLookAhead && counts.Lines < question && out < buffer.data() + kBlock_bytes) {
                const char* const next = takeShort(s, at, end, out);
                if (next == nullptr) break;
                at = next;
            }
            walk.Rest = {at, static_cast<std::size_t>(end - at)};
        }
        if (out >= buffer.data() + kBlock_bytes) {
            handOn();
            continue;
        }
        if (counts.Lines >= question) {
            question += kLinesBetweenQuestions;
            if (work.GoOn &&
                !work.GoOn(static_cast<double>(at - begin) / static_cast<double>(file.Text.size())))
                return false;
            continue;
        }
        // One line that only the general road knows.
        std::string_view line;
        if (!walk.Next(line)) break;
        ++counts.Lines;
        s.Out.clear();
        PlainLine(s, line, !file.Ascii);
        if (s.Out.size() > kBlock_bytes) {
            handOn();
            work.Write(s.Out);
        } else {
            if (static_cast<std::size_t>(out - buffer.data()) + s.Out.size() > buffer.size()) handOn();
            out += s.Out.copy(out, s.Out.size());
        }
    }
    handOn();
    return true;
}

}  // namespace corvinade::analysis
