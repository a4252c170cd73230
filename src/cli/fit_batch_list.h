// The list of `fit --batch`: a line a fit.
#pragma once

#include <string>
#include <vector>

#include "core/rooms.h"

namespace CLI {
class App;
}

namespace corvinade::cli {

struct BatchJob {
    int Line = 0;  // of the list, from 1
    std::string Name, Start, Target;
    std::vector<std::string> Arguments;        // of corvinade-cli
    std::vector<std::string> Inputs, Outputs;  // files that they name
};

// Reads the list. Its heading names the columns: name, start, target, and options of the command without
// their dashes, which an option that may be given several times may stand above several of. What the cell of
// an option says goes before what `fit` has been given of it. Throws PlatformError with file and line where
// the heading has another name, a row is no row of it, a flag's cell is neither yes nor no, a fit would read
// standard input or write to standard output, two would write one file, or there is none.
std::vector<BatchJob> ReadBatchList(const std::string& path, const CLI::App& fit);

// "", or which of the options that `fit` has been given does not go with --batch.
std::string AgainstBatch(const CLI::App& fit);

}  // namespace corvinade::cli
