// Clouds of text.
#include "import/text_cloud.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/platform.h"
#include "core/text.h"
#include "import/cloud_columns.h"
#include "import/cloud_rows.h"
#include "import/table_cells.h"

namespace corvinade::import {

namespace {

void KeepLine(CloudTask& task, std::string_view line) {
    if (task.Facts.LinesKept++ == 0) task.Facts.FirstKept = task.In.Line;
    task.Out.Put(line);
}

// Where a comma or a blank parts the fields, one within a number, or a value that is missing, moves those
// behind it by one: rows with other numbers of fields than the first one are told of.
class FieldCount {
public:
    FieldCount(CloudFacts& facts, const RowForm& form)
        : facts_(facts), form_(form), looks_(form.Delimiter == ',' || form.Delimiter == '\0') {}

    void Look(std::string_view row, std::int64_t line) {
        if (!looks_) return;
        const std::size_t marks = Marks(row);
        if (marks == marksOfFirst_) return;
        FieldsOf(row, form_.Delimiter, kMostFields, fields_);
        while (!fields_.empty() && fields_.back().find_first_not_of(" \t") == std::string_view::npos)
            fields_.pop_back();
        const std::size_t count = fields_.size();
        if (first_ == 0) {
            first_ = count;
            marksOfFirst_ = marks;
            endsInNumber_ = IsNumber(count - 1);
        }
        if (count == first_) return;
        bool moved = count < first_ && endsInNumber_;
        if (count > first_) {
            moved = true;
            for (std::size_t i = first_; i < count; ++i) moved = moved && IsNumber(i);
        }
        if (moved && facts_.OtherFields++ == 0) facts_.FirstOtherFields = line;
    }

private:
    static constexpr std::size_t kMostFields = 64, kNone = static_cast<std::size_t>(-1);

    std::size_t Marks(std::string_view row) const {
        if (form_.Delimiter == ',') return static_cast<std::size_t>(std::count(row.begin(), row.end(), ','));
        std::size_t words = 0;
        bool blank = true;
        for (const char c : row) {
            const bool now = c == ' ' || c == '\t';
            words += blank && !now ? 1 : 0;
            blank = now;
        }
        return words;
    }
    bool IsNumber(std::size_t field) const {
        double value = 0;
        return NumberOf(fields_[field], form_.Decimal, value) != NumberKind::None;
    }

