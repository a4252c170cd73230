// Rows of text with a point each.
#include "import/cloud_rows.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <system_error>

#include "core/short_numbers.h"
#include "core/text.h"

namespace corvinade::import {

namespace {

constexpr std::array<double, 18> kPowersOfTen = {1e0, 1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,
                                                 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17};
constexpr int kMostDecimals = 17;  // a file's own: no double has more
constexpr int kLeastOfNormals = 6, kLeastOfTurns = 9;

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

// A plain decimal number of up to 15 digits: a whole number over a power of ten, which one division rounds
// correctly. `decimals` is how many of them it has.
bool PlainDecimal(std::string_view text, char decimal, double& value, int& decimals) {
    const bool negative = text.front() == '-';
    std::uint64_t number = 0;
    std::size_t digits = 0, places = 0;
    bool behind = false;
    for (std::size_t i = negative ? 1 : 0; i < text.size(); ++i) {
        const unsigned digit = static_cast<unsigned>(static_cast<unsigned char>(text[i])) - '0';
        if (digit <= 9) {
            number = number * 10 + digit;
            ++digits;
            places += behind ? 1 : 0;
        } else if (text[i] == decimal && !behind) {
            behind = true;
        } else {
            return false;
        }
    }
    if (digits < 1 || digits > 15) return false;
    const double size = static_cast<double>(number) / kPowersOfTen[places];
    value = negative ? -size : size;
    decimals = static_cast<int>(places);
    return true;
}

constexpr int kShortPlaces = 7;  // decimals that words::PutShort puts are fewer

inline char* PutShort(char* at, double value, int places, char decimal) {
    using Put = char* (*)(char*, double, char);
    constexpr std::array<Put, kShortPlaces> kPut = {
        words::PutShort<0>, words::PutShort<1>, words::PutShort<2>, words::PutShort<3>,
        words::PutShort<4>, words::PutShort<5>, words::PutShort<6>};
    return kPut[static_cast<std::size_t>(places)](at, value, decimal);
}

// How many fields stand in front of x, y and z, where these stand side by side and are all that changes;
// less than 0 otherwise.
int FieldsBefore(const CloudTask& task, const RowForm& form) {
    if (!words::kServes || task.Motion == nullptr || task.Wish.Pairs || !form.HasZ ||
        form.Delimiter == kAlignedFields || form.Delimiter == form.Decimal)
        return -1;
    const auto changes = [](PointColumn column) {
        return column != PointColumn::None && column != PointColumn::Name;
    };
    const auto x = std::find_if(form.Columns.begin(), form.Columns.end(), changes);
    constexpr std::array<PointColumn, 3> kAxes = {PointColumn::X, PointColumn::Y, PointColumn::Z};
    if (form.Columns.end() - x < 3 || !std::equal(kAxes.begin(), kAxes.end(), x) ||
        std::any_of(x + 3, form.Columns.end(), changes))
        return -1;
    return static_cast<int>(x - form.Columns.begin());
}

// NumberOf for a field of a row, behind which words::kReadAhead characters are readable.
static_assert(words::kReadAhead <= kReadAhead_bytes);
inline NumberKind NumberInRow(std::string_view text, char decimal, double& value, int& decimals) {
    if (words::kServes && !text.empty()) {
        const char* at = text.data();
        const char* const end = at + text.size();
        while (at < end && IsBlank(*at)) ++at;
        std::size_t places = 0;
        if (at < end && words::ShortNumber(at, {decimal, decimal}, '\0', value, places) && at <= end) {
            while (at < end && IsBlank(*at)) ++at;
            decimals = static_cast<int>(places);
            if (at == end) return NumberKind::Finite;
        }
    }
    return NumberOf(text, decimal, value, &decimals);
}

}  // namespace

NumberKind NumberOf(std::string_view text, char decimal, double& value, int* decimals) {
    text = Trimmed(text);
    if (text.empty()) return NumberKind::None;
    int plain = 0;
    if (PlainDecimal(text, decimal, value, plain)) {
        if (decimals != nullptr) *decimals = plain;
        return NumberKind::Finite;
    }
    if (decimals != nullptr) *decimals = DecimalsOf(text, decimal);
    const bool signedBefore = text.front() == '+';
    if (signedBefore) text.remove_prefix(1);
    if (text.empty() || ((text.front() == '+' || text.front() == '-') && signedBefore))
        return NumberKind::None;
    std::string pointed;
    if (decimal != '.') {
        if (text.find('.') != std::string_view::npos) return NumberKind::None;
        pointed = text;
        std::replace(pointed.begin(), pointed.end(), decimal, '.');
        text = pointed;
    }
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (end != text.data() + text.size()) return NumberKind::None;
    if (error == std::errc::result_out_of_range) return NumberKind::OutOfRange;
    if (error != std::errc()) return NumberKind::None;
    return std::isfinite(value) ? NumberKind::Finite : NumberKind::NotFinite;
}

int DecimalsOf(std::string_view text, char decimal) {
    text = Trimmed(text);
    std::size_t e = 0, point = text.size();
    for (; e < text.size() && text[e] != 'e' && text[e] != 'E'; ++e)
        if (text[e] == decimal) point = e;
    int decimals = point < e ? static_cast<int>(e - point - 1) : 0;
    if (e < text.size()) {
        std::string_view digits = text.substr(e + 1);
        if (!digits.empty() && digits.front() == '+') digits.remove_prefix(1);
        int exponent = 0;
        std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
        decimals -= exponent;
    }
    return std::clamp(decimals, 0, kMostDecimals);
}

void AppendFixed(double value, int decimals, char decimal, std::string& text) {
    if (words::kServes && decimals < kShortPlaces) {
        std::array<char, 32> shown;  // NOLINT: what is not written is not read
        const char* const end = PutShort(shown.data(), value, decimals, decimal);
        if (end != nullptr) {
            text.append(shown.data(), static_cast<std::size_t>(end - shown.data()));
            return;
        }
    }
    char buffer[400];
    const double scaled = std::fabs(value) * kPowersOfTen[static_cast<std::size_t>(decimals)];
    // The product is off by at most half its last place, so it rounds as the value does unless it lies that
    // near to the middle between two shown ones.
    const double whole = std::floor(scaled);
    if (scaled < 1e15 && std::fabs(scaled - whole - 0.5) > scaled * 0x1p-52) {
        auto number = static_cast<std::uint64_t>(scaled - whole > 0.5 ? whole + 1 : whole);
        if (number != 0 && value < 0) text += '-';
        char* at = buffer + sizeof buffer;
        const auto putPair = [&at, &number] {
            const std::uint64_t pair = number % 100;
            number /= 100;
            at -= 2;
            std::memcpy(at, words::kDigitPairs.data() + 2 * pair, 2);
        };
        int left = decimals;
        for (; left > 1; left -= 2) putPair();
        if (left > 0) {
            *--at = static_cast<char>('0' + number % 10);
            number /= 10;
        }
        if (decimals > 0) *--at = decimal;
        while (number >= 100) putPair();
        do {
            *--at = static_cast<char>('0' + number % 10);
            number /= 10;
        } while (number != 0);
        text.append(at, static_cast<std::size_t>(buffer + sizeof buffer - at));
        return;
    }
    const char* const end =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, decimals).ptr;
    std::string shown(buffer, static_cast<std::size_t>(end - buffer));
    if (shown.front() == '-' && shown.find_first_of("123456789") == std::string::npos) shown.erase(0, 1);
    if (decimal != '.') std::replace(shown.begin(), shown.end(), '.', decimal);
    text += shown;
}

