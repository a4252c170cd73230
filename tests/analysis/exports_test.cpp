// The exports for robot cells, byte by byte.
#include "analysis/exports.h"

#include <cmath>

#include "analysis/form_main_exports.h"
#include "cli/headless.h"
#include "core/controller.h"
#include "core/files.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/notes.h"
#include "core/settings.h"
#include "core/units.h"
#include "engine/calculation_window.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

class Exports : public Program {
protected:
    // A job whose result is known: a quarter turn about z.
    Exports() {
        StartUp("");
        Job.RotZ = Job.RotZCopy = kPi / 2;
        Job.TraX = 1234.5;
        Job.TraY = -0.25;
        Job.TraZ = 0;
        Run.JobDataValid = Run.TrafoValid = Run.CalcDone = kTrue;
        ProgrammLogik();
    }
    static void Answer(const char* kind, const std::optional<std::string>& answer) {
        Headless.Answers[kind].push_back(answer);
    }
    static void AnswerNames(const std::string& place, const std::string& tool, const std::string& robot) {
        for (const std::string& name : {place, tool, robot}) Answer("input", name);
    }
    static void ThreePoints() {
        Job.Start = Job.Transformed = PointSet(
            {{"", "A", "12", "B x"}, {{}, 1.0, 2.0, 3.0}, {{}, -1.0, {}, 1.0006}, {0, 0.5, 0.25, -7}});
        Job.Target.Resize(3);
        Job.SetPairs(1);
    }
    // The file as it shall be, but for the two lines with names and numbers.
    static std::string RobCad(const std::string& component, const std::string& tool,
                              const std::string& frame) {
        std::string text = "HEADER/ 00 , 00 , 00 , ROBFACEOUT ;\nCOMPONENT / " + component + " ;     \n" +
                           tool +
                           " =FRA / 0.0e-05 , 0.0e-05 , 0.0e-05 ,\n0.0e-05 , 0.0e-05 , 0.0e-05 ;   \n" +
                           frame + "END / " + component + " ;     \n";
        text +=
            "ATT / _PALETTE_LENGTH , 0;    \n"
            "ATT / _PALETTE_LENGTH , 0;    \n"
            "ATT / _PALETTE_AMBIENT , 0.0;    \n"
            "ATT / _PALETTE_DIFFUSE , 0.0;    \n"
            "ATT / _PALETTE_SPECULAR , 0.0;  \n"
            "ATT / _PALETTE_EMISSION , 0.0;   \n"
            "ATT / _PALETTE_SHININESS , 0.0;   \n"
            "ATT / _PALETTE_TEXTURE_HEIGHT , 0;    \n"
            "ATT / _PALETTE_TEXTURE_WIDTH , 0;    \n"
            "ATT / _PALETTE_S_PLANE , 0.0;    \n"
            "ATT / _PALETTE_T_PLANE , 0.0;    \n"
            "ATT / _PALETTE_LENGTH , 0;    \n"
            "ATT / _PALETTE_MATERIAL_IN_USE , 0;    \n"
            "ATT / _PALETTE_AMBIENT , 0.0;    \n"
            "ATT / _PALETTE_DIFFUSE , 0.0;    \n"
            "ATT / _PALETTE_SPECULAR , 0.0;    \n"
            "ATT / _PALETTE_EMISSION , 0.0;    \n"
            "ATT / _PALETTE_SHININESS , 0.0;    \n"
            "ATT / _PALETTE_TEXTURE_HEIGHT , 0;    \n"
            "ATT / _PALETTE_TEXTURE_WIDTH , 0;    \n"
            "ATT / _PALETTE_S_PLANE , 0.0;    \n"
            "ATT / _PALETTE_T_PLANE , 0.0;    \n"
            "END;        \n";
        return CrLf(text);
    }
};

const std::string kUnits =
    "Angle and Distance Output will always be made in Unit witch is set in Menu - Settings - Units";

}  // namespace

// --- What the files have no place for ---------------------------------------------------------------------