    CloudFacts& facts_;
    const RowForm& form_;
    bool looks_, endsInNumber_ = false;
    std::size_t first_ = 0, marksOfFirst_ = kNone;
    std::vector<std::string_view> fields_;
};

// Columns that nobody has named and whose numbers have the length 1, as those of a direction do.
void LookForDirections(CloudTask& task, const RowForm& form, std::string_view row) {
    constexpr std::size_t kMostFields = 16;
    std::vector<std::string_view> fields;
    FieldsOf(row, form.Delimiter, kMostFields, fields);
    const auto z = static_cast<std::size_t>(
        std::find(form.Columns.begin(), form.Columns.end(), PointColumn::Z) - form.Columns.begin());
    const auto hasLengthOne = [&](std::size_t count) {
        double sum = 0;
        for (std::size_t i = z + 1; i <= z + count; ++i) {
            double value = 0;
            if (i >= fields.size() || (i < form.Columns.size() && form.Columns[i] != PointColumn::None) ||
                fields[i].find(form.Decimal) == std::string_view::npos ||
                NumberOf(fields[i], form.Decimal, value) != NumberKind::Finite)
                return false;
            sum += value * value;
        }
        return std::fabs(sum - 1) < 1e-3;
    };
    if (hasLengthOne(4)) {
        task.Facts.Directions = "a quaternion: qx, qy, qz and qw";
    } else if (hasLengthOne(3)) {
        task.Facts.Directions = "a normal: nx, ny and nz";
    }
}

// A row with three numbers of the other decimal delimiter than that of the file is no remark.
void RefuseOtherDecimal(const CloudTask& task, const RowForm& form, std::string_view row) {
    std::vector<std::string_view> fields;
    FieldsOf(row, form.Delimiter, form.Columns.size(), fields);
    const char other = form.Decimal == '.' ? ',' : '.';
    std::string_view first;
    for (std::size_t i = 0; i < form.Columns.size(); ++i) {
        if (form.Columns[i] < PointColumn::X || form.Columns[i] > PointColumn::Z) continue;
        double value = 0;
        if (i >= fields.size()) return;
        if (NumberOf(fields[i], form.Decimal, value) != NumberKind::None) continue;
        if (NumberOf(fields[i], other, value) == NumberKind::None) return;
        if (first.empty()) first = fields[i];
    }
    if (!first.empty())
        task.In.FailAtLine("\"" + Printable(first) + "\" has the decimal delimiter \"" + other +
                           "\", and other rows \"" + form.Decimal + "\" (--decimal says which holds)");
}

// Of a file that is read to be fitted: a row that was meant as a point must not be missing without a word. It
// is refused or counted.
void TakeBadRow(CloudTask& task, const FoundForm& found, std::string_view row) {
    const RowForm& form = found.Form;
    std::vector<std::string_view> fields;
    FieldsOf(row, form.Delimiter, std::max<std::size_t>(form.Columns.size(), 3), fields);
    const auto isEmpty = [](std::string_view field) {
        return field.find_first_not_of(" \t") == std::string_view::npos;
    };
    if (std::all_of(fields.begin(), fields.end(), isEmpty)) return;
    const auto isNumber = [&](std::string_view field) {
        double value = 0;
        return NumberOf(field, form.Decimal, value) == NumberKind::Finite;
    };
    // Titles, and the number of points.
    const bool isInFront = task.Facts.Points == 0 &&
                           (task.In.Line < found.HeadingLine || fields.size() < 3 ||
                            (found.HeadingLine == 0 && std::none_of(fields.begin(), fields.end(), isNumber)));
    if (isInFront) return;
    for (std::size_t i = 0; i < form.Columns.size(); ++i) {
        const PointColumn column = form.Columns[i];
        const bool isOther = column >= PointColumn::OtherX && column <= PointColumn::OtherZ;
        if (!isOther && (column < PointColumn::X || column > PointColumn::Z)) continue;
        if (isOther && !task.Wish.Pairs) continue;
        if (i < fields.size() && isNumber(fields[i])) continue;
        const bool isMissing = i >= fields.size() || isEmpty(fields[i]);
        const std::string what = isMissing ? "the coordinate is missing"
                                           : "\"" + Printable(fields[i]) + "\"" + NoNumberText(fields[i]);
        ++task.Facts.Bad;
        if (!task.Wish.RefuseBad) return;
        throw PlatformError{"Cannot read \"" + task.In.Path() + "\", line " + std::to_string(task.In.Line) +
                            ", column " + std::to_string(i + 1) + ": " + what +
                            " (--skip-bad passes it over)"};
    }
}

// The first line of what ends with the line end that most lines of a file have, cut off `rest`: where line
// ends are mixed, it may be several.
std::string_view CutFirstLine(std::string_view& rest, bool loneReturns) {
    std::size_t end = rest.find(loneReturns ? '\n' : '\r');
    if (end == std::string_view::npos || (end + 1 < rest.size() && rest[end + 1] == '\n' && !loneReturns))
        end = rest.size() - 1;
    const std::string_view line = rest.substr(0, end + 1);
    rest.remove_prefix(line.size());
    return line;
}

void CarryRows(CloudTask& task, const FoundForm& found, int decimals, bool isWhole) {
    CloudInput& in = task.In;
    const RowForm& form = found.Form;
    RowCarrier carrier(task, form, decimals);
    carrier.LookAhead(in.View(), isWhole);
    bool looked = !task.Wish.Columns.empty();
    FieldCount count(task.Facts, form);
    std::string_view lines, lineEnd;
    for (;;) {
        if (!lines.empty()) {
            ++in.Line;
        } else if (!in.NextLine(lines)) {
            break;
        }
        const std::string_view whole =
            in.HasReturns() ? CutFirstLine(lines, in.LoneReturns) : std::exchange(lines, {});
        const std::string_view row = WithoutLineEnd(whole, lineEnd);
        // What stands in front of the first point is of its form, where it is only read.
        const bool isOfForm = task.Motion == nullptr && task.Facts.Points == 0 && IsCommentLine(row);
        if (row.find_first_not_of(" \t") == std::string_view::npos || in.Line == found.HeadingLine ||
            isOfForm) {
            task.Out.Put(whole);
        } else if (IsCommentLine(row)) {
            KeepLine(task, whole);
        } else if (carrier.Carry(row)) {
            task.Out.Put(lineEnd);
            count.Look(row, in.Line);
            if (!looked) LookForDirections(task, form, row);
            looked = true;
        } else {
            RefuseOtherDecimal(task, form, row);
            if (task.Motion == nullptr) TakeBadRow(task, found, row);
            KeepLine(task, whole);
        }
    }
}

}  // namespace

void RunText(CloudTask& task, CloudKind kind) {
    CloudInput& in = task.In;
    in.Fill();
    in.LoneReturns =
        in.View().find('\n') == std::string_view::npos && in.View().find('\r') != std::string_view::npos;
    if (in.View().find('\0') != std::string_view::npos)
        in.Fail("it is no text; a 16-bit text without a mark is named with --encoding utf-16le or utf-16be");
    const bool isWhole = !in.More();
    const FoundForm found = FindForm(task, kind, in.View(), isWhole);
    task.Facts.Unit = found.Unit;
    task.Facts.Notes = found.Notes;
    task.Facts.TwoCoordinates = !found.Form.HasZ;
    int decimals = task.Wish.LeastDigits;
    if (!found.Unit.empty()) {
        task.UnitsPerMm = UnitsPerMm(found.Unit);
        decimals = DecimalsOfUnit(task.UnitsPerMm);
    }
    const CloudMotion* const given = task.Motion;
    CloudMotion motion;
    if (given != nullptr) {
        motion = InUnit(*given, task.UnitsPerMm);
        task.Motion = &motion;
    }
    CarryRows(task, found, decimals, isWhole);
    task.Motion = given;
}

}  // namespace corvinade::import
