// The automation: the whole system driven by name, one JSON object a line.
#pragma once

#include <iosfwd>
#include <string>

#include "core/rooms.h"

namespace corvinade::cli {

struct AutomationOptions {
    std::string Job;        // opened at the start, as a quoted command line argument would be
    int ScreenWidth = 800;  // inner size of a new graphics window, pixels
    int ScreenHeight = 600;
    bool Recovery = false;         // recovery copies and their questions, as on the desktop
    bool DesktopDefaults = false;  // begin with what people have, not with what scripts know
};

// Starts the program and gives the first part of its first reply: what came up during the start waits
// there. To be called once, before AnswerLine.
void StartAutomation(const AutomationOptions& options);

// Answers one request. Never throws and never ends the program, whatever the line holds.
//   quit   set when the request was to end
std::string AnswerLine(const std::string& line, bool& quit);

// Serves requests until the end of input or a request to quit. False where the input has broken off instead.
bool Automate(const AutomationOptions& options, std::istream& in, std::ostream& out);

}  // namespace corvinade::cli
