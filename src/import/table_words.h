// What the table reader says, in the words of the desktop: where it names an option of the command line that
// helps, the desktop names the control that does the same.
#pragma once

#include <string>

#include "core/rooms.h"

namespace corvinade::import {

std::string InWordsOfDesktop(std::string text);

// The same of a refusal, without its file, which stands above: "Line 7, column 3: ...".
std::string RefusalOfDesktop(const std::string& text, const std::string& path);

}  // namespace corvinade::import