TEST_F(Exports, ScalesAndShearsThatAFileHasNoPlaceForAreNamed) {
    const auto left = [] {
        std::vector<std::string> texts;
        for (const auto& write : {+[] { RobCadText("", "", ""); }, +[] { RocalText(); }}) {
            ForgetNotes();
            write();
            for (const Note& note : Notes.List) {
                EXPECT_EQ(note.Code, NoteCode::ScaleLeftOut);
                EXPECT_EQ(note.Weight, Severity::Warning);
                const std::size_t begin = note.Text.find("without ") + 8;
                texts.push_back(note.Text.substr(begin, note.Text.find(';') - begin));
            }
        }
        return texts;
    };
    const auto twice = [](const std::string& text) { return std::vector<std::string>{text, text}; };
    EXPECT_EQ(left(), std::vector<std::string>{});
    Job.ScaleX = Job.ScaleY = Job.ScaleZ = 1.0125;
    EXPECT_EQ(left(), twice("Scale xyz 1.0125"));
    Job.ScaleX = Job.ScaleY = 1;
    EXPECT_EQ(left(), twice("Scale z 1.0125"));
    Job.ScaleZ = -1;
    EXPECT_EQ(left(), twice("Scale z -1")) << "mirrored";
    Job.ScaleZ = 1;
    Job.AngleUnitName = "degree";
    RhoFestlegung();
    Job.AngleXY = kPi / 8;
    Job.AngleZtoXY = kPi / 16;
    Job.Azimuth = kPi / 4;
    EXPECT_EQ(left(), twice("xy 22.5 degree, Azimuth 45 degree, z to xy 11.25 degree"));
    ForgetNotes();
    OnlyMcsText();
    EXPECT_TRUE(Notes.List.empty()) << "points have gone through the scales";
}

TEST_F(Exports, DigitsThatTheFrameHasNoPlaceForAreNamed) {
    const auto texts = [] {
        std::string all;
        ForgetNotes();
        RobCadText("", "", "");
        for (const Note& note : Notes.List) {
            EXPECT_EQ(note.Code, NoteCode::DigitsCut);
            EXPECT_EQ(note.Weight, Severity::Warning);
            all += note.Text + "\n";
        }
        return all;
    };
    const auto holds = [](const std::string& all, const std::string& part) {
        return all.find(part) != std::string::npos;
    };
    EXPECT_EQ(texts(), "") << "all of them fit into five digits";
    Job.RotZ = 0;
    Job.TraX = 123456.788;
    Job.TraZ = -12345;
    // 123460 - 123456.788; -12345 has five digits.
    std::string all = texts();
    EXPECT_TRUE(holds(all, "Tra x 123456.788 is written as 1.2346E+05, which is off by 3.212 mm")) << all;
    EXPECT_FALSE(holds(all, "Tra y")) << all;
    EXPECT_FALSE(holds(all, "Tra z")) << all;
    Job.LengthUnitName = "meter";
    RhoFestlegung();
    all = texts();
    EXPECT_TRUE(holds(all, "Tra x 123.456788 is written as 1.2346E+02, which is off by 3.212 mm")) << all;
    Headless.Decimal = ',';
    all = texts();
    EXPECT_TRUE(holds(all, "is written as 1,2346E+02, which is off by 3,212 mm")) << all;
    Headless.Decimal = '.';
    Job.LengthUnitName = "millimeter";
    Job.AngleUnitName = "degree";
    RhoFestlegung();
    Job.TraX = 100.0004;
    EXPECT_EQ(texts(), "");
    Job.TraX = 100.0006;
    EXPECT_TRUE(holds(texts(), "off by 0.001 mm"));
    // 12.34561 goes out as 12.346, by 0.00039 degree or 6.8e-6 more; 12.34603 by 0.5e-6 less.
    Job.TraX = 0;
    Job.RotX = 12.34561 * kPi / 180;
    EXPECT_TRUE(holds(texts(), "which is off by 0.007 mrad")) << texts();
    EXPECT_FALSE(holds(texts(), "Tra")) << texts();
    Job.RotX = 12.34603 * kPi / 180;
    EXPECT_EQ(texts(), "");
}

TEST_F(Exports, ANameThatTheFormatOfLengthsRoundsIsNoted) {
    ThreePoints();
    ForgetNotes();
    OnlyMcsText();
    EXPECT_TRUE(Notes.List.empty()) << "12.000 is 12";
    Job.Transformed.Name[2] = "12.3456";
    Job.Transformed.Name[3] = "12.3461";
    OnlyMcsText();
    ASSERT_EQ(Notes.List.size(), 1u);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::DigitsCut);
    EXPECT_EQ(Notes.List[0].Text,
              "The name \"12.3456\" is a number and is written as one of lengths, 12.346");
    EXPECT_EQ(Notes.List[0].Count, 2);
}

