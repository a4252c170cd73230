// `corvinade-cli fit --batch`: the fits of a list, several at once.
#pragma once

#include <iosfwd>
#include <string>

#include "core/rooms.h"

namespace CLI {
class App;
}

namespace corvinade::cli {

struct BatchOptions {
    std::string List, Out;  // paths; Out is *.csv or *.jsonl
    int Jobs = 0;           // programs at once; 0 = as many as the machine has processors
};

// Runs the fits of the list, each as a program of its own, and writes the line of each behind those that
// stand in the file of results, as soon as it has ended; at the end the lines are put in the order of the
// list. What stands there as done, of the same files, is passed over. `fit` is the command as it was parsed:
// its other options are those of all fits. Gives the exit status: kRefused where one fit has not been done.
int RunFitBatch(const BatchOptions& options, const CLI::App& fit, std::ostream& err, bool showProgress);

}  // namespace corvinade::cli
