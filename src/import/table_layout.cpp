// Trying a form on the first rows of a table.
#include "import/table_layout.h"

#include <algorithm>
#include <cmath>

#include "core/text.h"
#include "import/row_notes.h"

namespace corvinade::import {

namespace {

// So many rows are tried, and so many lines are looked at for a heading.
constexpr int kRowsTried = 400;
constexpr int kLinesOfHeading = 200;

bool IsNumber(const TableRow& row, std::size_t cell, char decimal) {
    double value = 0;
    return cell < row.Cells.size() && TableNumber(row.Cells[cell].Text, decimal, value);
}

std::vector<std::string> TextsOf(const TableRow& row) {
    std::vector<std::string> texts;
    for (const TableCell& cell : row.Cells) texts.push_back(DecodeText(Unquoted(cell)));
    return texts;
}

// The columns of a row without heading; empty where it is none that can be read so.
std::vector<TableRole> UsualColumns(const TableRow& row, char decimal, bool firstIsX) {
    const std::size_t size = row.Cells.size();
    if (size < 3) return {};
    const bool named = size > 3 && !(firstIsX && IsNumber(row, 0, decimal));
    const std::size_t first = named ? 1 : 0;
    for (std::size_t i = first; i < first + 3; ++i)
        if (!IsNumber(row, i, decimal)) return {};
    std::vector<TableRole> columns;
    if (named) columns.push_back(TableRole::Name);
    for (const TableRole role : {TableRole::X, TableRole::Y, TableRole::Z}) columns.push_back(role);
    columns.resize(size, TableRole::Pass);
    return columns;
}

// The words of a heading. Between blanks a unit in brackets may be a word of its own, and a heading may have
// names of several words with more blanks between; `cells` is how many a row has.
std::vector<std::string> HeadingTexts(const TableRow& row, const TableForm& form, std::size_t cells) {
    std::vector<std::string> texts = TextsOf(row);
    if (form.Gaps == TableGaps::Delimiter) return texts;
    texts = WithBrackets(texts);
    if (texts.size() == cells || cells == 0) return texts;
    TableForm wide = form;
    wide.Gaps = TableGaps::Aligned;
    TableRow again;
    if (!TableWalk(row.Line, wide).Next(again)) return texts;
    std::vector<std::string> others = TextsOf(again);
    return others.size() == cells ? others : texts;
}

// A comment that stands in front of the rows, as a heading.
TableHeading HeadingOfComment(std::string_view line, const TableForm& form, std::size_t cells, bool ownUnit,
                              std::vector<std::string>& words) {
    std::size_t marks = 0;
    IsComment(line, form, &marks);
    const std::string_view said = TrimmedCell(line.substr(std::min(marks, line.size())));
    TableForm other = form;
    TableHeading heading;
    const auto tryWith = [&](TableGaps gaps, char delimiter) {
        other.Gaps = gaps;
        other.Delimiter = delimiter;
        other.CommasJoin = other.EdgeEmpty = false;
        TableRow row;
        if (!TableWalk(said, other).Next(row)) return false;
        words = HeadingTexts(row, other, cells);
        heading = HeadingOf(words, ownUnit);
        return heading.Axes == 3 && words.size() <= cells;
    };
    if (tryWith(form.Gaps, form.Delimiter) || tryWith(TableGaps::Delimiter, ',') ||
        tryWith(TableGaps::Delimiter, ';') || tryWith(TableGaps::Blanks, ' '))
        return heading;
    words.clear();
    return {};
}

// Finds where the rows begin and what heads them.
class Beginning {
public:
    Beginning(std::string_view text, std::size_t at, std::int64_t line, const TableOptions& options,
              TableTrial& trial)
        : text_(text), options_(options), trial_(trial), form_(trial.Form), walk_(text, form_, at, line) {}