// --- Numbers ----------------------------------------------------------------------------------------------

TEST_F(Exports, ANumberHasFiveDigitsAndAnExponentOfTwo) {
    const std::vector<std::pair<double, std::string>> cases = {
        {0, "0.0000E+00"},        {1, "1.0000E+00"},        {-0.25, "-2.5000E-01"},
        {1234.5, "1.2345E+03"},   {123456, "1.2346E+05"},   {123445, "1.2345E+05"},
        {-123445, "-1.2345E+05"}, {99999.5, "1.0000E+05"},  {0.0000999996, "1.0000E-04"},
        {1e-9, "1.0000E-09"},     {1.5e123, "1.5000E+123"}, {-2e-300, "-2.0000E-300"},
        {9.99994, "9.9999E+00"},  {0.1 + 0.2, "3.0000E-01"}};
    for (const auto& [value, text] : cases) EXPECT_EQ(ScientificText(value), text);
    Headless.Decimal = ',';
    EXPECT_EQ(ScientificText(-1.5), "-1,5000E+00");
}

TEST_F(Exports, ATextByAPictureIsItselfUnlessItIsANumber) {
    EXPECT_EQ(FormatText("12", "0.000"), "12.000");
    EXPECT_EQ(FormatText("1E2", "0.0"), "100.0");
    EXPECT_EQ(FormatText("P12", "0.000"), "P12");
    EXPECT_EQ(FormatText("", "0.000"), "");
}

// --- The frame file ---------------------------------------------------------------------------------------

TEST_F(Exports, TheFrameFileIsWrittenByteByByteAndOpened) {
    const std::string path = PathOf("frame.rf");
    Answer("save", path);
    AnswerNames("Wob", "afo910", "r2a");
    UserClick(Main.MenueFileExportRobCad);
    EXPECT_EQ(Messages(), std::vector<std::string>{kUnits});
    EXPECT_EQ(Contents(path), RobCad("afo910_Wob_r2a", "afo910",
                                     "r2a_calpos =FRA / 1.2345E+03 , -2.5000E-01 , 0.0000E+00 ,\n"
                                     "0.0000E+00 , 0.0000E+00 , 9.0000E+01 ;\n"));
    ASSERT_EQ(Headless.Shell.size(), 1u);
    EXPECT_EQ(Headless.Shell[0].Verb, "Open");
    EXPECT_EQ(Headless.Shell[0].Path, path);
}

TEST_F(Exports, TheFrameFileHasTheUnitsAndTheDelimiterOfTheSettings) {
    Job.LengthUnitName = "meter";
    Job.AngleUnitName = "grad (gon)";
    RhoFestlegung();
    Headless.Decimal = ',';
    const std::string text = RobCadText("P", "T", "R");
    EXPECT_NE(text.find("R_calpos =FRA / 1,2345E+00 , -2,5000E-04 , 0,0000E+00 ,\r\n"), std::string::npos);
    EXPECT_NE(text.find(" , 1,0000E+02 ;\r\n"), std::string::npos);
}

TEST_F(Exports, TheAnglesOfTheFrameAreThoseOfTheRotationAboutEachAxis) {
    for (int axis = 0; axis < 3; ++axis) {
        Job.RotX = Job.RotY = Job.RotZ = 0;
        (axis == 0 ? Job.RotX : axis == 1 ? Job.RotY : Job.RotZ) = -kPi / 6;
        const std::string text = RobCadText("P", "T", "R");
        std::string line = text.substr(text.find(" ,\r\n", text.find("calpos")) + 4);
        line = line.substr(0, line.find(" ;"));
        std::vector<double> angles;
        for (std::size_t at = 0; at != std::string::npos; at = line.find(" , ", at + 1))
            angles.push_back(std::stod(line.substr(at == 0 ? 0 : at + 3)));
        ASSERT_EQ(angles.size(), 3u);
        for (int i = 0; i < 3; ++i)
            EXPECT_NEAR(angles[static_cast<std::size_t>(i)], i == axis ? -30 : 0, 1e-3) << axis;
    }
}

