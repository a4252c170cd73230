// The window that lists what the program noticed.
#pragma once

#include <string>
#include <vector>

#include "core/notes.h"
#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::core {

// Columns of its table.
enum NotesColumn : int { kNotesSeverity, kNotesFile, kNotesLine, kNotesText, kNotesCount, kNotesCols };

struct FormNotes {
    WindowState Window{.Caption = "Notes"};

    Control LabelSummary;
    Control GridNotes;
    Control BtnCopy;
    Control BtnClose;

    std::vector<Note> Rows;  // what the table shows, from its row 1 on

    static void Form_Load();
    static void Form_Escape();
    static void GridNotes_DblClick();
    static void BtnCopy_Click();
    static void BtnClose_Click();
};
extern FormNotes NotesWindow;
extern const WindowEntry FormNotes_Entry;

// The list in the main window's status bar ("3 notes"; nothing where there are none; the colour of a warning
// where one is among them), and in this window while it is open. Every event of the user ends with it.
void ShowNotes();

}  // namespace corvinade::core
