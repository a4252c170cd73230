// Finding how a table is written: all ways that it could be are tried on its first rows.
#include <algorithm>
#include <array>

#include "core/numbers.h"
#include "core/text.h"
#include "import/row_notes.h"
#include "import/table_layout.h"
#include "import/table_reader.h"

namespace corvinade::import {

namespace {

constexpr std::array<const char*, kTableRoles> kRoles = {"-", "name", "x", "y", "z", "sx", "sy", "sz", "s"};
constexpr std::string_view kUsualComments = "#%!";

// What comes first goes before, where both can be read.
constexpr std::string_view kDelimiters = ";\t|,:*#";

constexpr std::size_t kHead = std::size_t{1} << 20U;

struct Candidate {
    TableGaps Gaps;
    char Delimiter, Decimal;
    bool Join = false, Edge = false;
};

// The first line may name the delimiter, as a spreadsheet understands it.
char NamedDelimiter(std::string_view text, std::size_t& at, std::int64_t& line) {
    std::size_t next = at;
    std::string_view first;
    if (!NextTableLine(text, next, first)) return '\0';
    if (first.size() >= 2 && first.front() == '"' && first.back() == '"')
        first = first.substr(1, first.size() - 2);
    if (first.size() != 5 || UpperAscii(first.substr(0, 4)) != "SEP=") return '\0';
    at = next;
    ++line;
    return first[4];
}

std::vector<Candidate> CandidatesOf(std::string_view whole, const TableOptions& options, char named) {
    std::vector<Candidate> all;
    // What stands between all fields stands between the first ones.
    const std::string_view text = whole.substr(0, kHead);
    const char wanted = options.Delimiter != '\0' ? options.Delimiter : named;
    std::string delimiters = wanted == ' '    ? ""
                             : wanted != '\0' ? std::string(1, wanted)
                                              : std::string(kDelimiters);
    std::erase_if(delimiters, [&](char c) { return text.find(c) == std::string_view::npos && c != wanted; });
    const bool quotes = text.find('"') != std::string_view::npos;
    for (const char decimal : {'.', ','}) {
        if (options.Decimal != '\0' && options.Decimal != decimal) continue;
        if (decimal == ',' && text.find(',') == std::string_view::npos && options.Decimal == '\0') continue;
        for (const char c : delimiters) {
            if (c == ',' && decimal == ',') {
                if (quotes) all.push_back({TableGaps::Delimiter, c, decimal});
                if (options.Decimal == ',') all.push_back({TableGaps::Delimiter, c, decimal, true});
                continue;
            }
            all.push_back({TableGaps::Delimiter, c, decimal});
            if (c == '|') all.push_back({TableGaps::Delimiter, c, decimal, false, true});
        }
        if (wanted == '\0' || wanted == ' ') {
            all.push_back({TableGaps::Blanks, ' ', decimal});
            all.push_back({TableGaps::Aligned, ' ', decimal});
        }
    }
    return all;
}

// Is `a` the better way? Ways of equal worth keep their order.
bool IsBetter(const TableTrial& a, const TableTrial& b) {
    const bool all = a.Good > 0 && a.Bad == 0, allOther = b.Good > 0 && b.Bad == 0;
    if (all != allOther) return all;
    if (!all) return a.Good > b.Good || (a.Good == b.Good && a.Good == 0 && a.Bad > b.Bad);
    if (a.Wrong.empty() != b.Wrong.empty()) return a.Wrong.empty();
    // A single blank belongs to a name where all columns are apart by more.
    return a.Form.Gaps == TableGaps::Aligned && b.Form.Gaps == TableGaps::Blanks && a.NamesWithBlank;
}

std::string Place(const std::string& path, std::int64_t line) {
    return "Cannot read \"" + path + "\"" + (line > 0 ? ", line " + std::to_string(line) : "") + ": ";
}

bool Refuse(const std::string& path, std::int64_t line, const std::string& text, TableRefusal& refusal) {
    refusal = {Place(path, line) + text, line, 0};
    return false;
}

// The first row of a form.
TableRow FirstRow(std::string_view text, const TableForm& form) {
    TableRow row;
    TableWalk(text, form, form.FirstRow, form.FirstLine).Next(row);
    return row;
}

// A row in words: "name P1, x 1, y 5, z 2".
std::string InWords(const TableRow& row, bool named) {
    const std::size_t first = named ? 1 : 0;
    std::string text = named ? "name " + Printable(row.Cells[0].Text) + ", " : "";
    for (std::size_t i = 0; i < 3; ++i)
        text += std::string(i == 0 ? "x " : i == 1 ? ", y " : ", z ") + Printable(row.Cells[first + i].Text);
    return text;
}

// Commas that could be the delimiter alone, or the decimal delimiter as well.
bool IsAmbiguous(std::string_view text, const TableTrial& trial, const TableOptions& options) {
    return trial.Form.Delimiter == ',' && trial.Form.Gaps == TableGaps::Delimiter &&
           trial.Form.Decimal == '.' && options.Decimal == '\0' && options.Delimiter == '\0' &&
           trial.CommasMayJoin && trial.Good > 0 && trial.Form.Headings.size() != trial.Form.Cells &&
           options.Columns.empty() && FirstRow(text, trial.Form).Cells.size() >= 6;
}

bool RefuseAmbiguous(std::string_view text, const std::string& path, const TableForm& form,
                     TableRefusal& refusal) {
    TableForm other = form;
    other.CommasJoin = true;
    const TableRow one = FirstRow(text, form), two = FirstRow(text, other);
    Refuse(path, form.FirstLine,
           "\"" + Printable(one.Line) + "\" can be read in two ways: with commas between its fields (" +
               InWords(one, true) +
               "), which --decimal . or --delimiter comma says, or with commas as decimal " +
               "delimiters too (" + InWords(two, two.Cells.size() > 3) + "), which --decimal , says",
           refusal);
    refusal.TwoWays = true;
    return false;
}

// Words in front of the coordinates, below a heading that does not call them names.
void NoteColumnInFront(std::string_view text, const std::string& path, const TableForm& form,
                       std::vector<Note>& notes) {
    const TableRow row = FirstRow(text, form);
    for (std::size_t i = 0; i < std::min(row.Cells.size(), form.Headings.size()); ++i) {
        if (i < form.Columns.size() && form.Columns[i] != TableRole::Pass) return;
        double value = 0;
        const std::string_view cell = row.Cells[i].Text;
        if (cell.empty() || TableNumber(cell, form.Decimal, value)) continue;
        notes.push_back({NoteCode::ColumnsIgnored, NoteKindOf(NoteCode::ColumnsIgnored).Weight,
                         "The column \"" + Printable(form.Headings[i]) +
                             "\" is not read, and the points bear their numbers; where it holds their names "
                             "--columns says so",
                         path, static_cast<int>(form.HeadingLine), 1});
        return;
    }
}

// Rows that can be read, and are doubtful all the same.
bool IsCertain(std::string_view text, const std::string& path, const TableOptions& options,
               const TableTrial& trial, TableRefusal& refusal, std::vector<Note>& notes) {
    const TableForm& form = trial.Form;
    const auto warn = [&](NoteCode code, const std::string& what, std::int64_t line) {
        notes.push_back({code, NoteKindOf(code).Weight, what, path, static_cast<int>(line), 1});
    };
    const bool usual = options.Columns.empty() && form.Headings.empty();
    if (options.Columns.empty() && !form.Headings.empty() && !form.HasName)
        NoteColumnInFront(text, path, form, notes);
    const auto firstCell = [&] { return Printable(DecodeText(FirstRow(text, form).Cells.front().Text)); };
    if (trial.UnknownHeading > 0 && usual)
        warn(NoteCode::HeadingUnknown,
             "The heading names no columns that are known; they are taken as " +
                 TableColumnsText(form.Columns) + " (--columns says what they are)",
             trial.UnknownHeading);
    if (usual && form.HasName && trial.NamesAreNumbers && trial.NamesAreCoordinates && trial.Good > 0) {
        if (trial.NamesAreLong)
            return Refuse(
                path, form.FirstLine,
                "column 1: the number \"" + firstCell() +
                    "\" would be the name of a point; where it is x, --columns x,y,z says so, and where it is "
                    "the name --columns name,x,y,z",
                refusal);
        warn(NoteCode::NameIsNumber,
             "The number \"" + firstCell() +
                 "\" is taken as the name of a point; where it is x, --columns x,y,z says so",
             form.FirstLine);
    }
    if (usual && form.HasName && form.Gaps != TableGaps::Delimiter && trial.NamesAreWords &&
        trial.WholeThenFractions && trial.Good > 1)
        return Refuse(
            path, form.FirstLine,
            "\"" + Printable(FirstRow(text, form).Line) +
                "\" may have a name with a blank; --columns says what its fields are, as name,x,y,z,- or "
                "-,name,x,y,z",
            refusal);
    if (usual && form.Delimiter == ',' && form.Gaps == TableGaps::Delimiter && trial.Thousands &&
        trial.Good > 0) {
        Refuse(path, form.FirstLine,
               std::string(kCommasOfThousands) +
                   "; write them without, or say with --columns what the fields are",
               refusal);
        refusal.Thousands = true;
        return false;
    }
    if (form.Decimal == ',' && options.Decimal == '\0' && trial.Fractions && trial.ThousandsLike)
        warn(
            NoteCode::DecimalTaken,
            "The comma of the numbers is taken as decimal delimiter, though all have three digits behind it, as "
            "commas of thousands have; --decimal says which (those of thousands have to be taken out)",
            form.FirstLine);
    // Who prints three digits prints them behind every number.
    if (form.Decimal == '.' && options.Decimal == '\0' && trial.Fractions && trial.ThousandsLike &&
        trial.Wholes && form.Delimiter == ';')
        warn(
            NoteCode::DecimalTaken,
            "The point of the numbers is taken as decimal delimiter, though all that have one have three digits "
            "behind it beside whole numbers, as points of thousands have; --decimal says which (those of thousands "
            "have to be taken out)",
            form.FirstLine);
    return true;
}

}  // namespace

const char* TableRoleName(TableRole role) {
    return kRoles[static_cast<std::size_t>(role)];
}

std::string TakeTableColumns(std::string_view text, std::vector<TableRole>& columns) {
    columns.clear();
    std::array<int, kTableRoles> counts{};
    for (bool more = true; more;) {
        const std::size_t comma = text.find(',');
        const std::string_view word = TrimmedCell(text.substr(0, comma));
        const auto found = std::find(kRoles.begin(), kRoles.end(), word);
        if (found == kRoles.end())
            return "\"" + Printable(word) +
                   "\" is no column: name, x, y, z, sx, sy, sz, s, or - for one to pass over";
        const auto role = static_cast<std::size_t>(found - kRoles.begin());
        if (++counts[role] > 1 && role > 0) return "the column " + std::string(word) + " is named twice";
        columns.push_back(static_cast<TableRole>(role));
        more = comma != std::string_view::npos;
        if (more) text.remove_prefix(comma + 1);
    }
    for (const TableRole role : {TableRole::X, TableRole::Y, TableRole::Z})
        if (counts[static_cast<std::size_t>(role)] == 0)
            return std::string("the column ") + TableRoleName(role) + " is missing";
    return "";
}

std::string TableColumnsText(const std::vector<TableRole>& columns) {
    std::string text;
    for (const TableRole role : columns) text += (text.empty() ? "" : ",") + std::string(TableRoleName(role));
    return text;
}

bool FindTableForm(const TableText& text, const std::string& path, const TableOptions& options,
                   TableForm& form, TableRefusal& refusal, std::vector<Note>& notes) {
    std::size_t at = 0;
    std::int64_t line = 1;
    std::string_view skipped;
    while (line <= options.Skip && NextTableLine(text.Text, at, skipped)) ++line;
    const char named = NamedDelimiter(text.Text, at, line);
    TableTrial best;
    bool any = false;
    for (const Candidate& candidate : CandidatesOf(text.Text, options, named)) {
        TableTrial trial;
        trial.Form.Encoding = text.Encoding;
        trial.Form.Gaps = candidate.Gaps;
        trial.Form.Delimiter = candidate.Delimiter;
        trial.Form.Decimal = candidate.Decimal;
        trial.Form.CommasJoin = candidate.Join;
        trial.Form.EdgeEmpty = candidate.Edge;
        trial.Form.Comment = options.Comment ? *options.Comment : std::string(kUsualComments);
        std::erase(trial.Form.Comment, options.Comment ? '\0' : candidate.Delimiter);
        trial.Form.SlashesComment = !options.Comment;
        TryForm(text.Text, at, line, options, trial);
        if (any && !IsBetter(trial, best)) continue;
        best = std::move(trial);
        any = true;
    }
    if (!any || (best.Good == 0 && best.Bad == 0)) {
        std::string_view first;
        std::size_t place = at;
        std::int64_t number = line - 1;
        bool found = false;
        TableForm usual;
        usual.Comment = options.Comment ? *options.Comment : std::string(kUsualComments);
        usual.SlashesComment = !options.Comment;
        while (!found && NextTableLine(text.Text, place, first)) {
            ++number;
            found = !TrimmedCell(first).empty() && !IsComment(first, usual);
        }
        if (!found) return Refuse(path, 0, "there is no point in it", refusal);
        return Refuse(
            path, number,
            "\"" + Printable(DecodeText(first)) +
                "\" begins no table of points with x, y and z (--columns, --delimiter, --decimal, --skip)",
            refusal);
    }
    form = best.Form;
    if (!options.Unit.empty()) form.Unit = options.Unit;
    if (form.Unit.empty()) form.Unit = options.UsualUnit;
    form.DecimalShown = best.Fractions;
    if (!best.Wrong.empty()) return Refuse(path, best.WrongLine, best.Wrong, refusal);
    if (IsAmbiguous(text.Text, best, options)) return RefuseAmbiguous(text.Text, path, best.Form, refusal);
    return IsCertain(text.Text, path, options, best, refusal, notes);
}

}  // namespace corvinade::import
