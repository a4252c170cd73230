// The command line in this process: status, output and messages of one call.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/headless.h"
#include "core/files.h"
#include "core/fresh_start.h"

using namespace corvinade;

struct Outcome {
    int Status;
    std::string Out, Err;
};

// One call in the program as it stands; the program's name goes before the arguments by itself.
inline Outcome CommandLine(const std::vector<std::string>& arguments, bool progress = false) {
    std::vector<const char*> argv = {"corvinade-cli"};
    for (const std::string& argument : arguments) argv.push_back(argument.c_str());
    std::istringstream in;
    std::ostringstream out, err;
    const int status =
        RunCommandLine(static_cast<int>(argv.size()), argv.data(), in, out, err, false, progress);
    return {status, out.str(), err.str()};
}

// One call in a program that has just begun, with a decimal point; faults of files that a test has set up
// stay.
inline Outcome FreshCommandLine(const std::vector<std::string>& arguments, bool progress = false) {
    const auto faults = FileFaults;
    FreshStart();
    FileFaults = faults;
    Headless = HeadlessRecord{};
    Headless.Decimal = '.';
    Outcome outcome = CommandLine(arguments, progress);
    Headless.Unanswered = false;
    return outcome;
}
