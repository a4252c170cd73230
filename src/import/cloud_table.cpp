// Text clouds that are tables.
#include "import/cloud_table.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "core/file_source.h"
#include "core/platform.h"
#include "import/table_cells.h"
#include "import/table_reader.h"
#include "import/table_text.h"

namespace corvinade::import {

namespace {

TableRole RoleOf(PointColumn column) {
    switch (column) {
        case PointColumn::Name:
            return TableRole::Name;
        case PointColumn::X:
            return TableRole::X;
        case PointColumn::Y:
            return TableRole::Y;
        case PointColumn::Z:
            return TableRole::Z;
        default:
            return TableRole::Pass;
    }
}

TableOptions OptionsOf(const CloudWish& wish, CloudKind kind) {
    TableOptions options;
    for (const PointColumn column : wish.Columns) options.Columns.push_back(RoleOf(column));
    options.Delimiter = wish.Delimiter.value_or('\0');
    options.Decimal = wish.Decimal.value_or('\0');
    options.Unit = wish.Unit;
    options.UsualUnit = "";
    options.FirstIsX = kind == CloudKind::Xyz;
    return options;
}

// Directions have no role in a table; the words of its heading name them.
PointColumn DirectionOf(const TableForm& form, std::size_t column) {
    if (column >= form.Headings.size()) return PointColumn::None;
    const PointColumn named = ColumnByWord(form.Headings[column]);
    return named >= PointColumn::NormalX && named <= PointColumn::TurnW ? named : PointColumn::None;
}

std::vector<PointColumn> ColumnsOf(const TableForm& form, const CloudWish& wish) {
    std::vector<PointColumn> columns = wish.Columns;
    for (std::size_t i = 0; wish.Columns.empty() && i < form.Columns.size(); ++i) {
        switch (form.Columns[i]) {
            case TableRole::Name:
                columns.push_back(PointColumn::Name);
                break;
            case TableRole::X:
                columns.push_back(PointColumn::X);
                break;
            case TableRole::Y:
                columns.push_back(PointColumn::Y);
                break;
            case TableRole::Z:
                columns.push_back(PointColumn::Z);
                break;
            default:
                columns.push_back(DirectionOf(form, i));
        }
    }
    while (!columns.empty() && columns.back() == PointColumn::None) columns.pop_back();
    // Rows between two delimiters: the first has nothing in front of it.
    if (form.EdgeEmpty) columns.insert(columns.begin(), PointColumn::None);
    return columns;
}

// Are there cells in quotes in the first rows?
bool HasQuotes(std::string_view text, const TableForm& form) {
    constexpr int kRows = 400;
    if (text.find('"') == std::string_view::npos) return false;
    TableWalk walk(text, form, form.FirstRow, form.FirstLine);
    TableRow row;
    for (int rows = 0; rows < kRows && walk.Next(row); ++rows)
        if (std::any_of(row.Cells.begin(), row.Cells.end(),
                        [](const TableCell& cell) { return cell.Quoted; }))
            return true;
    return false;
}

// The first MiB, up to the end of a line where there is more.
std::string HeadOf(const std::string& path) {
    constexpr std::size_t kHead = std::size_t{1} << 20U;
    std::string head(kHead, '\0');
    FileSource file(path);
    head.resize(file.Read(head.data(), kHead));
    if (head.size() < kHead) return head;
    const std::size_t end = head.find_last_of("\r\n");
    if (end != std::string::npos && head.find('\0') == std::string::npos) head.resize(end + 1);
    return head;
}

}  // namespace

std::optional<std::string> ColumnsOfTableAlone(const std::string& path, const CloudWish& wish) {
    const std::string head = HeadOf(path);
    TableText text;
    if (!TakeTableText(head, nullptr, text).empty()) return std::nullopt;
    TableForm form;
    TableRefusal refusal;
    std::vector<Note> notes;
    const bool taken = FindTableForm(text, path, OptionsOf(wish, CloudKind::Text), form, refusal, notes);
    if (form.Cells == 0) return std::nullopt;
    const std::string_view front = text.Text.substr(0, form.FirstRow);
    const bool other = !text.Decoded.empty() ||
                       front.find_first_not_of(" \t\r\n") != std::string_view::npos ||
                       form.Delimiter == '|' || form.Gaps == TableGaps::Aligned ||
                       HasQuotes(text.Text, form) || (!taken && !refusal.Thousands) ||
                       std::any_of(notes.begin(), notes.end(),
                                   [](const Note& note) { return note.Code != NoteCode::DecimalTaken; });
    if (!other) return std::nullopt;
    return TableColumnsText(form.Columns);
}

std::optional<FoundForm> FormOfTable(const CloudTask& task, CloudKind kind, std::string_view lines,
                                     bool headed) {
    TableText text;
    if (!TakeTableText(lines, nullptr, text).empty()) return std::nullopt;
    TableForm form;
    TableRefusal refusal;
    std::vector<Note> notes;
    const bool taken = FindTableForm(text, task.In.Path(), OptionsOf(task.Wish, kind), form, refusal, notes);
    // Commas that are both are put back by nobody.
    if (form.Cells == 0 || form.CommasJoin) return std::nullopt;
    if (headed && form.Headings.empty()) return std::nullopt;
    if (!taken) throw PlatformError{refusal.Text};
    FoundForm found;
    found.Form.Delimiter = form.Gaps == TableGaps::Delimiter ? form.Delimiter
                           : form.Gaps == TableGaps::Aligned ? kAlignedFields
                                                             : '\0';
    found.Form.Decimal = form.Decimal;
    found.Form.Columns = ColumnsOf(form, task.Wish);
    found.Unit = form.Unit;
    found.HeadingLine = form.HeadingLine;
    found.Notes = std::move(notes);
    found.DecimalShown = form.DecimalShown;
    return found;
}

}  // namespace corvinade::import