    // False where there is no row at all.
    bool Find() {
        TableRow row;
        for (int lines = 0; lines < kLinesOfHeading; ++lines) {
            const std::size_t place = walk_.Place();
            if (!walk_.Next(row)) break;
            if (IsComment(row.Line, form_)) {
                comment_ = row.Line;
                commentLine_ = row.Number;
                continue;
            }
            if (IsNoRow(row, form_)) {
                if (!TrimmedCell(row.Line).empty()) ++leading_;  // ruled
                continue;
            }
            if (Take(row, place)) return true;
        }
        return Give();
    }

private:
    // True with the first of the rows.
    bool Take(const TableRow& row, std::size_t place) {
        if (!options_.Columns.empty()) return TakeGiven(row, place);
        if (headed_) {
            if (!unitsRead_ &&
                UnitsOfRow(HeadingTexts(row, form_, heading_.Columns.size()), heading_.Columns, heading_)) {
                unitsRead_ = true;
                ++leading_;
                return false;
            }
            Begin(row, place);
            return TakeHeading();
        }
        std::vector<TableRole> usual = UsualColumns(row, form_.Decimal, options_.FirstIsX);
        if (!usual.empty()) {
            form_.Columns = std::move(usual);
            Begin(row, place);
            return TakeComment();
        }
        const std::vector<std::string> texts = HeadingTexts(row, form_, 0);
        TableHeading heading = HeadingOf(texts, !options_.Unit.empty());
        if (heading.Axes == 3) {
            headed_ = true;
            heading_ = std::move(heading);
            headingLine_ = row.Number;
            headingRow_ = row;
            trial_.UnknownHeading = 0;
        } else {
            const bool halfBefore = half_;
            half_ = half_ || heading.Axes > 0 || heading.Mentions;
            if (!hasBad_ && row.Cells.size() >= 3 && HasNumber(row)) {
                hasBad_ = true;
                bad_ = row;
                badPlace_ = place;
                headingBeforeBad_ = trial_.UnknownHeading;
                halfBeforeBad_ = halfBefore;
            }
            // A count of points or a title is none of the columns.
            if (row.Cells.size() >= 3) trial_.UnknownHeading = row.Number;
        }
        leading_ += static_cast<int>(row.Lines);
        return false;
    }

    // With either decimal delimiter: a row that only the other one reads heads nothing.
    static bool HasNumber(const TableRow& row) {
        for (std::size_t i = 0; i < row.Cells.size(); ++i)
            if (IsNumber(row, i, '.') || IsNumber(row, i, ',')) return true;
        return false;
    }

    // With columns that the user has named the first row is the first that has a number where one must stand,
    // with either decimal delimiter: a row that only the other one reads is not lost as a heading.
    bool TakeGiven(const TableRow& row, std::size_t place) {
        const TablePlaces places = PlacesOf(options_.Columns);
        for (const TableRole role : {TableRole::X, TableRole::Y, TableRole::Z}) {
            const int cell = places.Of[static_cast<std::size_t>(role)];
            const auto at = static_cast<std::size_t>(cell);
            if (!IsNumber(row, at, '.') && !IsNumber(row, at, ',')) continue;
            form_.Columns = options_.Columns;
            form_.Columns.resize(std::max(form_.Columns.size(), row.Cells.size()), TableRole::Pass);
            Begin(row, place);
            if (options_.Unit.empty() && hasGivenHeading_) {
                std::vector<TableRole> columns = form_.Columns;
                columns.resize(std::max(columns.size(), givenHeading_.Cells.size()), TableRole::Pass);
                const std::vector<std::string> texts = HeadingTexts(givenHeading_, form_, form_.Cells);
                TableHeading named = HeadingOf(texts, false);
                UnitsOfRow(texts, columns, named);
                form_.Unit = named.Axes == 3 ? named.Unit : "";
                trial_.Wrong =
                    named.Axes == 3 && named.Wrong.find("unit") != std::string::npos ? named.Wrong : "";
                trial_.WrongLine = givenHeading_.Number;
            }
            return true;
        }
        leading_ += static_cast<int>(row.Lines);
        if (HeadingOf(HeadingTexts(row, form_, 0), true).Axes == 3) {
            hasGivenHeading_ = true;
            givenHeading_ = row;
        }
        return false;
    }

