// Files that are opened for the user to look at.
#pragma once

#include <string>

#include "core/rooms.h"

namespace corvinade::core {

// Could the desktop start what is at this path, instead of showing it? A file that may be executed, or whose
// extension is one of programs, scripts, links and installers.
bool CouldBeProgram(const std::string& path);

// Opens a file of points with the editor of the settings, or the desktop. The path may be one that a job of
// somebody else names: before the desktop opens what could be a program, the user is asked.
void OpenToLookAt(const std::string& path);

}  // namespace corvinade::core
