// The window of the forms of a result: each form as the command line writes it, and how it goes along.
#include "analysis/form_export.h"

#include <cmath>
#include <cstdlib>
#include <sstream>

#include "analysis/export_forms.h"
#include "cli/headless.h"
#include "core/controller.h"
#include "core/desktop_defaults.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/run.h"
#include "engine/calculation_job.h"
#include "support/fixture.h"

using namespace corvinade;
using analysis::ExportForm;

namespace {

class ExportWindowTest : public Program {
protected:
    // Points turn by 90 degrees about z, for which the angle of the program, which turns the system, is -90;
    // and a shift.
    ExportWindowTest() {
        StartUp("");
        Job.RotZ = Job.RotZCopy = -M_PI / 2;
        Job.TraX = 1234.5;
        Job.TraY = -0.25;
        Job.Start = Job.Transformed =
            PointSet({{"", "A", "B x"}, {{}, 1.0, 3.0}, {{}, -1.0, 1.0006}, {0, 0.5, -7}});
        Job.Target.Resize(1);
        Job.SetPairs(1);
        ::Run.JobDataValid = ::Run.TrafoValid = ::Run.CalcDone = kTrue;
        ::Run.JobFilePath = PathOf("cell.cvn");
        ProgrammLogik();
    }
    static void Open() {
        UserClick(Main.MenueFileExportResult);
        ASSERT_TRUE(IsLoaded("FormExport"));
    }
    static void Choose(const std::string& form) {
        for (int i = 0; i < static_cast<int>(ExportForms().size()); ++i)
            if (form == ExportForms()[static_cast<std::size_t>(i)].Form.Name)
                UserSetIndex(ExportWindow.ListForms, i);
        ASSERT_TRUE(ExportWindow.ListForms.Text.starts_with(form + ":")) << ExportWindow.ListForms.Text;
    }
    static void Answer(const char* kind, const std::optional<std::string>& answer) {
        Headless.Answers[kind].push_back(answer);
    }
    static std::string Preview() { return ExportWindow.TextPreview.Text; }
};

}  // namespace

TEST_F(ExportWindowTest, ListsAllFormsOfTheCommandLine) {
    Open();
    const std::vector<std::string> names = analysis::ExportFormNames();
    ASSERT_EQ(ExportWindow.ListForms.Items.size(), names.size());
    for (std::size_t i = 0; i < names.size(); ++i)
        EXPECT_TRUE(ExportWindow.ListForms.Items[i].starts_with(names[i] + ": ")) << names[i];
    EXPECT_EQ(ExportWindow.ListForms.Index, 0);
    EXPECT_TRUE(ExportWindow.TextPreview.Locked);
}

// By hand: a quarter turn about z takes x to y and y to -x.
TEST_F(ExportWindowTest, ShowsTheTextOfTheChosenForm) {
    Open();
    std::istringstream text(Preview());
    const double expected[16] = {0, -1, 0, 1234.5, 1, 0, 0, -0.25, 0, 0, 1, 0, 0, 0, 0, 1};
    for (const double number : expected) {
        double shown = 0;
        ASSERT_TRUE(text >> shown);
        EXPECT_NEAR(shown, number, 1e-14);
    }
    Choose("urdf");
    EXPECT_TRUE(Preview().starts_with("<origin xyz=\"1.2345 -0.00025 0\" rpy=\"0 ")) << Preview();
    EXPECT_FALSE(ExportWindow.LabelProblem.Visible);
}

TEST_F(ExportWindowTest, CopyTakesTheWholeText) {
    Open();
    Choose("kuka-base");
    UserClick(ExportWindow.BtnCopy);
    EXPECT_EQ(Headless.Clipboard, Preview());
    const std::string begin = "$BASE={X 1234.5, Y -0.25, Z 0, A ";
    ASSERT_TRUE(Headless.Clipboard.starts_with(begin)) << Headless.Clipboard;
    EXPECT_NEAR(std::strtod(Headless.Clipboard.c_str() + begin.size(), nullptr), 90, 1e-12);
}

