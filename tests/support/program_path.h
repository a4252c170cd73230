// Where the program lies that the tests start as users do.
#pragma once

#include <string>

// The command line that was built like the tests: optimised, or under the sanitizers.
std::string ProgramPath();
