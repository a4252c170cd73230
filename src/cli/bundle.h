// `corvinade-cli bundle`: the adjustment of a theodolite network.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>

#include "core/rooms.h"

namespace corvinade::cli {

struct BundleOptions {
    std::string Path;
    double Percent = 100;  // of the object points
    std::string Folder;    // where the two point files go; "" = they are not written
    std::string LengthUnit = "millimeter";
    int LengthDigits = 3;
    bool Json = false;
    bool Strict = false;  // no warning may pass
    std::optional<char> Decimal;
};

// Reads, adjusts and prints a network. Gives the exit status: refused where it cannot be adjusted, not
// converged where the iteration found no end; its last state is printed then too.
int RunBundle(const BundleOptions& options, std::ostream& out, std::ostream& err, bool colour, bool progress);

// "" or why a text is no percentage of object points.
std::string CheckReduce(const std::string& text);

}  // namespace corvinade::cli
