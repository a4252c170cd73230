// What the programs want of the system for themselves, beyond the standard library: their arguments, streams
// and environment, and how they end. Defined in system/, once for both faces.
#pragma once

#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "core/rooms.h"

namespace corvinade::core {

// The arguments of the program in UTF-8, its name first. To be called with those of main.
std::vector<std::string> ProgramArguments(int count, char** arguments);

// Bytes go through the standard streams as they are, and a terminal takes them for UTF-8. To be called once,
// by a main.
void PrepareStandardStreams();

// Does somebody read along?
bool IsTerminal(std::FILE* stream);

// A variable of the environment, in UTF-8.
std::optional<std::string> VariableOfSystem(const std::string& name);

// Where the running program stands, its own name included; empty where that cannot be told.
std::string RunningProgram();

// Ends the program without anything more being run or allocated; the text goes to standard error.
[[noreturn]] void EndAtOnce(const char* text, std::size_t length, int status) noexcept;

// From now on signals that ask the program to end (a termination, a hang-up) are kept for it: the handle that
// comes back can be read from when one has come. Below 0 where the system has no such thing.
int KeepEndingSignals();

// The signal that has come; 0 where none can be read.
int TakeEndingSignal();

// Ends the program by the signal, as if it had never been kept.
void EndBySignal(int signal);

}  // namespace corvinade::core