std::string CountOfValues(std::size_t found, std::size_t wanted) {
    return found > wanted ? "more than " + std::to_string(wanted) + " values"
                          : std::to_string(found) + " values";
}

void FieldsOf(std::string_view row, char delimiter, std::size_t most, std::vector<std::string_view>& fields) {
    fields.clear();
    std::size_t at = 0;
    const bool aligned = delimiter == kAlignedFields;
    const bool blanks = delimiter == '\0' || aligned;
    const auto parts = [row](std::size_t i) {
        return IsBlank(row[i]) && (row[i] == '\t' || i + 1 == row.size() || IsBlank(row[i + 1]));
    };
    while (fields.size() < most) {
        while (at < row.size() && IsBlank(row[at]) && row[at] != delimiter) ++at;
        if (at == row.size() && blanks) return;
        if (at < row.size() && row[at] == '"') {
            std::size_t end = at + 1;
            while (end < row.size() && (row[end] != '"' || (end + 1 < row.size() && row[end + 1] == '"')))
                end += row[end] == '"' ? 2 : 1;
            if (end < row.size()) {
                fields.push_back(row.substr(at + 1, end - at - 1));
                at = end + 1;
                // What stands between the quote and the delimiter belongs to nothing.
                while (at < row.size() && (blanks ? !IsBlank(row[at]) : row[at] != delimiter)) ++at;
                if (at >= row.size()) return;
                ++at;
                continue;
            }
        }
        std::size_t end = at;
        if (aligned) {
            while (end < row.size() && !parts(end)) ++end;
        } else {
            end = std::min(blanks ? row.find_first_of(" \t", at) : row.find(delimiter, at), row.size());
        }
        fields.push_back(row.substr(at, end - at));
        if (end == row.size()) return;
        at = end + 1;
    }
}