TEST_F(ExportWindowTest, SaveWritesTheTextUnderTheNameOfTheJob) {
    Open();
    Choose("json");
    Answer("save", PathOf("out.json"));
    UserClick(ExportWindow.BtnSave);
    EXPECT_EQ(Contents(PathOf("out.json")), Preview());
    EXPECT_EQ(Headless.Dialogs.back().Default, "cell.json");
    Answer("save", std::nullopt);
    UserClick(ExportWindow.BtnSave);
    Answer("save", PathOf("no such folder/out.json"));
    UserClick(ExportWindow.BtnSave);
    EXPECT_NE(LastMessage().find("out.json"), std::string::npos) << "the disk's refusal is told";
}

TEST_F(ExportWindowTest, AFormWithoutAPlaceForTheScaleSaysSoAndGivesNothing) {
    Job.ScaleX = 1.001;
    Open();
    Choose("ros");
    EXPECT_TRUE(ExportWindow.ListForms.Text.ends_with("(not of this result)"));
    EXPECT_EQ(Preview(), "");
    EXPECT_NE(ExportWindow.LabelProblem.Text.find("scales x, y, z by 1.001"), std::string::npos)
        << ExportWindow.LabelProblem.Text;
    EXPECT_FALSE(ExportWindow.BtnCopy.Enabled || ExportWindow.BtnSave.Enabled);
    Choose("proj");
    EXPECT_TRUE(ExportWindow.BtnCopy.Enabled);
    EXPECT_FALSE(ExportWindow.ListForms.Text.ends_with("(not of this result)"));
}

TEST_F(ExportWindowTest, WithoutAResultItDoesNotOpen) {
    ::Run.TrafoValid = kFalse;
    UserClick(Main.MenueFileExportResult);
    EXPECT_FALSE(IsLoaded("FormExport"));
    EXPECT_EQ(LastMessage(), "You must make a calculation to export its result");
}

namespace {

class ExportOfAStoredResult : public CalculationJob {};

}  // namespace

TEST_F(ExportOfAStoredResult, GoesOutAsItDidWhenItWasCalculatedUntilSomethingElseIsWanted) {
    for (const DesktopDefault& row : AllDesktopDefaults()) DesktopDefaults.*row.Place = true;
    AddPairs(8);
    ShowWindow("FormTrafoBerechnung");
    Calculate();
    SaveFileAs(PathOf("cell.cvn"));
    UserClick(Main.MenueFileExportResult);
    const std::string calculated = ExportWindow.TextPreview.Text;
    ASSERT_NE(calculated, "");
    UserClick(ExportWindow.BtnClose);

    RunHandler([this] { OpenFile(PathOf("cell.cvn")); });
    ASSERT_EQ(TrafoWindow.LabelResultState.Text, "stored");
    ASSERT_EQ(::Run.TrafoValid, kFalse);
    EXPECT_TRUE(Main.MenueFileExport.Enabled);
    UserClick(Main.MenueFileExportResult);
    ASSERT_TRUE(IsLoaded("FormExport"));
    EXPECT_EQ(ExportWindow.TextPreview.Text, calculated);

    UserSetValue(TrafoWindow.OptionL1, 1);
    ASSERT_EQ(TrafoWindow.LabelResultState.Text, "out of date");
    EXPECT_FALSE(Main.MenueFileExport.Enabled);
    EXPECT_EQ(ExportWindow.TextPreview.Text, "");
    EXPECT_FALSE(ExportWindow.BtnCopy.Enabled);
    UserSetValue(TrafoWindow.OptionL2, 1);
    EXPECT_EQ(ExportWindow.TextPreview.Text, calculated);
}

TEST_F(ExportOfAStoredResult, IsNothingThatScriptsKnow) {
    AddPairs(8);
    ShowWindow("FormTrafoBerechnung");
    Calculate();
    SaveFileAs(PathOf("cell.cvn"));
    RunHandler([this] { OpenFile(PathOf("cell.cvn")); });
    EXPECT_FALSE(Main.MenueFileExport.Enabled);
}

