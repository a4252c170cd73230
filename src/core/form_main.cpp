// The commands of the main window that open what they name.
#include "core/form_main.h"

#include "core/controller.h"
#include "core/files.h"
#include "core/job.h"
#include "core/job_commands.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/text.h"

namespace corvinade::core {

FormMain Main;

void FormMain::MenuFileNew_Click() {
    MenuFileNew_Command();
}
void FormMain::MenuFileOpen_Click() {
    MenuFileOpen_Command();
}
void FormMain::MenuFileSave_Click() {
    MenuFileSave_Command();
}
void FormMain::MenuFileSaveAs_Click() {
    MenuFileSaveAs_Command();
}
void FormMain::MenuFileInputFiles_Click() {
    ShowWindow("FormInputFiles");
}
void FormMain::MenuFileRecovery_Click() {
    ShowWindow("FormRecovery");
}
void FormMain::MenüDateiAlt1_Click() {
    OpenLastProjekt(Main.MenüDateiAlt1.Text);
}
void FormMain::MenüDateiAlt2_Click() {
    OpenLastProjekt(Main.MenüDateiAlt2.Text);
}
void FormMain::MenüDateiAlt3_Click() {
    OpenLastProjekt(Main.MenüDateiAlt3.Text);
}
void FormMain::MenüDateiAlt4_Click() {
    OpenLastProjekt(Main.MenüDateiAlt4.Text);
}
void FormMain::MenuFileExit_Click() {
    CloseProgram();
}
void FormMain::MenuVievMainSheet_Click() {
    ShowWindow("FormMainSheet");
}
void FormMain::MenüViewInputStatistic_Click() {
    ShowWindow("FormInputStatistic");
}
void FormMain::MenuViewNotes_Click() {
    ShowWindow("FormNotes");
}
void FormMain::MenuViewStart_Click() {
    ShowWindow("FormStart");
}
void FormMain::StatusBar_Notes_Click() {
    ShowWindow("FormNotes");
}
void FormMain::MenuTransformationBundle_Click() {
    ShowWindow("FormBündel");
}
void FormMain::MenuTransformationReliability_Click() {
    ShowWindow("FormReliability");
}
void FormMain::MenueTransformationBatch_Click() {
    ShowWindow("FormBatch");
}
void FormMain::MenueExtrasOptions_Click() {
    ShowWindow("FormOptions");
}
void FormMain::MenuHelpInfo_Click() {
    ShowWindow("FormMenuHelpInfo");
}

void FormMain::MenuSettingsUnits_Click() {
    ShowWindow("FormUnits");
    Run.JobDirty = kTrue;
}

void FormMain::MenuTransformationCalculation_Click() {
    if (Job.Pairs() < 2) {
        ShowMessage(std::string("There are less then two identically Points for a calculation!") + kLineEnd +
                    "That makes no sence." + kLineEnd +
                    "Please load more identically Points to do Transformation Calculations.");
        return;
    }
    if (Job.Pairs() == 2)
        ShowMessage(
            std::string("There are less than three identically Points for a calculation.") + kLineEnd +
            "By rational settings of the Transformation Parameters logical Calculations can be made." +
            kLineEnd + "Be sure what you are doing!");
    if (!Main.MenuTransformationCalculation.Checked) {
        ShowWindow("FormTrafoBerechnung");
        Main.MenuTransformationCalculation.Checked = true;
        Main.Toolbar1_TrafoBerechnung.Value = 1;
    } else {
        UnloadWindow("FormTrafoBerechnung");
        Main.MenuTransformationCalculation.Checked = false;
        Main.Toolbar1_TrafoBerechnung.Value = 0;
    }
}

void FormMain::MenuTransformationDistanceScale_Click() {
    if (Job.Pairs() < 2) {
        ShowMessage("There are not enough identically Points for a calculation");
        return;
    }
    ShowWindow("FormDistanceScale");
}

void FormMain::MenueHelpQuestion_Click() {
    StartFile("Open", JoinPath(ProgramFolder(), "manual Corvinade English 2.0.0.pdf"));
}

}  // namespace corvinade::core