RowCarrier::RowCarrier(CloudTask& task, RowForm form, int decimals)
    : form_(std::move(form)), task_(task), decimals_(decimals), fieldsBefore_(FieldsBefore(task, form_)) {}

void RowCarrier::TakeColumns(std::vector<PointColumn> columns) {
    form_.Columns = std::move(columns);
    fieldsBefore_ = FieldsBefore(task_, form_);
}

void RowCarrier::LookAhead(std::string_view rows, bool isWhole) {
    constexpr int kMostRows = 10000, kMostOfFile = 12;
    std::string_view row;
    isWhole = isWhole || rows.ends_with('\n') || rows.ends_with('\r');
    for (int i = 0; i < kMostRows && CutLine(rows, row); ++i) {
        if (rows.empty() && !isWhole) break;  // the last one may go on behind the view
        FieldsOf(row, form_.Delimiter, form_.Columns.size(), fields_);
        for (std::size_t k = 0; k < fields_.size(); ++k) {
            double value = 0;
            const bool wanted = form_.Columns[k] >= PointColumn::X && form_.Columns[k] <= PointColumn::Z;
            if (!wanted || fields_[k].find_first_of("eE") != std::string_view::npos ||
                NumberOf(fields_[k], form_.Decimal, value) != NumberKind::Finite)
                continue;
            decimals_ = std::max(decimals_, std::min(kMostOfFile, DecimalsOf(fields_[k], form_.Decimal)));
        }
    }
}

std::optional<std::array<double, 3>> RowCarrier::SigmasOf(PointColumn first) const {
    constexpr std::size_t kForAll = 3;
    std::array<double, 4> values{};
    std::array<bool, 4> stands{};
    const auto from = static_cast<std::size_t>(first);
    for (std::size_t i = 0; i < form_.Columns.size(); ++i) {
        const auto column = static_cast<std::size_t>(form_.Columns[i]);
        if (column < from || column > from + kForAll) continue;
        stands[column - from] = true;
        const std::string_view text = i < fields_.size() ? fields_[i] : std::string_view();
        double& value = values[column - from];
        if (NumberOf(text, form_.Decimal, value) != NumberKind::Finite || value < 0)
            task_.In.FailAtLine("column " + std::to_string(i + 1) + ", \"" + Printable(text) +
                                "\", is no standard deviation of 0 or more");
    }
    const bool any = stands[0] || stands[1] || stands[2];
    if (!any && !stands[kForAll]) return std::nullopt;
    std::array<double, 3> sigmas{};
    for (std::size_t axis = 0; axis < sigmas.size(); ++axis) {
        if (!stands[axis] && !stands[kForAll])
            task_.In.Fail(
                "of its columns sx, sy and sz, or SX, SY and SZ, all three are wanted; one s or S stands for "
                "all of them");
        sigmas[axis] = stands[axis] ? values[axis] : values[kForAll];
    }
    return sigmas;
}

