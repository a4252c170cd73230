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

    Control FrameMCS = Frame("Start system (MCS)");
    Control TextNameMCS = TextBox();
    Control BtnBrowseMCS = Button("&Browse...");
    Control BtnEditMCS = Button("&Edit");
    Control BtnExploreMCS = Button("E&xplore");
    Control BtnMCSfromClip = Button("from &Clipboard");
    Control LabelRenameMCS = Label("Name of the system");
    Control TextRenameMCS = TextBox();
    Control LabelTableMCS = Label("");  // how the file is read
    Control BtnTableMCS = Button("Table...");

    Control FrameOCS = Frame("Target system (OCS)");
    Control ComboOCS_Data = ComboBox();
    Control TextNameOCS = TextBox();
    Control ButtonBrowseOCS = Button("B&rowse...");
    Control BtnEditOCS = Button("E&dit");
    Control BtnExploreOCS = Button("Ex&plore");
    Control BtnOCSfromClip = Button("from C&lipboard");
    Control LabelRenameOCS = Label("Name of the system");
    Control TextRenameOCS = TextBox();
    Control LabelTableOCS = Label("");
    Control BtnTableOCS = Button("Table...");

    Control FrameIdentify = Frame("Identical points");
    Control OptionByID = Option("by &ID", 1);
    Control OptionByCoordinate = Option("by c&oordinate", 1);
    Control OptionByDis = Option("by di&stance", 1);
    Control CheckRenameMCS = CheckBox("rename points in the &MCS file");
    Control CheckRenameOCS = CheckBox("rename points in the OCS &file");
    Control CheckUseOnlyFirst = CheckBox("use only some OCS points");
    Control LabelMaxOCS1 = Label("use only the first");
    Control TextMaxOCS = TextBox("100");
    Control LabelMaxOCS2 = Label("points of the OCS file");

    Control FrameMoreMCS = Frame("Add points to the start system");
    Control TextNameMoreMCS = TextBox();
    Control BtnBrowseMoreMCS = Button("Bro&wse...");
    Control BtnEditMoreMCS = Button("Edi&t");
    Control BtnExploreMoreMCS = Button("Explore");
    Control BtnMoreMCSClip = Button("from Clipboard");
    Control OptionPrefix = Option("Prefix", 2);
    Control Option2 = Option("S&uffix", 2);
    Control TextPreSuff = TextBox();
    Control LabelTableMore = Label("");
    Control BtnTableMore = Button("Table...");
    Control BtnImportMoreMCS = Button("Add poi&nts");

    Control Command2 = Button("Bundle file...");
    Control BtnSpezial = Button("Spezial");
    Control BtnOK = Button("OK");
    Control BtnApply = Button("&Apply");
    Control BtnCancel = Button("Cancel");

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
inline FormInputFiles InputFiles;
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
