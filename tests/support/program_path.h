// Where the program lies that the tests start as users do.
#pragma once

#include <string>

// The command line that was built like the tests: optimised, or under the sanitizers.
std::string ProgramPath();

// Has it the sanitizers in it, which take their memory for themselves and want to be loaded first?
bool ProgramIsSanitized();

// Where the library lies that lets calls of the system fail; "" where the program would not take it.
std::string FaultsPath();
