// What makes a shell complete the commands, their options and the choices of these.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "core/rooms.h"

namespace corvinade::cli {

// The shells that there is a script for: "bash", "zsh", "fish".
std::vector<std::string> CompletionShells();

// The script of one of them, made of the commands of `app`. Require: the shell is one of these.
std::string CompletionScript(const CLI::App& app, const std::string& shell);

// Is the value of an option a file or a folder? The word for it in the help says so.
bool TakesFile(const CLI::Option& option);

// All options of a command, those of its groups too.
std::vector<const CLI::Option*> OptionsOf(const CLI::App& command);

}  // namespace corvinade::cli
