// What the tests of the table reader stand on: a text in, its points or its refusal as one text out.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "core/numbers.h"
#include "core/platform.h"
#include "import/table_reader.h"
#include "support/fixture.h"

using namespace corvinade;

// "A 1 2 3, B 4 5 6", or the refusal without "Cannot read "f", ".
inline std::string Told(const TableResult& table) {
    if (table.Refusal.Refused()) {
        const std::string begin = "Cannot read \"f\"";
        std::string text = table.Refusal.Text;
        if (text.starts_with(begin)) text.erase(0, begin.size() + 2);
        return "refused: " + text;
    }
    std::string told;
    for (int i = 1; i <= table.Points.Count(); ++i) {
        const auto k = static_cast<std::size_t>(i);
        told += (i > 1 ? ", " : "") + table.Points.Name[k];
        for (const double value : {*table.Points.X[k], *table.Points.Y[k], table.Points.Z[k]})
            told += " " + PlainText(value);
    }
    return told;
}

inline std::string PointsAsText(const std::string& text, const TableOptions& options = {}) {
    return Told(ReadTable(text, "f", options));
}

// A 16-bit text of characters below 256, with its mark.
inline std::string Wide(const std::string& text, bool bigEndian = false) {
    std::string wide = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char c : text) wide += bigEndian ? std::string{'\0', c} : std::string{c, '\0'};
    return wide;
}