// A control point that is not to be used has 0; without the field it is used.
bool RowCarrier::IsDisabled(std::string_view field) const {
    const std::string_view text = Trimmed(field);
    if (!text.empty() && text != "0" && text != "1")
        task_.In.FailAtLine("\"" + Printable(text) + "\" of the column enable is neither 0 nor 1");
    return text == "0";
}

bool RowCarrier::CarryShort(std::string_view row) {
    constexpr std::size_t kLongest = 512;
    constexpr std::size_t kThreeNumbers = 128;  // with what is overwritten behind them
    if (row.size() > kLongest) return false;
    std::array<char, kLongest + kThreeNumbers> changed;  // NOLINT: what is not written is not read
    char* to = changed.data();
    const char* at = row.data();
    const char* const end = at + row.size();
    const bool blanks = form_.Delimiter == '\0';
    const char delimiter = blanks ? ' ' : form_.Delimiter;
    const words::Word delimiters = words::Each(static_cast<unsigned char>(delimiter));
    for (int field = 0; field < fieldsBefore_; ++field) {
        const char* const begin = at;
        for (;;) {
            if (at >= end) return false;
            const words::Word word = words::Load(at);
            words::Put(to, word);
            const words::Word marks = words::EqualTo(word, delimiters) |
                                      words::EqualTo(word, words::Each('"')) |
                                      words::EqualTo(word, words::Each('\t'));
            const unsigned count = marks == 0 ? 8 : words::Before(marks);
            at += count;
            to += count;
            if (marks != 0) break;
        }
        if (at >= end || *at != delimiter || (blanks && at == begin)) return false;
        ++at;
        ++to;
    }
    std::array<double, 3> from{};
    std::array<std::size_t, 3> places{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        if (axis > 0 && *at++ != delimiter) return false;
        if (!words::ShortNumber(at, {form_.Decimal, form_.Decimal}, delimiter, from[axis], places[axis]))
            return false;
    }
    if (at > end || (at < end && *at != delimiter)) return false;
    const std::array<double, 3> carried = task_.Motion->Carry(from);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const int shown = task_.Wish.Digits.value_or(std::max(decimals_, static_cast<int>(places[axis])));
        if (shown >= kShortPlaces) return false;
        if (axis > 0) *to++ = delimiter;
        to = PutShort(to, carried[axis], shown, form_.Decimal);
        if (to == nullptr) return false;
    }
    const auto rest = static_cast<std::size_t>(end - at);
    std::memcpy(to, at, rest);
    to += rest;
    task_.Out.Put({changed.data(), static_cast<std::size_t>(to - changed.data())});
    ++task_.Facts.Points;
    return true;
}

