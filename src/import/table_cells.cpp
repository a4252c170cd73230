// Rows of a table into cells, and cells into numbers.
#include "import/table_cells.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "core/numbers.h"
#include "core/text.h"

namespace corvinade::import {

namespace {

constexpr std::array<double, 16> kPowersOfTen = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

// A cell of several lines that goes on longer than this has a quote that was not meant as one.
constexpr int kMostLinesOfCell = 50;

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

// The cell that begins with the quote at `at`, which is moved behind its end. False where there is no such
// end before `stop`.
bool TakeQuoted(std::string_view text, std::size_t& at, std::size_t stop, TableCell& cell) {
    const std::size_t begin = at + 1;
    std::size_t place = begin;
    cell.Doubled = false;
    for (;;) {
        const std::size_t quote = text.substr(0, stop).find('"', place);
        if (quote == std::string_view::npos) return false;
        if (quote + 1 < stop && text[quote + 1] == '"') {
            cell.Doubled = true;
            place = quote + 2;
            continue;
        }
        cell.Text = text.substr(begin, quote - begin);
        cell.Quoted = true;
        at = quote + 1;
        return true;
    }
}

// Quotes of the other kind hold no delimiters: they are taken off where they stand around a cell.
TableCell PlainCell(std::string_view text) {
    TableCell cell{text};
    if (text.size() >= 2 && text.front() == '\'' && text.back() == '\'') {
        cell.Text = text.substr(1, text.size() - 2);
        cell.Quoted = true;
    }
    return cell;
}

std::string_view TrimmedBeside(std::string_view text, char delimiter) {
    const auto goes = [delimiter](char c) { return c == ' ' || (c == '\t' && delimiter != '\t'); };
    while (!text.empty() && goes(text.front())) text.remove_prefix(1);
    while (!text.empty() && goes(text.back())) text.remove_suffix(1);
    return text;
}

// Cells with a delimiter between. `end` is that of the line, and moves on where a quoted cell does; at most
// `most` lines.
void CutDelimited(std::string_view text, std::size_t at, std::size_t& end, char delimiter, TableRow& row) {
    for (;;) {
        std::size_t begin = at;
        while (begin < end && text[begin] == ' ') ++begin;
        TableCell cell;
        if (begin < end && text[begin] == '"') {
            std::size_t stop = end, behind = begin, line = end;
            bool found = TakeQuoted(text, behind, stop, cell);
            for (int lines = 1; !found && lines < kMostLinesOfCell && line < text.size(); ++lines) {
                std::string_view more;
                if (text[line] == '\r') ++line;
                if (line < text.size() && text[line] == '\n') ++line;
                const std::size_t first = line;
                if (!NextTableLine(text, line, more)) break;
                stop = line = first + more.size();
                behind = begin;
                found = TakeQuoted(text, behind, stop, cell);
                if (found) {
                    end = stop;
                    row.Lines += lines;
                }
            }
            const std::size_t next = found ? text.substr(0, end).find_first_not_of(' ', behind) : end;
            if (found && (next == std::string_view::npos || next >= end || text[next] == delimiter)) {
                row.Cells.push_back(cell);
                if (next == std::string_view::npos || next >= end) return;
                at = next + 1;
                continue;
            }
            row.OpenQuote = row.OpenQuote || !found;
        }
        const auto* found = static_cast<const char*>(std::memchr(text.data() + at, delimiter, end - at));
        const std::size_t stop = found == nullptr ? end : static_cast<std::size_t>(found - text.data());
        row.Cells.push_back(PlainCell(TrimmedBeside(text.substr(at, stop - at), delimiter)));
        if (found == nullptr) return;
        at = stop + 1;
    }
}

void CutBlanks(std::string_view line, bool aligned, TableRow& row) {
    std::size_t at = 0;
    for (;;) {
        while (at < line.size() && IsBlank(line[at])) ++at;
        if (at >= line.size()) return;
        TableCell cell;
        std::size_t behind = at;
        if (line[at] == '"' && TakeQuoted(line, behind, line.size(), cell) &&
            (behind >= line.size() || IsBlank(line[behind]))) {
            row.Cells.push_back(cell);
            at = behind;
            continue;
        }
        std::size_t end = at;
        for (; end < line.size(); ++end) {
            if (!IsBlank(line[end])) continue;
            if (!aligned || line[end] == '\t' || end + 1 == line.size() || IsBlank(line[end + 1])) break;
        }
        row.Cells.push_back(PlainCell(line.substr(at, end - at)));
        at = end;
    }
}

// Commas that delimit numbers and decimals alike: from behind, two cells are one number.
void JoinCells(TableRow& row) {
    std::vector<TableCell>& cells = row.Cells;
    std::vector<TableCell> joined;
    std::size_t at = cells.size() % 2;
    if (at == 1) joined.push_back(cells.front());
    for (; at + 1 < cells.size(); at += 2) {
        const std::string_view whole = cells[at].Text, part = cells[at + 1].Text;
        const bool beside = !cells[at].Quoted && whole.data() + whole.size() + 1 == part.data();
        if (beside) {
            joined.push_back({std::string_view(whole.data(), whole.size() + 1 + part.size())});
        } else {
            joined.push_back(cells[at]);
            joined.push_back(cells[at + 1]);
        }
    }
    cells = std::move(joined);
}

}  // namespace

namespace {

// Filled in where it stands: a copy of one that has just been put together waits for its parts.
void AddCell(std::vector<TableCell>& cells, std::string_view text, bool quoted) {
    TableCell& cell = cells.emplace_back();
    cell.Text = text;
    cell.Quoted = quoted;
}

}  // namespace

// Cuts a line whose quotes, where it has any, stand around whole cells: in one go with finding its end.
// False, and nothing done, for another line.
bool TableWalk::CutPlain(TableRow& row) {
    const char* const begin = text_.data() + at_;
    const char* const end = text_.data() + text_.size();
    const auto ends = [this](char c) { return ends_[static_cast<unsigned char>(c)]; };
    const char* at = begin;
    for (;;) {
        const char* const first = at;
        if (at != end && *at == '"') {
            ++at;
            while (at != end && *at != '"' && *at != '\n' && *at != '\r') ++at;
            if (at == end || *at != '"') return false;
            ++at;
            if (at != end && !ends(*at)) return false;
            AddCell(row.Cells, std::string_view(first + 1, static_cast<std::size_t>(at - first - 2)), true);
        } else {
            while (at != end && !ends(*at)) ++at;
            std::string_view cell(first, static_cast<std::size_t>(at - first));
            if (!cell.empty() && (cell.front() <= '\'' || cell.back() <= '\'')) {
                cell = TrimmedBeside(cell, form_.Delimiter);
                if (cell.starts_with('"')) return false;
                row.Cells.push_back(PlainCell(cell));
            } else {
                AddCell(row.Cells, cell, false);
            }
        }
        if (at == end || *at == '\n' || *at == '\r') break;
        ++at;
    }
    row.Line = std::string_view(begin, static_cast<std::size_t>(at - begin));
    if (at != end && *at == '\r') ++at;
    if (at != end && *at == '\n' && (at == begin + row.Line.size() || at[-1] == '\r')) ++at;
    at_ = static_cast<std::size_t>(at - text_.data());
    return true;
}

bool TableWalk::Next(TableRow& row) {
    const std::size_t begin = at_;
    if (begin >= text_.size()) return false;
    row.Cells.clear();
    row.OpenQuote = false;
    row.Number = line_;
    row.Lines = 1;
    if (form_.Gaps == TableGaps::Delimiter && !form_.EdgeEmpty && !form_.CommasJoin) {
        if (CutPlain(row)) {
            while (!row.Cells.empty() && row.Cells.back().Text.empty() && !row.Cells.back().Quoted)
                row.Cells.pop_back();
            ++line_;
            return true;
        }
        row.Cells.clear();
    }
    std::string_view line;
    if (!NextTableLine(text_, at_, line)) return false;
    std::size_t end = begin + line.size();
    if (form_.Gaps != TableGaps::Delimiter) {
        CutBlanks(line, form_.Gaps == TableGaps::Aligned, row);
    } else if (!line.empty()) {
        CutDelimited(text_, begin, end, form_.Delimiter, row);
        if (form_.EdgeEmpty && row.Cells.front().Text.empty() && !row.Cells.front().Quoted)
            row.Cells.erase(row.Cells.begin());
        while (!row.Cells.empty() && row.Cells.back().Text.empty() && !row.Cells.back().Quoted)
            row.Cells.pop_back();
        if (form_.CommasJoin) JoinCells(row);
    }
    row.Line = text_.substr(begin, end - begin);
    if (row.Lines > 1) {
        at_ = end;
        if (at_ < text_.size() && text_[at_] == '\r') ++at_;
        if (at_ < text_.size() && text_[at_] == '\n') ++at_;
    }
    line_ += row.Lines;
    return true;
}

std::string Unquoted(const TableCell& cell) {
    std::string text(cell.Text);
    if (cell.Doubled)
        for (std::size_t at = text.find("\"\""); at != std::string::npos; at = text.find("\"\"", at + 1))
            text.erase(at, 1);
    return text;
}

bool PlainTableNumber(std::string_view cell, char decimal, double& value) {
    const char* at = cell.data();
    const char* const end = at + cell.size();
    const bool negative = at != end && *at == '-';
    if (negative) ++at;
    // The digits are a whole number that a 64-bit float holds exactly, and so is the power of ten, so that
    // one division rounds correctly.
    std::uint64_t number = 0;
    const auto takeDigits = [&] {
        const char* const first = at;
        for (; at != end; ++at) {
            const unsigned digit = static_cast<unsigned>(static_cast<unsigned char>(*at)) - '0';
            if (digit > 9) break;
            number = number * 10 + digit;  // one that runs over has too many digits below
        }
        return static_cast<std::size_t>(at - first);
    };
    std::size_t digits = takeDigits(), places = 0;
    if (at != end && *at == decimal) {
        ++at;
        places = takeDigits();
        digits += places;
    }
    if (at != end || digits < 1 || digits > 15) return false;
    const double size = static_cast<double>(number) / kPowersOfTen[places];
    value = negative ? -size : size;
    return true;
}

bool TableNumber(std::string_view cell, char decimal, double& value) {
    return PlainTableNumber(cell, decimal, value) || TextToNumber(cell, decimal, value);
}

std::string NoNumberText(std::string_view cell) {
    constexpr std::size_t kGroup = 3;
    constexpr std::array<std::string_view, 7> kSeparators = {
        ",", ".", "'", " ", "\xC2\xA0", "\xE2\x80\x99", "\xE2\x80\xAF"};
    const std::string text = " is not a number";
    cell = TrimmedCell(cell);
    if (cell.starts_with('-') || cell.starts_with('+')) cell.remove_prefix(1);
    const auto digits = [&cell] { return std::min(cell.find_first_not_of("0123456789"), cell.size()); };
    const std::size_t first = digits();
    if (first < 1 || first > kGroup) return text;
    cell.remove_prefix(first);
    for (const std::string_view separator : kSeparators) {
        if (!cell.starts_with(separator)) continue;
        while (cell.starts_with(separator)) {
            cell.remove_prefix(separator.size());
            if (digits() != kGroup) return text;
            cell.remove_prefix(kGroup);
        }
        if (cell.starts_with('.') || cell.starts_with(',')) cell.remove_prefix(1);
        if (digits() == cell.size()) return text + ": numbers are written without separators of thousands";
    }
    return text;
}

bool IsFraction(std::string_view cell, char decimal) {
    double value = 0;
    const std::size_t mark = cell.find(decimal);
    return mark != std::string_view::npos && mark + 1 < cell.size() && TableNumber(cell, decimal, value);
}

bool IsRuled(std::string_view line) {
    if (line.find_first_not_of("-=+|_:* \t") != std::string_view::npos) return false;
    return std::count_if(line.begin(), line.end(), [](char c) { return c == '-' || c == '=' || c == '_'; }) >=
           3;
}

bool IsComment(std::string_view line, const TableForm& form, std::size_t* marks) {
    std::size_t at = 0;
    while (at < line.size() && IsBlank(line[at])) ++at;
    if (at == line.size()) return false;
    const bool sign = form.Comment.find(line[at]) != std::string::npos;
    const bool slashes = form.SlashesComment && line.substr(at).starts_with("//");
    if (!sign && !slashes) return false;
    if (marks != nullptr) {
        const char mark = line[at];
        while (at < line.size() && line[at] == mark) ++at;
        *marks = at;
    }
    return true;
}

}  // namespace corvinade::import