    void Begin(const TableRow& row, std::size_t place) {
        form_.FirstRow = place;
        form_.FirstLine = row.Number;
        form_.Cells = row.Cells.size();
        form_.HeadingLines = leading_;
    }

    bool TakeHeading() {
        const std::vector<std::string> words = HeadingTexts(headingRow_, form_, form_.Cells);
        TableHeading heading = HeadingOf(words, !options_.Unit.empty());
        if (heading_.Wrong.empty() || heading.Axes < 3) heading.Wrong = heading_.Wrong;
        if (unitsRead_ && !heading_.Unit.empty() && options_.Unit.empty()) heading.Unit = heading_.Unit;
        if (heading.Axes < 3) heading = heading_;
        form_.Headings = words;
        form_.HeadingLine = headingLine_;
        form_.Columns = heading.Columns;
        form_.Unit = heading.Unit;
        trial_.Wrong = heading.Wrong;
        trial_.WrongLine = headingLine_;
        if (form_.Gaps != TableGaps::Delimiter && words.size() != form_.Cells && trial_.Wrong.empty())
            trial_.Wrong = "the heading has " + std::to_string(words.size()) + " words, and its rows have " +
                           std::to_string(form_.Cells) + " (--columns says what they are)";
        return true;
    }

    // Rows without a heading of their own: the last comment in front may be it.
    bool TakeComment() {
        std::vector<std::string> words;
        TableHeading heading =
            comment_.empty() ? TableHeading{}
                             : HeadingOfComment(comment_, form_, form_.Cells, !options_.Unit.empty(), words);
        if (heading.Axes == 3) {
            trial_.Wrong = heading.Wrong;
            trial_.WrongLine = commentLine_;
            form_.Columns = heading.Columns;
            form_.Columns.resize(std::max(form_.Columns.size(), form_.Cells), TableRole::Pass);
            form_.Headings = words;
            form_.HeadingLine = commentLine_;
            form_.Unit = heading.Unit;
            ++form_.HeadingLines;
            trial_.UnknownHeading = 0;
            return true;
        }
        if (hasBad_) {  // what looks like a row, and cannot be read, is none of a heading
            form_.HeadingLines = 0;
            Begin(bad_, badPlace_);
            trial_.UnknownHeading = 0;
        } else if (half_) {
            trial_.Wrong =
                "the heading does not name all of x, y and z (--columns says what the columns are)";
            trial_.WrongLine = trial_.UnknownHeading != 0 ? trial_.UnknownHeading : form_.FirstLine;
        }
        return true;
    }

    // There is no row: one with a number in it may be meant as the first.
    bool Give() {
        if (!hasBad_ || !options_.Columns.empty()) return false;
        form_.Columns = {TableRole::Name, TableRole::X, TableRole::Y, TableRole::Z};
        if (bad_.Cells.size() == 3 && IsNumber(bad_, 0, form_.Decimal))
            form_.Columns.erase(form_.Columns.begin());
        Begin(bad_, badPlace_);
        trial_.UnknownHeading = headingBeforeBad_;  // what follows it are rows
        if (halfBeforeBad_ && headingBeforeBad_ != 0) {
            trial_.Wrong =
                "the heading does not name all of x, y and z (--columns says what the columns are)";
            trial_.WrongLine = headingBeforeBad_;
        }
        return true;
    }

