// The window of the jobs that killed programs have left.
#pragma once

#include <vector>

#include "core/recovery.h"
#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::core {

// Columns of its table.
enum RecoveryColumn : int { kRecoveryJob, kRecoveryTime, kRecoveryPoints, kRecoveryCols };

struct FormRecovery {
    WindowState Window{.Caption = "Recovery"};

    Control LabelSummary;
    Control GridRecovery;
    Control BtnRestore;
    Control BtnDiscard;
    Control BtnClose;

    std::vector<LeftBehind> Rows;  // what the table shows, from its row 1 on

    static void Form_Load();
    static void Form_Escape();
    static void BtnRestore_Click();
    static void BtnDiscard_Click();
    static void BtnClose_Click();
};
extern FormRecovery RecoveryWindow;
extern const WindowEntry FormRecovery_Entry;

// The start of the copies: another face than the desktop has them only where it is asked to. Shows what was
// left behind, and says so where the job that the start has opened is open in another program.
void BeginRecovery();

// Opens the window where something was left behind: at the start of the program.
void ShowWhatWasLeft();

}  // namespace corvinade::core
