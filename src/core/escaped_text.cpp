// Texts as they may stand in pages and in lines of cells.
#include "core/escaped_text.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string_view>

#include "core/text.h"

namespace corvinade::core {

namespace {

bool IsControl(char c) {
    const auto code = static_cast<unsigned char>(c);
    return code < 0x20 || code == 0x7f;
}

// "-5", "+1.5e3": what a spreadsheet takes for a number, which does nothing.
bool IsNumber(std::string_view text) {
    if (text.starts_with('+')) text.remove_prefix(1);
    const std::size_t sign = text.starts_with('-') ? 1 : 0;
    if (text.size() == sign || text.find_first_not_of("0123456789.eE+-", sign) != std::string_view::npos)
        return false;
    double value = 0;
    const auto [end, wrong] = std::from_chars(text.data(), text.data() + text.size(), value);
    return wrong == std::errc() && end == text.data() + text.size();
}

bool BeginsFormula(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first != std::string_view::npos &&
           std::string_view("=+-@").find(text[first]) != std::string_view::npos &&
           !IsNumber(text.substr(first));
}

}  // namespace

std::string EscapeMarkup(const std::string& text) {
    std::string result;
    std::uint32_t code = 0;
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t length = Utf8Character(rest, code);
        // Control characters and what is no character have no place in a page.
        const bool shown = length != 0 && code >= 0x20 && (code & 0xfffe) != 0xfffe;
        const char c = rest.front();
        if (!shown)
            result += '?';
        else if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else if (c == '>')
            result += "&gt;";
        else if (c == '"')
            result += "&quot;";
        else if (c == '\'')
            result += "&#39;";
        else
            result += rest.substr(0, length);
        rest.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return result;
}

std::string CsvCell(const std::string& text, bool raw) {
    std::string cell = text;
    if (!raw) {
        std::replace_if(cell.begin(), cell.end(), IsControl, ' ');
        if (BeginsFormula(cell)) cell.insert(cell.begin(), '\'');
    }
    if (cell.find_first_of(";\"\r\n") == std::string::npos) return cell;
    std::string quoted = "\"";
    for (const char c : cell) quoted.append(c == '"' ? 2 : 1, c);
    return quoted + "\"";
}

}  // namespace corvinade::core
