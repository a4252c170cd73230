// Texts as cells of CSV.
#include "cli/csv.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace corvinade::cli {

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

std::string CsvText(const std::string& text) {
    std::string cell = text;
    if (!CsvCells.Raw) {
        std::replace_if(cell.begin(), cell.end(), IsControl, ' ');
        if (BeginsFormula(cell)) cell.insert(cell.begin(), '\'');
    }
    if (cell.find_first_of(";\"\r\n") == std::string::npos) return cell;
    std::string quoted = "\"";
    for (const char c : cell) quoted.append(c == '"' ? 2 : 1, c);
    return quoted + "\"";
}

}  // namespace corvinade::cli
