// New, Open, Save, Save As and the recent files.
#pragma once

#include <string>

#include "core/rooms.h"

namespace corvinade::core {

// Asks whether a changed job shall be saved; false where the user cancels what it was asked for, which only
// the desktop lets him.
bool JobChanged();

// Asks where the job has changed: by the flag of the run, and where recovery copies are kept by what a save
// would write. False when the job is to stay open.
bool MayGiveUpJob();

void OpenLastProjekt(const std::string& caption);  // opens the job of a recent-file menu entry
void MenuFileNew_Command();
void MenuFileOpen_Command();
void MenuFileSave_Command();
void MenuFileSaveAs_Command();

// Puts the path of the job that was just saved at the head of the recent files, and writes them to the
// settings file. A path that differs from an entry by case alone stays where it is, the unnamed job's is
// none.
void LogikLastFileEXIT();

}  // namespace corvinade::core
