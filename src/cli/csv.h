// Texts in lines of values with semicolons between.
#pragma once

#include <string>

#include "core/job.h"
#include "core/rooms.h"

namespace corvinade::cli {

// --raw-text: texts go into CSV as they are.
struct CsvRecord {
    bool Raw = false;
};
inline CsvRecord CsvCells;

// A text as a cell (core/escaped_text.h), raw with --raw-text.
std::string CsvText(const std::string& text);

// A last column where the result did not converge; nothing where it did, so that the columns are the usual
// ones.
inline const char* UnconvergedHeading() {
    return IsTrue(Job.Unconverged) ? ";not_converged" : "";
}
inline const char* UnconvergedCell() {
    return IsTrue(Job.Unconverged) ? ";1" : "";
}

// Likewise where a scale has collapsed, and where the parameters of these names are open.
inline const char* CollapsedHeading() {
    return IsTrue(Job.Collapsed) ? ";collapsed_scale" : "";
}
inline const char* CollapsedCell() {
    return IsTrue(Job.Collapsed) ? ";1" : "";
}
inline const char* OpenHeading(const std::string& names) {
    return names.empty() ? "" : ";open_parameters";
}
inline std::string OpenCell(const std::string& names) {
    return names.empty() ? "" : ";" + CsvText(names);
}

}  // namespace corvinade::cli