TEST_F(ExportWindowTest, FollowsTheResult) {
    Open();
    const std::string before = Preview();
    Dispatch([] {
        Job.TraX = 7;
        Changed(What::Result);
    });
    EXPECT_NE(Preview(), before);
    EXPECT_NE(Preview().find(" 7\n"), std::string::npos);
    Dispatch([] {
        ::Run.TrafoValid = kFalse;
        Changed(What::State);
    });
    EXPECT_EQ(Preview(), "");
    EXPECT_EQ(ExportWindow.LabelProblem.Text, "There is no result: make a calculation");
    EXPECT_FALSE(ExportWindow.BtnCopy.Enabled);
}

TEST_F(ExportWindowTest, AResultThatDidNotConvergeIsAskedForOnce) {
    Job.Unconverged = kTrue;
    Answer("message", "No");
    UserClick(Main.MenueFileExportResult);
    EXPECT_FALSE(IsLoaded("FormExport"));
    EXPECT_TRUE(LastMessage().starts_with("The calculation did not converge"));
    Answer("message", "Yes");
    Open();
    EXPECT_NE(Preview(), "");
    UserClick(ExportWindow.BtnCopy);  // asks nothing, or the test would fail
    EXPECT_EQ(Headless.Clipboard, Preview());
    Dispatch([] { Changed(What::Result); });
    EXPECT_EQ(Preview(), "") << "another one that did not is not shown unasked";
    EXPECT_FALSE(ExportWindow.BtnCopy.Enabled);
    Answer("message", "Yes");
    UserClick(Main.MenueFileExportResult);
    EXPECT_NE(Preview(), "");
}

TEST_F(ExportWindowTest, NoFormEverHasADecimalComma) {
    Open();
    std::vector<std::string> withPoint;
    for (const ExportForm& form : analysis::ExportForms()) {
        Choose(form.Form.Name);
        withPoint.push_back(Preview());
    }
    Headless.Decimal = ',';
    for (std::size_t i = 0; i < withPoint.size(); ++i) {
        Choose(analysis::ExportForms()[(i + 1) % withPoint.size()].Form.Name);  // so that it is made anew
        Choose(analysis::ExportForms()[i].Form.Name);
        EXPECT_EQ(Preview(), withPoint[i]) << analysis::ExportForms()[i].Form.Name;
    }
    EXPECT_EQ(PlainText(1.5), "1,5") << "all else is as the system has it";
}

TEST_F(ExportWindowTest, TheNamesOfAFrameFileCanBeTyped) {
    Open();
    EXPECT_FALSE(ExportWindow.TextPlace.Visible);
    Choose("robcad");
    EXPECT_TRUE(ExportWindow.TextPlace.Visible && ExportWindow.TextRobot.Visible);
    UserSetText(ExportWindow.TextPlace, "cell");
    UserSetText(ExportWindow.TextTool, "afo910");
    UserSetText(ExportWindow.TextRobot, "r2a");
    EXPECT_EQ(Preview(), RobCadText("cell", "afo910", "r2a"));
}

TEST_F(ExportWindowTest, WhatAFormLosesIsNotedWhenItIsTakenAlongAndNotByLooking) {
    Job.TraX = 1234.56789;
    Open();
    Choose("robcad");
    EXPECT_NE(ExportWindow.LabelProblem.Text.find("five digits"), std::string::npos)
        << ExportWindow.LabelProblem.Text;
    EXPECT_TRUE(Notes.List.empty());
    EXPECT_TRUE(ExportWindow.BtnCopy.Enabled);
    UserClick(ExportWindow.BtnCopy);
    ASSERT_EQ(Notes.List.size(), 1U);
    UserClick(ExportWindow.BtnCopy);
    EXPECT_EQ(Notes.List.size(), 1U) << "and once";
}

TEST_F(ExportWindowTest, ClosesByButtonAndEscape) {
    Open();
    UserClick(ExportWindow.BtnClose);
    EXPECT_FALSE(IsLoaded("FormExport"));
    Open();
    UserEscape(analysis::FormExport_Entry);
    EXPECT_FALSE(IsLoaded("FormExport"));
}