    std::string_view text_;
    const TableOptions& options_;
    TableTrial& trial_;
    TableForm& form_;
    TableWalk walk_;
    std::string_view comment_;
    std::int64_t commentLine_ = 0, headingLine_ = 0;
    int leading_ = 0;
    bool headed_ = false, unitsRead_ = false, half_ = false, hasBad_ = false, hasGivenHeading_ = false;
    std::int64_t headingBeforeBad_ = 0;
    bool halfBeforeBad_ = false;
    TableHeading heading_;
    TableRow headingRow_, bad_, givenHeading_;
    std::size_t badPlace_ = 0;
};

// What the rows tell beside whether they can be read.
void Look(const TableRow& row, const TablePlaces& places, TableTrial& trial) {
    const TableForm& form = trial.Form;
    const auto place = [&](TableRole role) { return places.Of[static_cast<std::size_t>(role)]; };
    for (const TableRole role : {TableRole::X, TableRole::Y, TableRole::Z}) {
        const std::string_view cell = row.Cells[static_cast<std::size_t>(place(role))].Text;
        const std::size_t mark = cell.find(form.Decimal);
        if (mark == std::string_view::npos) {
            trial.Wholes = true;
            continue;
        }
        trial.Fractions = true;
        const std::string_view whole =
            cell.substr(cell.starts_with('-') || cell.starts_with('+') ? 1 : 0, mark);
        const std::size_t digits = whole.substr(0, whole.find(form.Decimal)).size();
        if (cell.size() - mark != 4 || digits > 3 || digits < 1 || whole.front() == '0')
            trial.ThousandsLike = false;
    }
    if (form.HasName) {
        const std::string_view name = row.Cells[static_cast<std::size_t>(place(TableRole::Name))].Text;
        trial.NamesWithBlank = trial.NamesWithBlank || name.find(' ') != std::string_view::npos;
        if (trial.NamesAreNumbers && name.find_first_not_of("0123456789") != std::string_view::npos) {
            double value = 0;
            trial.NamesAreNumbers = TableNumber(name, form.Decimal, value);
            trial.NamesAreCoordinates =
                trial.NamesAreCoordinates || name.starts_with('-') || IsFraction(name, form.Decimal);
        }
        trial.NamesAreLong =
            trial.NamesAreLong || name.size() - std::min(name.find(form.Decimal), name.size()) > 3;
        trial.NamesAreWords =
            trial.NamesAreWords && name.find_first_of("0123456789") == std::string_view::npos;
    }
    if (row.Cells.size() < 5 || row.Cells[1].Text.find_first_not_of("0123456789") != std::string_view::npos ||
        !IsFraction(row.Cells[2].Text, form.Decimal) || !IsFraction(row.Cells[3].Text, form.Decimal) ||
        !IsFraction(row.Cells[4].Text, form.Decimal))
        trial.WholeThenFractions = false;
    // Fewer cells than in the first row are whole numbers then, some of them or all.
    const bool shorter = row.Cells.size() < form.Cells;
    const std::size_t odd = shorter ? 1 : row.Cells.size() % 2;
    if (!shorter && (row.Cells.size() < 6 || row.Cells.size() != form.Cells)) trial.CommasMayJoin = false;
    for (std::size_t i = odd; trial.CommasMayJoin && i < row.Cells.size(); ++i) {
        std::string_view cell = row.Cells[i].Text;
        const bool behind = !shorter && (i - odd) % 2 == 1;
        if (!behind && (cell.starts_with('-') || cell.starts_with('+'))) cell.remove_prefix(1);
        if (row.Cells[i].Quoted || cell.empty() ||
            cell.find_first_not_of("0123456789") != std::string_view::npos)
            trial.CommasMayJoin = false;
    }
    if (trial.Thousands) trial.Thousands = CommasOfThousands(row.Line, form.HasName ? 4 : 3, form.HasName);
}

}  // namespace

TablePlaces PlacesOf(const std::vector<TableRole>& columns) {
    TablePlaces places;
    places.Of.fill(-1);
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (columns[i] == TableRole::Pass) continue;
        places.Of[static_cast<std::size_t>(columns[i])] = static_cast<int>(i);
        if (columns[i] != TableRole::Name) places.Needed = std::max(places.Needed, i + 1);
    }
    return places;
}

