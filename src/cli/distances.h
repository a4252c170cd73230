// `corvinade-cli distances`: the distances between all pairs of points in the two systems of a job.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>

#include "core/rooms.h"

namespace corvinade::cli {

struct DistancesOptions {
    std::string Job;
    bool WithResult = false;  // the start points are the transformed ones
    bool Json = false, Csv = false;
    std::string Trumpet;            // path of the plot to write; "" = none
    std::string Pairs;              // path of the file of all pairs; "" = none
    std::optional<bool> Questions;  // --yes or --no
    bool Strict = false;            // no warning may pass
    std::optional<char> Decimal;
};

// Gives the exit status. The files are written whole or not at all, before anything goes to `out`.
//   progress  long work tells on `err` how far it is
int RunDistances(const DistancesOptions& options, std::ostream& out, std::ostream& err, bool colour,
                 bool progress);

}  // namespace corvinade::cli