TEST_F(Exports, TheAnglesOfTheFrameAreThoseOfARotationAboutAllAxes) {
    // 10, -20 and 130 degrees, about x, then y', then z''.
    Job.RotX = kPi / 18;
    Job.RotY = -kPi / 9;
    Job.RotZ = kPi * 13 / 18;
    const std::string text = RobCadText("P", "T", "R");
    EXPECT_NE(text.find(" ,\r\n1.0000E+01 , -2.0000E+01 , 1.3000E+02 ;\r\n"), std::string::npos) << text;
}

TEST_F(Exports, EmptyNamesKeepTheirUnderscores) {
    const std::string path = PathOf("frame.rf");
    Answer("save", path);
    AnswerNames("", "", "");
    UserClick(Main.MenueFileExportRobCad);
    EXPECT_EQ(Contents(path), RobCad("__", "",
                                     "_calpos =FRA / 1.2345E+03 , -2.5000E-01 , 0.0000E+00 ,\n"
                                     "0.0000E+00 , 0.0000E+00 , 9.0000E+01 ;\n"));
}

TEST_F(Exports, TheDialogsOfTheFrameFileAreAsked) {
    Settings.LastRobCadRoot = "/cell/frames";
    Settings.Place = "Leipzig";
    Settings.ToolName = "t1";
    Answer("save", PathOf("frame"));
    AnswerNames("Wob", "afo910", "r2a");
    UserClick(Main.MenueFileExportRobCad);
    ASSERT_EQ(Headless.Dialogs.size(), 5u);
    const DialogShown& file = Headless.Dialogs[1];
    EXPECT_EQ(file.Kind, "save");
    EXPECT_EQ(file.Title, "Export RobCad *.rf File");
    EXPECT_EQ(file.Filter, "*.rf");
    EXPECT_EQ(file.Text, "/cell/frames");
    const std::vector<std::pair<std::string, std::string>> inputs = {
        {"Place of Measurement [exmpl. Wob]", "Leipzig"},
        {"Name of Tool / Fixture [exmpl. afo910]", "t1"},
        {"Name of Roboter [exmpl. r2a]", ""}};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(Headless.Dialogs[2 + i].Kind, "input");
        EXPECT_EQ(Headless.Dialogs[2 + i].Text, inputs[i].first);
        EXPECT_EQ(Headless.Dialogs[2 + i].Default, inputs[i].second);
    }
    EXPECT_TRUE(File_Exist(PathOf("frame.rf"))) << "the extension is added";
    EXPECT_EQ(IniWertLesen("LastRobCadRoot"), folder_);
    EXPECT_EQ(IniWertLesen("Place"), "Wob");
    EXPECT_EQ(IniWertLesen("ToolName"), "afo910");
}

TEST_F(Exports, ANameThatEndsInTheExtensionKeepsIt) {
    Answer("save", PathOf("FRAME.RF"));
    AnswerNames("", "", "");
    UserClick(Main.MenueFileExportRobCad);
    EXPECT_TRUE(File_Exist(PathOf("FRAME.RF")));
}

TEST_F(Exports, NoFileNameEndsTheExport) {
    for (const std::optional<std::string>& answer :
         {std::optional<std::string>(), std::optional<std::string>(""), std::optional<std::string>("*.*")}) {
        Answer("save", answer);
        UserClick(Main.MenueFileExportRobCad);
        Answer("save", answer);
        UserClick(Main.MenueFileExportROCAL);
    }
    EXPECT_TRUE(Headless.Shell.empty());
    EXPECT_FALSE(Headless.Unanswered);
    EXPECT_EQ(Messages(), std::vector<std::string>(3, kUnits));
}

TEST_F(Exports, WithoutACalculationThereIsNothingToExport) {
    Run.TrafoValid = kFalse;
    MenueFileExportRobCad_Click();
    MenueFileExportROCAL_Click();
    EXPECT_EQ(Messages(), (std::vector<std::string>{"You must make a calculation to export a *.rf File",
                                                    "You must make a calculation to export a *.bas File"}));
}

TEST_F(Exports, WithinACalculationThereIsNothingToExport) {
    CalculationWindow.Running = true;
    UserClick(Main.MenueFileExportRobCad);
    UserClick(Main.MenueFileExportROCAL);
    CalculationWindow.Running = false;
    EXPECT_EQ(Messages(), (std::vector<std::string>{"You must make a calculation to export a *.rf File",
                                                    "You must make a calculation to export a *.bas File"}));
    EXPECT_FALSE(Headless.Unanswered);
}

