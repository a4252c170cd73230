// `transform` of clouds and other carriers: one file, streaming, in the form that it has.
#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>

#include "core/rooms.h"
#include "import/cloud.h"

namespace corvinade::cli {

struct CloudOrder {
    CloudMotion Motion;  // mm
    CloudWish Wish;
    double UnitsPerMm = 1;       // of files that do not name their unit
    std::istream* In = nullptr;  // what "-" stands for
    std::ostream* Out = nullptr;
};

// Without bytes it flushes. Throws PlatformError where nobody takes them.
void WriteToStandardOutput(std::ostream& out, std::string_view bytes);

// Transforms one file into another, "-" = standard output, which is written whole or not at all; "" = nothing
// is written, and the notes alone are made. `unwritten` is set where it is the writing that has failed;
// `mayKeep` is asked before a file takes its place. False where that says no. Throws PlatformError.
bool TransformCloud(const CloudOrder& order, const std::string& path, const std::string& outPath,
                    const std::function<void(double share)>& tell, const std::function<bool()>& mayKeep,
                    bool& unwritten);

}  // namespace corvinade::cli
