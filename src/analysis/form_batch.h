// The window that transforms every point file of a folder into files of another one.
#pragma once

#include <string>
#include <vector>

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::analysis {

struct FormBatch {
    WindowState Window{.Caption = "Batch Transformation"};

    Control LabelMCS = Label("&MCS = Start Directory");
    Control TextNameMCSDirectory = TextBox();
    Control BtnBrowseMCS = Button("&Browse...");
    Control BtnEXBrowseMCS = Button("&Explore");
    Control LabelTCS = Label("&TCS = Target Directory");
    Control TextNameTCSDirectory = TextBox();
    Control BtnBrowseTCS = Button("B&rowse...");
    Control BtnExBrowseTCS = Button("E&xplore");
    Control CheckSameAsMCS = CheckBox("&Same as MCS Directory");
    Control OptionTransformWithActualCalc = Option("Transform with the &actual Calculation", 1);
    Control OptionTransformWithNewCalc = Option("Transform with a &new Calculation", 1);
    Control OptionOnlyOnlyMCS = Option("Write &only MCS Points without Partner", 2);
    Control OptionWriteAll = Option("&Write all Points", 2);
    Control LabelStatus = Label("");
    Control BtnStartBatch = Button("Start Bat&ch");
    Control BtnCancel = Button("Cance&l");

    bool Running = false;  // a run goes on; closing the window ends it

    static void Form_Load();
    static void TextNameMCSDirectory_Change();
    static void BtnBrowseMCS_Click();
    static void BtnBrowseTCS_Click();
    static void BtnEXBrowseMCS_Click();
    static void BtnExBrowseTCS_Click();
    static void CheckSameAsMCS_Click();
    static void BtnStartBatch_Click();
    static void BtnCancel_Click();
};
inline FormBatch Batch;
extern const WindowEntry FormBatch_Entry;

// Names of the files of a folder, to which the separator is added where it is missing.
void DateiListe(std::string& folder, std::vector<std::string>& list);

}  // namespace corvinade::analysis