TEST_F(Exports, AFullDiskIsToldAndTheOldFileStays) {
    const std::string rf = Write("a.rf", "old"), bas = Write("a.bas", "old");
    Run.JobFilePath = PathOf("cell.cvn");
    FileFaults.Refuse = [this](const std::string& operation, const std::string& path) {
        const bool ours = path.starts_with(folder_ + "/a.") || path == PathOf("cell.txt");
        return ours && operation == "write" ? std::string("No space left on device") : std::string();
    };
    Answer("save", rf);
    AnswerNames("", "", "");
    UserClick(Main.MenueFileExportRobCad);
    EXPECT_EQ(LastMessage(), "Cannot write \"" + rf + "\": No space left on device");
    Answer("save", bas);
    UserClick(Main.MenueFileExportROCAL);
    EXPECT_EQ(LastMessage(), "Cannot write \"" + bas + "\": No space left on device");
    UserClick(Main.MenueOnlyMCStoTilde);
    EXPECT_EQ(LastMessage(), "Cannot write \"" + PathOf("cell.txt") + "\": No space left on device");
    EXPECT_EQ(Contents(rf), "old");
    EXPECT_EQ(Contents(bas), "old");
    EXPECT_FALSE(File_Exist(PathOf("cell.txt")));
    EXPECT_TRUE(Headless.Shell.empty());
}

// --- The matrix -------------------------------------------------------------------------------------------

TEST_F(Exports, TheMatrixHasNoLineEndBehindItsLastRow) {
    Job.RotZ = 0;
    Job.LengthUnitName = "meter";
    RhoFestlegung();
    const std::string path = PathOf("cell.bas");
    Answer("save", path);
    UserClick(Main.MenueFileExportROCAL);
    EXPECT_EQ(Contents(path), "[1,0,0,1.2345;\r\n0,1,0,-0.00025;\r\n0,0,1,0;\r\n0,0,0,1]");
}

TEST_F(Exports, TheMatrixIsThatOfTheRotationInPlainNumbers) {
    // cos 60 = 0.5, sin 60 = 0.866025403784439 in 15 digits; the axes are turned, not the point.
    Job.RotZ = std::acos(0.5);
    Headless.Decimal = ',';
    const std::string text = RocalText();
    EXPECT_EQ(text.substr(0, text.find("\r\n")), "[0,5,0,866025403784439,0,1234,5;") << text;
    EXPECT_NE(text.find("\r\n-0,866025403784439,0,5,0,-0,25;\r\n"), std::string::npos) << text;
}

TEST_F(Exports, TheMatrixIsNamedAfterTheJob) {
    Settings.LastRocalRoot = "/cell/matrices";
    for (const auto& [job, name] : std::vector<std::pair<std::string, std::string>>{
             {kDefaultJobPath, ""}, {"/jobs/cell.cvn", "/jobs/cell.bas"}}) {
        Run.JobFilePath = job;
        Answer("save", std::nullopt);
        UserClick(Main.MenueFileExportROCAL);
        EXPECT_EQ(Headless.Dialogs.back().Title, "Export Rocal *.bas File");
        EXPECT_EQ(Headless.Dialogs.back().Filter, "*.bas");
        EXPECT_EQ(Headless.Dialogs.back().Text, "/cell/matrices");
        EXPECT_EQ(Headless.Dialogs.back().Default, name);
    }
    Answer("save", PathOf("cell.bas"));
    UserClick(Main.MenueFileExportROCAL);
    EXPECT_EQ(IniWertLesen("LastRocalRoot"), folder_);
}

// --- Points without a partner -----------------------------------------------------------------------------

TEST_F(Exports, PointsWithoutAPartnerGoToATextFile) {
    ThreePoints();
    Run.JobFilePath = PathOf("cell.cvn");
    UserClick(Main.MenueOnlyMCStoTilde);
    // A name that is a number is shown as one.
    EXPECT_EQ(Contents(PathOf("cell.txt")), "12.000\t2.000\t0.000\t0.250\r\nB x\t3.000\t1.001\t-7.000\r\n");
    EXPECT_TRUE(Messages().empty());
}

TEST_F(Exports, PointsWithoutAPartnerAreInTheLengthUnit) {
    ThreePoints();
    Job.LengthUnitName = "inch";
    RhoFestlegung();
    Headless.Decimal = ',';
    // 2 mm, 0.25 mm, 3 mm, 1.0006 mm and 7 mm by 25.4.
    EXPECT_EQ(OnlyMcsText(), "12,000\t0,079\t0,000\t0,010\r\nB x\t0,118\t0,039\t-0,276\r\n");
}

