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

    Control TextReduce = TextBox("100");  // percentage of the object points that take part
    Control BtnCalculate = Button("&Calculate");
    Control Command1 = Button("Try on a co&py");
    Control CommandSTOP = Button("ST&OP");
    Control TextWhatDO = Shown();   // the steps
    Control TextRUN = Shown();      // the iterations
    Control TextResults = Shown();  // coordinates and their accuracy

    BundleRecord Own;  // the copy that Command1 adjusts

    static void Form_Load();
    static void Form_Escape();
    static void BtnCalculate_Click();
    static void Command1_Click();
    static void CommandSTOP_Click();

private:
    static Control Shown() {
        Control control = TextBox();
        control.Locked = true;
        return control;
    }
};
inline FormBündel BündelWindow;
extern const WindowEntry FormBündel_Entry;

// Reads the bundle file of the input dialog and opens the window.
void ReadBundleFile(const std::string& path);

std::span<const ChangeRow> BundleChanges();  // the room's rows in the table of changes

}  // namespace corvinade::bundle
