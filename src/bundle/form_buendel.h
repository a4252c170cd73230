// The window in which a network is adjusted.
#pragma once

#include <span>
#include <string>

#include "bundle/network.h"
#include "core/changes.h"
#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::bundle {

struct FormBündel {
    WindowState Window{.Caption = "Bundle"};

    Control TextReduce;  // percentage of the object points that take part
    Control BtnCalculate;
    Control Command1;
    Control CommandSTOP;
    Control TextWhatDO;   // the steps
    Control TextRUN;      // the iterations
    Control TextResults;  // coordinates and their accuracy

    BundleRecord Own;  // the copy that Command1 adjusts

    static void Form_Load();
    static void Form_Escape();
    static void BtnCalculate_Click();
    static void Command1_Click();
    static void CommandSTOP_Click();
};
extern FormBündel BündelWindow;
extern const WindowEntry FormBündel_Entry;

// Reads the bundle file of the input dialog and opens the window.
void ReadBundleFile(const std::string& path);

std::span<const ChangeRow> BundleChanges();  // the room's rows in the table of changes

}  // namespace corvinade::bundle
