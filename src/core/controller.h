// The main window and the application's start, end and commands.
#pragma once

#include <span>
#include <string>

#include "core/changes.h"
#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::core {

// The whole start: settings file, settings, `Initialisieren`, and the job that the command line names.
//   commandLine   one argument as the quoting shell hands it over, with its quotes: the first and the
//                 last character are dropped, whatever they are
void StartUp(const std::string& commandLine);

// Sets the run to "no data".
void Initialisieren();

// Shows all changes now, with the recent-file entries, the title and the state of every command: where that
// has to be seen before the handler ends. Else it is enough to say What::State.
void ProgrammLogik();

// The room's rows in the table of changes.
std::span<const ChangeRow> CoreChanges();

// Closes all child windows; the main window stays.
void CloseAllChildForms();

// The end of the program: question for a changed job, every window closed, the main window last.
void CloseProgram();

// Text of a panel of the main window's status bar, 1 to 9.
void SetStatus(int panel, const std::string& text);
inline constexpr int kStatusPanels = 9;

// The program's version, "2.0.64".
std::string ProgramVersion();

// The text in the title bar for a job path: "Corvinade Version 2.0.64 | path", at most 160 characters,
// a longer one keeping its end behind "Corvinade Version ...".
std::string TitleText(const std::string& path);

// The folder where the settings file stands and clipboard texts are put down.
std::string SettingsFolder();

}  // namespace corvinade::core
