// Point lines through the transformation.
#include "analysis/transformed_lines.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>

#include "core/arrays.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/short_numbers.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/transform.h"

namespace corvinade::analysis {

namespace {

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

using namespace core::words;

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
    std::size_t decimals = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        if (i > 0 && *at++ != delimiter) return nullptr;
        if (!ShortNumber(at, {'.', decimal}, delimiter, xyz[i], decimals)) return nullptr;
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
    const bool shortRoad = kServes && !work.PlainOnly && !file.LoneReturns && form.Delimiter != '\0' &&
                           places <= 6 && Units.FmtLength == DigitFormats()[static_cast<std::size_t>(places)];
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
