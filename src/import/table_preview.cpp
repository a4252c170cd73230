// The first lines of a table, as a user sees them before it is read.
#include "import/table_preview.h"

#include <algorithm>

#include "core/text.h"
#include "import/table_layout.h"

namespace corvinade::import {

namespace {

constexpr int kLongestCell = 120;

bool IsLength(TableRole role) {
    return role != TableRole::Pass && role != TableRole::Name;
}

// Is the cell what its column must hold?
bool IsGoodCell(const TableRow& row, std::size_t cell, TableRole role, char decimal) {
    if (role == TableRole::Pass) return true;
    const bool there = cell < row.Cells.size() && !row.Cells[cell].Text.empty();
    if (!IsLength(role)) return there;
    double value = 0;
    return there && TableNumber(row.Cells[cell].Text, decimal, value) && (role <= TableRole::Z || value >= 0);
}

std::string ShownCell(const TableText& text, const TableRow& row, const TableCell& cell) {
    TableCell decoded = cell;
    const std::string words = DecodedCell(text, row.Line, cell.Text.substr(0, 4 * kLongestCell));
    decoded.Text = words;
    return Printable(Unquoted(decoded), kLongestCell);
}

PreviewLine ShownLine(const TableText& text, const TableRow& row, const TableForm& form) {
    PreviewLine line;
    line.Number = row.Number;
    const std::size_t shown = std::min(row.Cells.size(), kPreviewCells);
    for (std::size_t i = 0; i < shown; ++i) line.Cells.push_back(ShownCell(text, row, row.Cells[i]));
    line.Bad.assign(shown, false);
    if (row.Number < form.FirstLine) return line;
    line.IsPoint = true;
    const auto mark = [&line](std::size_t cell) {
        if (cell >= kPreviewCells) return;
        if (line.Bad.size() <= cell) line.Bad.resize(cell + 1, false);
        line.Bad[cell] = true;
    };
    for (std::size_t i = 0; i < form.Columns.size(); ++i)
        if (!IsGoodCell(row, i, form.Columns[i], form.Decimal)) mark(i);
    TableRowFault fault;
    if (std::find(line.Bad.begin(), line.Bad.end(), true) != line.Bad.end() ||
        IsGoodRow(row, form, PlacesOf(form.Columns), &fault))
        return line;
    // A cell too many, or one that is missing somewhere between.
    if (fault.Column > 0) {
        mark(static_cast<std::size_t>(fault.Column) - 1);
    } else {
        line.Bad.assign(shown, true);
    }
    return line;
}

// A line as it stands: a comment, or one of a text that shows no table.
PreviewLine WholeLine(const TableText& text, std::string_view line, std::int64_t number) {
    PreviewLine shown;
    shown.Number = number;
    if (TrimmedCell(line).empty()) return shown;
    shown.Cells = {Printable(DecodedCell(text, line, line.substr(0, 4 * kLongestCell)), kLongestCell)};
    shown.Bad = {false};
    return shown;
}

void TakeLines(const TableText& text, const TableOptions& options, TablePreview& preview) {
    if (!preview.Found) {
        std::size_t at = 0;
        std::string_view line;
        for (std::int64_t number = 1; number <= kPreviewLines && NextTableLine(text.Text, at, line); ++number)
            preview.Lines.push_back(WholeLine(text, line, number));
        return;
    }
    TableWalk walk(text.Text, preview.Form);
    TableRow row;
    while (walk.NextLine() <= kPreviewLines && walk.Next(row))
        preview.Lines.push_back(IsNoRow(row, preview.Form) || row.Number <= options.Skip
                                    ? WholeLine(text, row.Line, row.Number)
                                    : ShownLine(text, row, preview.Form));
}

}  // namespace

std::string MissingColumn(const std::vector<TableRole>& columns) {
    for (const TableRole role : {TableRole::X, TableRole::Y, TableRole::Z})
        if (std::find(columns.begin(), columns.end(), role) == columns.end())
            return std::string("the column ") + TableRoleName(role) + " is missing";
    return "";
}

TablePreview PreviewTable(const TableText& text, const std::string& path, const TableOptions& options) {
    TablePreview preview;
    TableOptions wanted = options;
    const std::string missing = options.Columns.empty() ? "" : MissingColumn(options.Columns);
    if (!missing.empty()) wanted.Columns.clear();  // how the cells are cut can be seen without them
    FindTableForm(text, path, wanted, preview.Form, preview.Refusal, preview.Notes);
    preview.Found = preview.Form.Cells > 0;
    if (!missing.empty()) {
        const std::size_t cells = preview.Form.Columns.size();
        preview.Form.Columns = options.Columns;
        preview.Form.Columns.resize(std::max(cells, options.Columns.size()), TableRole::Pass);
        preview.Form.HasName =
            PlacesOf(preview.Form.Columns).Of[static_cast<std::size_t>(TableRole::Name)] >= 0;
        preview.Refusal = {"Cannot read \"" + path + "\": " + missing, 0, 0};
        preview.Notes.clear();
    }
    TakeLines(text, options, preview);
    for (const PreviewLine& line : preview.Lines)
        preview.Columns = std::max(preview.Columns, std::max(line.Cells.size(), line.Bad.size()));
    if (preview.Found)
        preview.Columns = std::max(preview.Columns, std::min(preview.Form.Columns.size(), kPreviewCells));
    return preview;
}

bool IsPlainTable(std::string_view bytes, const std::string& path, const TableOptions& options) {
    while (!bytes.empty() && (bytes.back() == '\n' || bytes.back() == '\r')) bytes.remove_suffix(1);
    TableOptions plain;
    plain.Decimal = plain.PlainDecimal = options.PlainDecimal;
    plain.UsualUnit = options.UsualUnit;
    plain.DoubleNames = true;  // the pairing says it
    plain.GoesOn = options.GoesOn;
    const TableResult result = ReadTable(bytes, path, plain);
    return result.Cancelled || (!result.Refusal.Refused() && result.Plain);
}

bool LooksLikeTable(std::string_view bytes, const std::string& path, const TableOptions& options) {
    TableText text;
    if (!TakeTableText(bytes, options.Encoding ? &*options.Encoding : nullptr, text).empty()) return false;
    const TablePreview preview = PreviewTable(text, path, options);
    if (!preview.Found) return false;
    return std::any_of(preview.Lines.begin(), preview.Lines.end(), [](const PreviewLine& line) {
        return line.IsPoint && std::find(line.Bad.begin(), line.Bad.end(), true) == line.Bad.end();
    });
}

TableResult CountTable(std::string_view bytes, const std::string& path, const TableOptions& options,
                       TableRefusal& firstBad) {
    TableOptions all = options;
    all.SkipBad = false;
    TableResult strict = ReadTable(bytes, path, all);
    firstBad = {};
    if (strict.Cancelled || !strict.Refusal.Refused()) return strict;
    all.SkipBad = true;
    TableResult lax = ReadTable(bytes, path, all);
    if (!lax.Refusal.Refused()) firstBad = strict.Refusal;
    return lax;
}

}  // namespace corvinade::import
