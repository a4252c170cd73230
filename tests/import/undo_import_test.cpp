// An import is a step: the job of before comes back to its last byte, and the imported one again.
#include "core/form_main.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/notes.h"
#include "core/run.h"
#include "engine/calculation_window.h"
#include "engine/undo.h"
#include "import/input_dialog.h"

using namespace corvinade;

namespace {

class UndoOfImport : public InputDialog {
protected:
    static void Back() { UserClick(Main.MenuEditUndo); }
    static void Again() { UserClick(Main.MenuEditRedo); }
    static std::string SavedBytes() { return JobBytes(Job, Main.ComboSaveView.Items); }
    // Other points, in the place of those that there are.
    void ImportOthers() {
        const std::string start = Write("other_start.txt", "A;1;2;3\r\nB;4;5;6\r\nX;7;8;19\r\nY;7;80;1\r\n");
        const std::string target = Write("other_target.txt", "A;1;2;3\r\nB;4;5;x\r\nX;7;8;19\r\n");
        ShowWindow("FormInputFiles");
        UserSetText(InputFiles.TextNameMCS, start);
        UserSetText(InputFiles.TextNameOCS, target);
        Answer("message", "Yes");
        UserClick(InputFiles.BtnOK);
    }
};

}  // namespace

TEST_F(UndoOfImport, TheFirstImportIsNoStep) {
    Import();
    EXPECT_FALSE(Main.MenuEditUndo.Enabled) << "there was no job that could come back";
}

TEST_F(UndoOfImport, PointsNamesUseAndResultOfBeforeComeBack) {
    Import();
    ShowWindow("FormTrafoBerechnung");
    UserClick(TrafoWindow.BtnCalculate);
    Job.UseFlags[1] = 0;
    const std::string before = SavedBytes();
    ImportOthers();
    ASSERT_EQ(Job.Pairs(), 3);
    const std::string behind = SavedBytes();
    ASSERT_TRUE(before != behind);
    ASSERT_FALSE(Notes.List.empty()) << "a coordinate is no number";
    EXPECT_EQ(Main.MenuEditUndo.Text, "&Undo Import");
    Back();
    EXPECT_TRUE(SavedBytes() == before);
    EXPECT_EQ(Job.Pairs(), 4);
    EXPECT_EQ(Job.PathMCS, start_);
    EXPECT_TRUE(Notes.List.empty()) << "it was of the other files";
    EXPECT_TRUE(IsTrue(::Run.JobDataValid));
    Again();
    EXPECT_TRUE(SavedBytes() == behind);
    EXPECT_EQ(Job.Pairs(), 3);
    EXPECT_FALSE(Notes.List.empty());
}

TEST_F(UndoOfImport, StepsBeforeTheImportActOnThePointsThatTheyAreOf) {
    Import();
    ShowWindow("FormTrafoBerechnung");
    const std::string before = SavedBytes();
    UserSetValue(TrafoWindow.OptionL1, 1);
    ImportOthers();
    Back();
    EXPECT_EQ(Main.MenuEditUndo.Text, "&Undo Norm");
    Back();
    EXPECT_TRUE(SavedBytes() == before);
}

TEST_F(UndoOfImport, PointsThatAreAddedGoAgain) {
    Import();
    const std::string before = SavedBytes();
    ShowWindow("FormInputFiles");
    UserSetText(InputFiles.TextNameMoreMCS, Write("more.txt", "M;1;2;3\r\nN;4;5;6\r\n"));
    UserSetText(InputFiles.TextPreSuff, "more_");
    UserClick(InputFiles.BtnImportMoreMCS);
    ASSERT_EQ(Job.Start.Count(), 7);
    const std::string behind = SavedBytes();
    Back();
    EXPECT_TRUE(SavedBytes() == before);
    Again();
    EXPECT_TRUE(SavedBytes() == behind);
}

TEST_F(UndoOfImport, AnImportThatFailsLeavesTheStepsThatThereWere) {
    Import();
    ShowWindow("FormTrafoBerechnung");
    UserSetValue(TrafoWindow.OptionL1, 1);
    ShowWindow("FormInputFiles");
    UserSetText(InputFiles.TextNameMCS, PathOf("missing.txt"));
    UserClick(InputFiles.BtnApply);
    EXPECT_EQ(Main.MenuEditUndo.Text, "&Undo Norm");
}

TEST_F(UndoOfImport, AnAnswerOfNoLeavesTheStepsThatThereWere) {
    Import();
    ShowWindow("FormTrafoBerechnung");
    UserSetValue(TrafoWindow.OptionL1, 1);
    Open();
    Answer("message", "No");
    UserClick(InputFiles.BtnApply);
    EXPECT_EQ(Main.MenuEditUndo.Text, "&Undo Norm");
    Back();
    EXPECT_EQ(TrafoWindow.OptionL2.Value, 1);
}
