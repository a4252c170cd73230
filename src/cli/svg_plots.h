// Plots as SVG text that stands inside a page: no script, no font and no picture from elsewhere.
#pragma once

#include <string>
#include <vector>

#include "core/rooms.h"

namespace corvinade::cli {

struct Bar {
    std::string Name;
    double Value;
    bool Used = true;     // drawn hollow where not
    bool Marked = false;  // the one that the eye shall find: another colour and its name
};

// Bars up and down from a zero line, one a point, with an axis at the left. Of many bars only the marked
// ones are named.
//   unit   stands at the axis
//   limit  largest absolute value of the axis, above 0; several plots side by side share it. A longer bar
//          is cut and bears its value
std::string BarChart(const std::string& title, const std::vector<Bar>& bars, const std::string& unit,
                     double limit);

// How often values occur, in about as many classes as the root of their number. Without values an empty
// text.
std::string Histogram(const std::string& title, const std::vector<double>& values, const std::string& unit);

// A number above 0 rounded up to 1, 2 or 5 times a power of ten; 1 for anything else.
double RoundLimit(double value);

}  // namespace corvinade::cli
