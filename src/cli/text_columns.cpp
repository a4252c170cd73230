// Texts in the columns of a terminal.
#include "cli/text_columns.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "core/text.h"

namespace corvinade::cli {

namespace {

struct CodeRange {
    std::uint32_t First, Last;
};

// The blocks of the Unicode standard whose characters are drawn over the one before, or not at all.
constexpr std::array kNoWidth = {CodeRange{0x0300, 0x036F}, CodeRange{0x1AB0, 0x1AFF},
                                 CodeRange{0x1DC0, 0x1DFF}, CodeRange{0x200B, 0x200F},
                                 CodeRange{0x20D0, 0x20FF}, CodeRange{0xFE00, 0xFE0F},
                                 CodeRange{0xFE20, 0xFE2F}, CodeRange{0xFEFF, 0xFEFF}};

// The blocks that its annex on East Asian width counts as wide.
constexpr std::array kWide = {
    CodeRange{0x1100, 0x115F},   CodeRange{0x2E80, 0x303E},   CodeRange{0x3041, 0x4DBF},
    CodeRange{0x4E00, 0xA4CF},   CodeRange{0xAC00, 0xD7A3},   CodeRange{0xF900, 0xFAFF},
    CodeRange{0xFE30, 0xFE6F},   CodeRange{0xFF00, 0xFF60},   CodeRange{0xFFE0, 0xFFE6},
    CodeRange{0x1F300, 0x1F64F}, CodeRange{0x1F900, 0x1F9FF}, CodeRange{0x20000, 0x3FFFD}};

template <class Ranges>
bool IsIn(const Ranges& ranges, std::uint32_t code) {
    return std::any_of(ranges.begin(), ranges.end(),
                       [code](const CodeRange& range) { return code >= range.First && code <= range.Last; });
}

int WidthOf(std::uint32_t code) {
    if (code < 0x0300) return 1;
    if (IsIn(kNoWidth, code)) return 0;
    return IsIn(kWide, code) ? 2 : 1;
}

// Cuts the first character off and gives the columns that it takes.
int CutWidth(std::string_view& text) {
    std::uint32_t code = 0;
    const std::size_t length = Utf8Character(text, code);
    text.remove_prefix(length == 0 ? 1 : length);
    return length == 0 ? 1 : WidthOf(code);
}

}  // namespace

int DisplayWidth(std::string_view text) {
    // Of plain texts each byte is a character that takes a column.
    unsigned char all = 0;
    for (const char c : text) all |= static_cast<unsigned char>(c);
    if (all < 0x80) return static_cast<int>(text.size());
    int width = 0;
    while (!text.empty()) width += CutWidth(text);
    return width;
}

std::string ForTable(std::string_view text, int most) {
    // Combining characters take no column, so there may be some more characters than columns.
    std::string clean = Printable(text, 4 * most);
    if (DisplayWidth(clean) <= most) return clean;
    std::string_view rest = clean;
    std::string_view kept = rest;
    for (int width = CutWidth(rest); width <= most - 3; width += CutWidth(rest)) kept = rest;
    clean.resize(clean.size() - kept.size());
    return clean + "...";
}

void TextColumns::MakeRoom(const std::vector<std::string>& cells) {
    for (std::size_t i = 0; i < std::min(cells.size(), Widths.size()); ++i)
        Widths[i] = std::max(Widths[i], DisplayWidth(cells[i]));
}

void TextColumns::Append(const std::vector<std::string>& cells, std::string& text) const {
    for (std::size_t i = 0; i < std::min(cells.size(), Widths.size()); ++i) {
        const auto fill = static_cast<std::size_t>(std::max(0, Widths[i] - DisplayWidth(cells[i])));
        if (i == 0) {
            text.append(cells[i]).append(fill, ' ');
        } else {
            text.append(fill + 2, ' ').append(cells[i]);
        }
    }
}

std::string TextColumns::Line(const std::vector<std::string>& cells) const {
    std::string line;
    Append(cells, line);
    return line;
}

std::string HeadLabel(const std::string& text) {
    return TextColumns{{14}}.Line({text});
}

}  // namespace corvinade::cli
