// Units of lengths that the text of a cloud may name.
#include <algorithm>
#include <cmath>
#include <string>

#include "import/cloud_columns.h"

namespace corvinade::import {

double UnitsPerMm(const std::string& unit) {
    if (unit == "cm") return 1e-1;
    if (unit == "m") return 1e-3;
    if (unit == "km") return 1e-6;
    if (unit == "in") return 1 / 25.4;
    if (unit == "ft") return 1 / 304.8;
    if (unit == "ftUS") return 3937.0 / 1200 / 1000;
    return 1;
}

int DecimalsOfUnit(double unitsPerMm) {
    return std::max(0, 3 - static_cast<int>(std::floor(std::log10(unitsPerMm) + 0.5)));
}

}  // namespace corvinade::import
