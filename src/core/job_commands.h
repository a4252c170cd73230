// New, Open, Save, Save As and the recent files. The commands themselves are those that the main window's
// menu calls, see core/refresh.h.
#pragma once

// Puts the path of the job that was just saved at the head of the recent files, and writes them to the
// settings file. A path that differs from an entry by case alone stays where it is, the unnamed job's is
// none.
void LogikLastFileEXIT();
