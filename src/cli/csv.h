// Texts in lines of values with semicolons between.
#pragma once

#include <string>

// A text quoted where it has to be, as spreadsheets read it.
inline std::string CsvText(const std::string& text) {
    if (text.find_first_of(";\"\r\n") == std::string::npos) return text;
    std::string result = "\"";
    for (const char c : text) result += c == '"' ? std::string("\"\"") : std::string(1, c);
    return result + "\"";
}