bool IsNoRow(const TableRow& row, const TableForm& form) {
    if (row.Cells.empty()) return true;
    if (IsComment(row.Line, form)) return true;
    // Rows begin with a minus as well.
    const char first = row.Line.front();
    return (first < '0' || first > '9') && IsRuled(row.Line);
}

bool IsGoodRow(const TableRow& row, const TableForm& form, const TablePlaces& places, TableRowFault* fault) {
    const auto bad = [&](std::size_t column, const auto& text) {
        if (fault == nullptr) return false;
        // A quote without an end that does no harm belongs to its name.
        *fault = {text(), static_cast<std::int64_t>(column)};
        if (row.OpenQuote) fault->Text += "; a quote has no end";
        return false;
    };
    const auto quoted = [&](std::size_t i) { return "\"" + Printable(DecodeText(row.Cells[i].Text)) + "\""; };
    const std::size_t size = row.Cells.size();
    const std::size_t most = std::max({form.Cells, form.Headings.size(), places.Needed});
    if (size > most) {
        // A remark of several words is as good as one of a single word.
        const bool remark = form.Gaps != TableGaps::Delimiter && most > places.Needed &&
                            !IsNumber(row, most - 1, form.Decimal);
        if (!remark)
            return bad(most + 1, [&] {
                return quoted(most) + " is one cell too many: line " + std::to_string(form.FirstLine) +
                       " has " + std::to_string(form.Cells) + " cells, this one " + std::to_string(size);
            });
    }
    if (form.HasName) {
        const auto place = static_cast<std::size_t>(places.Of[static_cast<std::size_t>(TableRole::Name)]);
        if (place >= size || row.Cells[place].Text.empty())
            return bad(place + 1, [] { return std::string("the name is missing"); });
    }
    for (std::size_t role = static_cast<std::size_t>(TableRole::X); role < kTableRoles; ++role) {
        if (places.Of[role] < 0) continue;
        const auto place = static_cast<std::size_t>(places.Of[role]);
        const char* const what = TableRoleName(static_cast<TableRole>(role));
        double value = 0;
        if (place >= size || row.Cells[place].Text.empty())
            return bad(place + 1, [&] { return "the " + std::string(what) + " is missing"; });
        if (!TableNumber(row.Cells[place].Text, form.Decimal, value))
            return bad(place + 1, [&] { return quoted(place) + NoNumberText(row.Cells[place].Text); });
        if (role > static_cast<std::size_t>(TableRole::Z) && value < 0)
            return bad(place + 1, [&] { return quoted(place) + " is a sigma below 0"; });
    }
    // Between blanks a value that is missing moves those behind it up.
    if (form.Gaps != TableGaps::Delimiter && form.MoreNumbers && size < form.Cells)
        return bad(0, [&] {
            return "it has " + std::to_string(size) + " cells, and line " + std::to_string(form.FirstLine) +
                   " has " + std::to_string(form.Cells) + ": a value may be missing";
        });
    return true;
}

void TryForm(std::string_view text, std::size_t at, std::int64_t line, const TableOptions& options,
             TableTrial& trial) {
    TableForm& form = trial.Form;
    if (!Beginning(text, at, line, options, trial).Find()) return;
    const TablePlaces places = PlacesOf(form.Columns);
    form.HasName = places.Of[static_cast<std::size_t>(TableRole::Name)] >= 0;
    TableWalk walk(text, form, form.FirstRow, form.FirstLine);
    TableRow row;
    if (TableWalk(walk).Next(row))
        for (std::size_t i = places.Needed; i < row.Cells.size(); ++i)
            form.MoreNumbers = form.MoreNumbers || IsNumber(row, i, form.Decimal);
    for (int rows = 0; rows < kRowsTried && walk.Next(row);) {
        if (IsNoRow(row, form)) continue;
        ++rows;
        if (!IsGoodRow(row, form, places, nullptr)) {
            ++trial.Bad;
            continue;
        }
        ++trial.Good;
        Look(row, places, trial);
    }
}

}  // namespace corvinade::import
