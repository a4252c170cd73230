// The window that transforms every point file of a folder into files of another one.
#pragma once

#include <string>
#include <vector>

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::analysis {

struct FormBatch {
    WindowState Window{.Caption = "Batch Transformation"};

    Control LabelMCS;
    Control TextNameMCSDirectory;
    Control BtnBrowseMCS;
    Control BtnEXBrowseMCS;
    Control LabelTCS;
    Control TextNameTCSDirectory;
    Control BtnBrowseTCS;
    Control BtnExBrowseTCS;
    Control CheckSameAsMCS;
    Control OptionTransformWithActualCalc;
    Control OptionTransformWithNewCalc;
    Control OptionOnlyOnlyMCS;
    Control OptionWriteAll;
    Control LabelStatus;
    Control BtnStartBatch;
    Control BtnCancel;

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
extern FormBatch Batch;
extern const WindowEntry FormBatch_Entry;

// Names of the files of a folder, to which the separator is added where it is missing.
void DateiListe(std::string& folder, std::vector<std::string>& list);

}  // namespace corvinade::analysis