TEST_F(Exports, TheTextFileIsEmptyWhereAllPointsAreIdentical) {
    ThreePoints();
    Job.SetPairs(3);
    Run.JobFilePath = PathOf("cell.cvn");
    UserClick(Main.MenueOnlyMCStoTilde);
    EXPECT_TRUE(File_Exist(PathOf("cell.txt")));
    EXPECT_EQ(Contents(PathOf("cell.txt")), "");
}

TEST_F(Exports, AJobWithoutANameGetsAMessageInsteadOfATextFile) {
    ThreePoints();
    UserClick(Main.MenueOnlyMCStoTilde);
    EXPECT_EQ(Messages(), std::vector<std::string>{"Noch kein Dateiname vergeben; mache nix"});
}

TEST_F(Exports, ATextFileThatExistsIsReplacedOnYesAlone) {
    ThreePoints();
    Job.SetPairs(2);
    Run.JobFilePath = PathOf("cell.cvn");
    const std::string path = Write("cell.txt", "old");
    Answer("message", "No");
    UserClick(Main.MenueOnlyMCStoTilde);
    EXPECT_EQ(Contents(path), "old");
    EXPECT_EQ(LastMessage(), "File " + path + " is existing.\rWill you replace it?");
    EXPECT_EQ(Headless.Dialogs.back().Buttons, (std::vector<std::string>{"Yes", "No"}));
    Answer("message", "Yes");
    UserClick(Main.MenueOnlyMCStoTilde);
    EXPECT_EQ(Contents(path), "B x\t3.000\t1.001\t-7.000\r\n");
}

TEST_F(Exports, TheMenuEntriesBearTheirNames) {
    EXPECT_EQ(Main.MenueFileExportRobCad.Text, "Rob&Cad Robface *.rf File");
    EXPECT_EQ(Main.MenueFileExportROCAL.Text, "&Rocal *.bas File");
    EXPECT_EQ(Main.MenueOnlyMCStoTilde.Text, "OnlyMCS Pts to txt File");
}

// --- A result that did not converge -----------------------------------------------------------------------

TEST_F(Exports, AResultThatDidNotConvergeGoesOutOnlyWhenItIsWanted) {
    ThreePoints();
    Run.JobFilePath = PathOf("cell.cvn");
    Job.Unconverged = kTrue;
    const auto click = [&](Control& command, const std::string& answer) {
        Headless.Dialogs.clear();
        Answer("message", answer);
        UserClick(command);
        EXPECT_EQ(
            Messages().at(0),
            "The calculation did not converge, its result is not the best fit.\r\n\r\nDo you want to export it "
            "all the same?");
        return Headless.Dialogs.size();
    };
    for (Control* command :
         {&Main.MenueFileExportRobCad, &Main.MenueFileExportROCAL, &Main.MenueOnlyMCStoTilde})
        EXPECT_EQ(click(*command, "No"), 1u) << "nothing else is asked";
    for (const char* name : {"f.rf", "f.bas", "cell.txt"}) EXPECT_FALSE(File_Exist(PathOf(name))) << name;
    Answer("save", PathOf("f.bas"));
    click(Main.MenueFileExportROCAL, "Yes");
    EXPECT_EQ(Contents(PathOf("f.bas")), RocalText());
    Answer("save", PathOf("f.rf"));
    AnswerNames("a", "b", "c");
    click(Main.MenueFileExportRobCad, "Yes");
    EXPECT_EQ(Contents(PathOf("f.rf")), RobCadText("a", "b", "c"));
    click(Main.MenueOnlyMCStoTilde, "Yes");
    EXPECT_EQ(Contents(PathOf("cell.txt")), OnlyMcsText());
}

TEST_F(Exports, AResultThatCeasesToConvergeDuringTheDialogsIsAskedFor) {
    Headless.OnQuestion = [](const DialogShown& dialog) -> std::optional<std::string> {
        if (dialog.Kind == "message") return "No";
        Job.Unconverged = kTrue;
        return "x";
    };
    UserClick(Main.MenueFileExportRobCad);
    EXPECT_FALSE(File_Exist("x.rf"));
    Headless.OnQuestion = nullptr;
}
