// What the commands say on standard error.
#pragma once

#include <iosfwd>
#include <string>

#include "cli/fit_options.h"

// A message box's text as a paragraph without blank lines.
std::string OneParagraph(const std::string& text);

// The messages that came up, and the questions that an option has answered, which are then forgotten.
void WriteMessages(std::ostream& err);

// Says why a command ends; gives `status`.
int Refuse(std::ostream& err, ExitStatus status, const std::string& text);
