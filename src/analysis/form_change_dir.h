// The dialog that chooses a folder, and makes new ones.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::analysis {

struct FormChangeDir {
    WindowState Window;  // its caption says what is chosen

    Control Drive1;    // the drives
    Control Dir1;      // the folders of the one that is open, ".." on top; a double click opens
    Control TextPath;  // the folder that is chosen
    Control BtnOpen;
    Control Command3;
    Control BtnOK;
    Control BtnCancel;

    std::string Path;  // the folder whose folders the list shows

    static void Form_Load();
    static void Drive1_Click();
    static void Dir1_Click();
    static void Dir1_DblClick();
    static void BtnOpen_Click();
    static void Command3_Click();
    static void BtnOK_Click();
    static void BtnCancel_Click();
};
extern FormChangeDir ChangeDir;
extern const WindowEntry FormChangeDir_Entry;

// Outlives the window, for whoever waits for it.
struct ChangeDirRecord {
    std::string Title, Begin;           // what the next window is opened with
    std::optional<std::string> Chosen;  // nothing: cancelled
};
inline ChangeDirRecord ChangeDirAnswer;

// Asks for a folder and waits for the answer. `begin` is where the list begins; where that is no folder, the
// nearest one above it. Nothing when cancelled, or when the window is open already.
std::optional<std::string> AskFolder(const std::string& title, const std::string& begin);

}  // namespace corvinade::analysis