bool RowCarrier::Carry(std::string_view row) {
    if (fieldsBefore_ >= 0 && CarryShort(row)) return true;
    constexpr auto kFields = static_cast<std::size_t>(PointColumn::Count_);
    const auto index = [](PointColumn column) { return static_cast<std::size_t>(column); };
    FieldsOf(row, form_.Delimiter, form_.Columns.size(), fields_);
    std::array<std::string_view, kFields> field{};
    for (std::size_t i = 0; i < fields_.size(); ++i)
        if (form_.Columns[i] != PointColumn::None) field[index(form_.Columns[i])] = fields_[i];
    const std::size_t axes = form_.HasZ ? 3 : 2;
    // Three fields from this one on, where all are numbers.
    std::array<int, 4> decimals{};  // of those that were read last
    const auto numbers = [&](PointColumn first, std::size_t count, double* values) {
        NumberKind kind = NumberKind::Finite;
        for (std::size_t i = 0; i < count; ++i) {
            const std::string_view text = field[index(first) + i];
            const NumberKind one = NumberInRow(text, form_.Decimal, values[i], decimals[i]);
            if (one == NumberKind::None) return one;
            if (one == NumberKind::OutOfRange)
                task_.In.FailAtLine("\"" + Printable(text) + "\" is beyond what a number can hold");
            if (one == NumberKind::NotFinite) kind = one;
        }
        return kind;
    };
    CloudPoint point;
    const NumberKind kind = numbers(PointColumn::X, axes, point.At.data());
    if (kind == NumberKind::None) return false;
    const std::array<int, 4> decimalsOfPoint = decimals;
    const NumberKind other =
        task_.Wish.Pairs ? numbers(PointColumn::OtherX, axes, point.Other.data()) : NumberKind::Finite;
    if (other == NumberKind::None) return false;
    if (kind == NumberKind::NotFinite || other == NumberKind::NotFinite) {
        if (task_.Wish.RefuseBad) return false;
        if (task_.Facts.NotFinite++ == 0) task_.Facts.FirstNotFinite = task_.In.Line;
        task_.Facts.FirstIsLine = true;
        task_.Out.Put(row);
        return true;
    }
    if (IsDisabled(field[index(PointColumn::Enabled)]) && task_.Motion == nullptr) {
        if (task_.Facts.Disabled++ == 0) task_.Facts.FirstDisabled = task_.In.Line;
        return true;
    }
    ++task_.Facts.Points;
    if (task_.Motion == nullptr) {
        point.Name = Trimmed(field[index(PointColumn::Name)]);
        if (task_.Wish.Pairs) {
            point.Sigma = SigmasOf(PointColumn::SigmaX);
            point.OtherSigma = SigmasOf(PointColumn::OtherSigmaX);
        }
        task_.Take(point);
        return true;
    }
    changes_.clear();
    text_.clear();
    const auto put = [&](std::string_view old, double value, int places) {
        const std::string_view shown = Trimmed(old);
        const std::size_t begin = text_.size();
        // Where commas stand between the fields and in the numbers, quotes hold these together.
        const bool quotes =
            form_.Decimal == form_.Delimiter && (old.data() == row.data() || old.data()[-1] != '"');
        if (quotes) text_ += '"';
        AppendFixed(value, places, form_.Decimal, text_);
        if (quotes) text_ += '"';
        changes_.push_back(
            {static_cast<std::size_t>(shown.data() - row.data()), shown.size(), begin, text_.size()});
    };
    const std::array<double, 3> at = task_.Motion->Carry(point.At);
    for (std::size_t i = 0; i < axes; ++i) {
        const std::string_view old = field[index(PointColumn::X) + i];
        if (!std::isfinite(at[i]))
            task_.In.FailAtLine("the transformed point is larger than any number can be");
        put(old, at[i], task_.Wish.Digits.value_or(std::max(decimals_, decimalsOfPoint[i])));
    }
    std::array<double, 3> normal{};
    if (numbers(PointColumn::NormalX, 3, normal.data()) == NumberKind::Finite) {
        const std::array<double, 3> turned = task_.Motion->Rotate(normal);
        for (std::size_t i = 0; i < 3; ++i) {
            const std::string_view old = field[index(PointColumn::NormalX) + i];
            put(old, turned[i], std::max(kLeastOfNormals, decimals[i]));
        }
    }
    std::array<double, 4> turn{};  // x, y, z, w
    if (numbers(PointColumn::TurnX, 4, turn.data()) == NumberKind::Finite) {
        if (task_.Motion->Mirrors) task_.In.FailAtLine("the transformation mirrors, and a quaternion cannot");
        const std::array<double, 4> q =
            QuaternionProduct(task_.Motion->Quaternion, {turn[3], turn[0], turn[1], turn[2]});
        for (std::size_t i = 0; i < 4; ++i) {
            const std::string_view old = field[index(PointColumn::TurnX) + i];
            put(old, q[(i + 1) % 4], std::max(kLeastOfTurns, decimals[i]));
        }
    }
    PutChanged(row);
    return true;
}

void RowCarrier::PutChanged(std::string_view row) {
    const auto isBefore = [](const Change& a, const Change& b) { return a.From < b.From; };
    if (!std::is_sorted(changes_.begin(), changes_.end(), isBefore))
        std::sort(changes_.begin(), changes_.end(), isBefore);
    changed_.clear();
    std::size_t done = 0;
    for (const Change& change : changes_) {
        changed_.append(row, done, change.From - done);
        changed_.append(text_, change.Begin, change.End - change.Begin);
        done = change.From + change.Length;
    }
    changed_.append(row, done);
    task_.Out.Put(changed_);
}

}  // namespace corvinade::import
