// The dialog in which a job gets its points.
#pragma once

#include <string>
#include <vector>

#include "core/arrays.h"
#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::import {

struct FormInputFiles {
    WindowState Window{.Caption = "Input Files"};

    Control FrameMCS;
    Control TextNameMCS;
    Control BtnBrowseMCS;
    Control BtnEditMCS;
    Control BtnExploreMCS;
    Control BtnMCSfromClip;
    Control LabelRenameMCS;
    Control TextRenameMCS;
    Control LabelTableMCS;  // how the file is read
    Control BtnTableMCS;

    Control FrameOCS;
    Control ComboOCS_Data;
    Control TextNameOCS;
    Control ButtonBrowseOCS;
    Control BtnEditOCS;
    Control BtnExploreOCS;
    Control BtnOCSfromClip;
    Control LabelRenameOCS;
    Control TextRenameOCS;
    Control LabelTableOCS;
    Control BtnTableOCS;

    Control FrameIdentify;
    Control OptionByID;
    Control OptionByCoordinate;
    Control OptionByDis;
    Control CheckRenameMCS;
    Control CheckRenameOCS;
    Control CheckUseOnlyFirst;
    Control LabelMaxOCS1;
    Control TextMaxOCS;
    Control LabelMaxOCS2;

    Control FrameMoreMCS;
    Control TextNameMoreMCS;
    Control BtnBrowseMoreMCS;
    Control BtnEditMoreMCS;
    Control BtnExploreMoreMCS;
    Control BtnMoreMCSClip;
    Control OptionPrefix;
    Control Option2;
    Control TextPreSuff;
    Control LabelTableMore;
    Control BtnTableMore;
    Control BtnImportMoreMCS;

    Control Command2;
    Control BtnSpezial;
    Control BtnOK;
    Control BtnApply;
    Control BtnCancel;

    std::string BundleFile;  // a bundle input file that the next import reads in place of two point files

    static void Form_Load();
    static void Form_Unload();
    static void Form_Resize();
    static void Form_Escape();
    static void ComboOCS_Data_Click();
    static void OptionByID_Click();
    static void OptionByCoordinate_Click();
    static void OptionByDis_Click();
    static void CheckUseOnlyFirst_Click();
    static void Path_Change();
    static void BtnTableMCS_Click();
    static void BtnTableOCS_Click();
    static void BtnTableMore_Click();
    static void BtnBrowseMCS_Click();
    static void ButtonBrowseOCS_Click();
    static void BtnBrowseMoreMCS_Click();
    static void BtnEditMCS_Click();
    static void BtnEditOCS_Click();
    static void BtnEditMoreMCS_Click();
    static void BtnExploreMCS_Click();
    static void BtnExploreOCS_Click();
    static void BtnExploreMoreMCS_Click();
    static void BtnMCSfromClip_Click();
    static void BtnOCSfromClip_Click();
    static void BtnMoreMCSClip_Click();
    static void BtnImportMoreMCS_Click();
    static void Command2_Click();
    static void BtnSpezial_Click();
    static void BtnOK_Click();
    static void BtnApply_Click();
    static void BtnCancel_Click();
};
extern FormInputFiles InputFiles;
extern const WindowEntry FormInputFiles_Entry;

// The import that the controls of the dialog ask for (import/import_request.h), or that of the bundle file.
// False where a table among the files could not be read, for which the dialog stays.
bool myBtn_OK();

// The block text that BtnSpezial reads: one 3 by 3 part a block. No other room uses it.
struct SpezialRecord {
    std::vector<Mat3> Blocks{Mat3{}};  // from 1
};
inline SpezialRecord Spezial;

}  // namespace corvinade::import
