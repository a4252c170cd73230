// The dialog of the switches that hold for all graphics windows, and what each of them does in the picture.
#include "graphics/form_graphics_options.h"

#include <algorithm>
#include <functional>

#include "cli/headless.h"
#include "core/controller.h"
#include "core/files.h"
#include "core/form_main.h"
#include "core/settings.h"
#include "engine/selection.h"
#include "graphics/drawing_job.h"
#include "graphics/graphics_refresh.h"

using namespace corvinade;

namespace {

class GraphicsOptions : public Drawing {
protected:
    // Three pairs in the plane z = 0 and a fourth 50 mm above it, in a view that looks down at them; the last
    // pair is not in use. The third is out of tolerance.
    GraphicsOptions() {
        ShowWindow("FormMain");
        ::Run.SettingsFilePath = PathOf("settings.ini");
        IniDateiAnlegen();
        IniLesen();
        FillJob({{20, 30, 0, 0.5, 0, 0},
                 {120, 30, 0, 0, 0.5, 0},
                 {20, 130, 0, 5, 0, 0},
                 {120, 130, 50, 0, 0, 0.25}});
        for (const std::size_t k : {10U, 11U, 12U}) Job.UseFlags[k] = 0;
        AddStartOnly("S", 220, 30);
        AddTargetOnly("T", 220, 130);
        first_ = &OpenBare();
        ShowWindow("FormGraphicsOptions");
    }
    ~GraphicsOptions() override { CloseAllGraphicsWindows(); }

    static ScreenWindow& OpenBare() {
        ScreenWindow& window = Open(FlatView());
        window.State.Max = 1;
        window.State.AnzKlassenPos = 10;
        return window;
    }
    static void AddStartOnly(const std::string& name, double x, double y) {
        for (PointSet* points : {&Job.Start, &Job.Transformed}) points->Add(name, x, y, 0);
    }
    static void AddTargetOnly(const std::string& name, double x, double y) { Job.Target.Add(name, x, y, 0); }

    static Control& C(const std::string& name) {
        Control* control = FindControl(FormGraphicsOptions_Entry, name);
        EXPECT_NE(control, nullptr) << name;
        static Control none;
        return control != nullptr ? *control : none;
    }
    static void Set(const std::string& name, int value) { UserSetValue(C(name), value); }
    // Turns a switch and applies it.
    void Turn(const std::string& name, int value) {
        Set(name, value);
        RecordingOf(*first_).Operations.clear();
        UserClick(C("BtnApply"));
    }
    static std::string PlottedRows() {
        std::string rows;
        for (int row = 1; row <= Scene.Rows; ++row)
            rows += Scene.Points[kScenePlotted][static_cast<std::size_t>(row)] == 1 ? '1' : '0';
        return rows;
    }

    ScreenWindow* first_ = nullptr;
};

struct SwitchRow {
    const char* Control;
    const char* Key;
    Flag& Place;
};
const SwitchRow kRows[] = {
    {"CheckPlotOCSIdent", "ViewAllOCS", Job.ViewAllOCS},
    {"CheckPlotMCSIdent", "ViewAllMCS", Job.ViewAllMCS},
    {"CheckPlotOnlyOCS", "ViewAllonlyOCS", Job.ViewAllonlyOCS},
    {"CheckPlotOnlyMCS", "ViewAllonlyMCS", Job.ViewAllonlyMCS},
    {"CheckViewOnlyTrafo", "ViewOnlyIfTrafo", Settings.ViewOnlyIfTrafo},
    {"CheckViewOnlyNotTrafo", "ViewOnlyIfNotTrafo", Settings.ViewOnlyIfNotTrafo},
    {"CheckDontViewOOT", "DontViewOOT", Settings.DontViewOOT},
    {"CheckShowPointsBigger", "ShowPointsBigger", Settings.ShowPointsBigger},
    {"CheckShowCoordinateSystemLabels", "ShowCoordinateSystemLabels", Settings.ShowCoordinateSystemLabels},
    {"CheckShowPointNames", "ShowPointNames", Settings.ShowPointNames},
    {"CheckShowColorBar", "ShowColorBar", Settings.ShowColorBar},
    {"CheckVectorThick", "VectorThick", Settings.VectorThick},
    {"CheckVectorQuat", "VectorQuat", Settings.VectorQuat},
    {"CheckShowRDistVec", "ShowRVec", Settings.ShowRVec},
};

}  // namespace

// --- The dialog -------------------------------------------------------------------------------------------

TEST_F(GraphicsOptions, IsOpenedByItsEntryWhichNeedsAGraphicsWindow) {
    UserClose(FormGraphicsOptions_Entry);
    ProgrammLogik();
    EXPECT_TRUE(Main.MenüGlobalGeneralGraphicsSettings.Enabled);
    UserClick(Main.MenüGlobalGeneralGraphicsSettings);
    EXPECT_TRUE(IsLoaded("FormGraphicsOptions"));
    CloseScreenWindow(*first_);
    EXPECT_FALSE(Main.MenüGlobalGeneralGraphicsSettings.Enabled);
    EXPECT_FALSE(IsLoaded("FormGraphicsOptions"));
}

TEST_F(GraphicsOptions, EveryControlTakesTheValueOfItsSwitch) {
    for (const bool on : {true, false})
        for (const SwitchRow& row : kRows) {
            UserClose(FormGraphicsOptions_Entry);
            for (const SwitchRow& other : kRows) other.Place = ToFlag(!on);
            row.Place = ToFlag(on);
            ShowWindow("FormGraphicsOptions");
            for (const SwitchRow& other : kRows)
                EXPECT_EQ(C(other.Control).Value, (&other == &row) == on ? 1 : 0) << other.Key;
        }
    for (const Flag direction : {kTrue, kFalse}) {
        UserClose(FormGraphicsOptions_Entry);
        Settings.DevVecDirection = direction;
        ShowWindow("FormGraphicsOptions");
        EXPECT_EQ(C("OptionVecDeviation").Value, IsTrue(direction) ? 1 : 0);
        EXPECT_EQ(C("OptionVecCorrection").Value, IsTrue(direction) ? 0 : 1);
    }
    EXPECT_EQ(C("CheckAutoUpdate").Value, 0);
}

TEST_F(GraphicsOptions, EverySwitchIsAppliedAndWrittenUnderItsKey) {
    for (const SwitchRow& row : kRows)
        for (const int value : {1, 0, 1}) {
            Set(row.Control, value);
            UserClick(C("BtnApply"));
            EXPECT_EQ(row.Place, value == 1 ? kTrue : kFalse) << row.Key;
            EXPECT_EQ(IniWertLesen(row.Key), value == 1 ? "True" : "False") << row.Key;
        }
    Set("OptionVecCorrection", 1);
    UserClick(C("BtnApply"));
    EXPECT_EQ(Settings.DevVecDirection, kFalse);
    EXPECT_EQ(IniWertLesen("DevVecDirection"), "False");
    Set("OptionVecDeviation", 1);
    UserClick(C("BtnApply"));
    EXPECT_EQ(IniWertLesen("DevVecDirection"), "True");
    EXPECT_TRUE(IsLoaded("FormGraphicsOptions"));
}

TEST_F(GraphicsOptions, ItsKeysStandInTheirSectionAndTheNextStartTakesThem) {
    for (const SwitchRow& row : kRows) Set(row.Control, 1);
    Set("OptionVecCorrection", 1);
    UserClick(C("BtnOK"));
    EXPECT_FALSE(IsLoaded("FormGraphicsOptions"));
    std::string text = Contents(::Run.SettingsFilePath);
    const std::size_t begin = text.find("[GraphicsSettings]");
    ASSERT_NE(begin, std::string::npos);
    text = text.substr(begin, text.find("\n[", begin) - begin);
    for (const SwitchRow& row : kRows) {
        EXPECT_NE(text.find(std::string(row.Key) + "=True"), std::string::npos) << row.Key;
        row.Place = kFalse;
    }
    Settings.DevVecDirection = kTrue;
    IniLesen();
    for (const SwitchRow& row : kRows) EXPECT_EQ(row.Place, kTrue) << row.Key;
    EXPECT_EQ(Settings.DevVecDirection, kFalse);
}

TEST_F(GraphicsOptions, CancelAndEscapeApplyNothing) {
    const std::string before = Contents(::Run.SettingsFilePath);
    const std::uint64_t paints = first_->PaintCount;
    Set("CheckShowPointNames", 1);
    UserClick(C("BtnCancel"));
    EXPECT_FALSE(IsLoaded("FormGraphicsOptions"));
    ShowWindow("FormGraphicsOptions");
    EXPECT_EQ(C("CheckShowPointNames").Value, 0);
    Set("OptionVecCorrection", 1);
    UserEscape(FormGraphicsOptions_Entry);
    EXPECT_FALSE(IsLoaded("FormGraphicsOptions"));
    EXPECT_EQ(Settings.ShowPointNames, kFalse);
    EXPECT_EQ(Settings.DevVecDirection, kTrue);
    EXPECT_EQ(first_->PaintCount, paints);
    for (const char* key : {"ShowPointNames", "DevVecDirection"})
        EXPECT_NE(before.find(std::string(key) + "=" + IniWertLesen(key)), std::string::npos);
}

TEST_F(GraphicsOptions, WithAutoUpdateOneClickPaintsEachWindowOnce) {
    ScreenWindow& second = OpenScreenWindow();
    const auto paints = [&] { return std::pair(first_->PaintCount, second.PaintCount); };
    auto painted = paints();
    const auto expectOnce = [&](const std::string& name) {
        ++painted.first;
        ++painted.second;
        EXPECT_EQ(paints(), painted) << name;
    };
    Set("CheckShowPointNames", 1);
    EXPECT_EQ(paints(), painted);  // still off
    Set("CheckAutoUpdate", 1);
    expectOnce("CheckAutoUpdate");
    EXPECT_EQ(Settings.ShowPointNames, kTrue);
    for (const SwitchRow& row : kRows) {
        const int turned = 1 - C(row.Control).Value;
        Set(row.Control, turned);
        expectOnce(row.Control);
        EXPECT_EQ(row.Place, ToFlag(turned == 1)) << row.Key;
        EXPECT_EQ(IniWertLesen(row.Key), turned == 1 ? "True" : "False");
    }
    for (const char* name : {"OptionVecCorrection", "OptionVecDeviation"}) {
        Set(name, 1);
        expectOnce(name);
        Set(name, 1);  // as it is already
        EXPECT_EQ(paints(), painted);
    }
    Set("CheckAutoUpdate", 0);
    EXPECT_EQ(paints(), painted);
}

TEST_F(GraphicsOptions, AJobWithoutDataIsNotPainted) {
    ::Run.JobDataValid = kFalse;
    const std::uint64_t paints = first_->PaintCount;
    Turn("CheckShowPointNames", 1);
    EXPECT_EQ(first_->PaintCount, paints);
    EXPECT_EQ(IniWertLesen("ShowPointNames"), "True");
}

TEST_F(GraphicsOptions, ASettingsFileThatRefusesIsToldAndTheWindowsArePaintedAllTheSame) {
    ::Run.SettingsFilePath = PathOf("gone/settings.ini");
    const std::uint64_t paints = first_->PaintCount;
    Turn("CheckShowPointNames", 1);
    ASSERT_EQ(Messages().size(), 1U);
    EXPECT_EQ(LastMessage().find("The settings could not be stored."), 0U);
    EXPECT_EQ(first_->PaintCount, paints + 1);
    EXPECT_NE(FindLabel(*first_, "P1"), nullptr);
}

TEST_F(GraphicsOptions, TheColourBarHasOneSwitchHereAndInTheMenu) {
    ProgrammLogik();
    EXPECT_TRUE(Main.MenüAnsichtToleranzenColorbar.Checked);
    Turn("CheckShowColorBar", 0);
    EXPECT_FALSE(Main.MenüAnsichtToleranzenColorbar.Checked);
    UserClick(Main.MenüAnsichtToleranzenColorbar);
    EXPECT_EQ(C("CheckShowColorBar").Value, 1);
    EXPECT_EQ(Settings.ShowColorBar, kTrue);
    UserClick(Main.MenüAnsichtToleranzenColorbar);
    EXPECT_EQ(C("CheckShowColorBar").Value, 0);
    UserClick(C("BtnOK"));
    EXPECT_FALSE(Main.MenüAnsichtToleranzenColorbar.Checked);
}

// --- What each switch does in the picture -----------------------------------------------------------------

TEST_F(GraphicsOptions, EachBlockOfPointsHasItsSwitch) {
    for (const SwitchRow& row : kRows) Set(row.Control, 0);
    Turn("CheckAutoUpdate", 1);
    EXPECT_EQ(PlottedRows(), "0000000000");
    const std::pair<const char*, const char*> rows[] = {{"CheckPlotMCSIdent", "1111000000"},
                                                        {"CheckPlotOCSIdent", "0000111100"},
                                                        {"CheckPlotOnlyMCS", "0000000010"},
                                                        {"CheckPlotOnlyOCS", "0000000001"}};
    for (const auto& [name, plotted] : rows) {
        Set(name, 1);
        EXPECT_EQ(PlottedRows(), plotted) << name;
        Set(name, 0);
        EXPECT_EQ(PlottedRows(), "0000000000");
    }
}

TEST_F(GraphicsOptions, UsedAndUnusedPointsAreFilteredWherePairsAreOff) {
    Set("CheckPlotOCSIdent", 0);
    Turn("CheckPlotMCSIdent", 0);
    EXPECT_EQ(PlottedRows(), "0000000011");
    Turn("CheckViewOnlyTrafo", 1);
    EXPECT_EQ(PlottedRows(), "1110000011");
    Set("CheckViewOnlyTrafo", 0);
    Turn("CheckViewOnlyNotTrafo", 1);
    EXPECT_EQ(PlottedRows(), "0001000011");
}

TEST_F(GraphicsOptions, PointsOutOfToleranceAreHidden) {
    Turn("CheckPlotOCSIdent", 0);
    EXPECT_EQ(PlottedRows(), "1111000011");
    Turn("CheckDontViewOOT", 1);
    EXPECT_EQ(PlottedRows(), "1101000011");
}

TEST_F(GraphicsOptions, NearPointsAreBiggerOnlyWhereAsked) {
    first_->State.BigNess = 6;
    const auto sizes = [this] {
        std::vector<float> radii;
        for (const Operation& disc : OperationsOf(*first_, Stroke::Circle)) radii.push_back(disc.Radius);
        std::sort(radii.begin(), radii.end());
        return std::pair(radii.front(), radii.back());
    };
    Turn("CheckShowPointsBigger", 0);
    EXPECT_EQ(sizes(), std::pair(3.0F, 3.0F));
    Turn("CheckShowPointsBigger", 1);
    EXPECT_NEAR(sizes().first, 1, 1e-5);  // the farthest, and the nearest: the size of 6 more
    EXPECT_NEAR(sizes().second, 7, 1e-5);
}

TEST_F(GraphicsOptions, PointNamesAndNamesOfTheAxesComeAndGo) {
    Turn("CheckShowPointNames", 1);
    for (const char* name : {"P1", "P4", "S", "T"}) EXPECT_NE(FindLabel(*first_, name), nullptr) << name;
    Turn("CheckShowPointNames", 0);
    EXPECT_EQ(FindLabel(*first_, "P1"), nullptr);
    Turn("CheckShowCoordinateSystemLabels", 1);
    for (const char* name : {"x OCS", "x MCS"}) EXPECT_NE(FindLabel(*first_, name), nullptr) << name;
    Turn("CheckShowCoordinateSystemLabels", 0);
    for (const char* name : {"x OCS", "x MCS"}) EXPECT_EQ(FindLabel(*first_, name), nullptr) << name;
}

TEST_F(GraphicsOptions, TheColourBarIsDrawnOrNot) {
    Turn("CheckShowColorBar", 0);
    const std::size_t without = OperationsOf(*first_, Stroke::Line).size();
    Turn("CheckShowColorBar", 1);
    EXPECT_GT(OperationsOf(*first_, Stroke::Line).size(), without + 100);  // line by line
}

TEST_F(GraphicsOptions, VectorsAreAsWideAsPointsWhereAsked) {
    first_->State.VectorMode = kTrue;
    first_->State.Vec_Maßstab = 20;
    first_->State.BigNess = 3;
    const auto wide = [this] {
        const auto lines = OperationsOf(*first_, Stroke::Line);
        return std::count_if(lines.begin(), lines.end(),
                             [](const Operation& line) { return line.Width == 3; });
    };
    Turn("CheckVectorThick", 0);
    const auto before = wide();
    Turn("CheckVectorThick", 1);
    EXPECT_EQ(wide(), before + 4);
}

TEST_F(GraphicsOptions, TheDirectionTurnsTheVectorsOfAllWindowsRound) {
    // The vector of the first pair is (0.5, 0, 0): from the start point to the target it runs back, at 20
    // pixels to the millimetre 10 pixels.
    ScreenWindow& second = OpenBare();
    const auto reach = [](ScreenWindow& window) {
        for (const Operation& line : OperationsOf(window, Stroke::Line))
            if (std::abs(line.X1 - 120.5F) < 0.01F && std::abs(line.Y1 - 130) < 0.01F &&
                std::abs(line.Y2 - 130) < 0.01F)
                return line.X2 - line.X1;
        return 0.0F;
    };
    for (ScreenWindow* window : {first_, &second}) {
        window->State.VectorMode = kTrue;
        window->State.Vec_Maßstab = 20;
        Paint(*window);
    }
    const float before = reach(*first_);
    EXPECT_NEAR(std::abs(before), 10, 1e-3);
    EXPECT_NEAR(reach(second), before, 1e-3);
    RecordingOf(second).Operations.clear();
    Turn("OptionVecCorrection", 1);
    EXPECT_NEAR(reach(*first_), -before, 1e-3);
    EXPECT_NEAR(reach(second), -before, 1e-3);
    RecordingOf(second).Operations.clear();
    Turn("OptionVecDeviation", 1);
    EXPECT_NEAR(reach(*first_), before, 1e-3);
    EXPECT_NEAR(reach(second), before, 1e-3);
}

TEST_F(GraphicsOptions, TheQuaternionAxisIsDrawnWhereThereIsAResult) {
    Job.RotXCopy = 0.3;
    ::Run.TrafoValid = kTrue;
    Turn("CheckVectorQuat", 0);
    const std::size_t without = OperationsOf(*first_, Stroke::Line).size();
    Turn("CheckVectorQuat", 1);
    EXPECT_GT(OperationsOf(*first_, Stroke::Line).size(), without);
    ::Run.TrafoValid = kFalse;
    Turn("CheckVectorQuat", 1);
    EXPECT_EQ(OperationsOf(*first_, Stroke::Line).size(), without);
}

TEST_F(GraphicsOptions, RVectorsAreDrawnWhereTheJobHasADistance) {
    for (auto* x : {&Job.RVecX, &Job.RVecY}) x->assign(Job.Start.Name.size(), 60.0);
    Job.RVecZ.assign(Job.Start.Name.size(), 5);
    Job.RDist = 80;
    Job.ParamText[kRDist] = "float";
    Turn("CheckShowRDistVec", 0);
    EXPECT_TRUE(LinesOf(*first_, QbColor(13)).empty());
    Turn("CheckShowRDistVec", 1);
    EXPECT_FALSE(LinesOf(*first_, QbColor(13)).empty());
}

// --- The font of the labels -------------------------------------------------------------------------------

TEST_F(GraphicsOptions, TheFontChooserBeginsWithTheFontOfTheActiveWindowAndServesAllLabels) {
    ScreenWindow& second = OpenScreenWindow();
    second.LabelFont = {.Name = "Serif", .Size = 14, .Bold = true};
    const std::uint64_t paints = first_->PaintCount;
    Headless.Answers["font"].push_back(R"({"name": "Sans", "size": 12.5, "italic": true})");
    UserClick(C("BtnLabelFont"));
    ASSERT_EQ(Headless.Dialogs.size(), 1U);
    EXPECT_EQ(Headless.Dialogs[0].Kind, "font");
    EXPECT_EQ(Headless.Dialogs[0].Default, R"({"bold":true,"italic":false,"name":"Serif","size":14.0})");
    const TextFont chosen = {.Name = "Sans", .Size = 12.5, .Bold = true, .Italic = true};
    EXPECT_EQ(first_->LabelFont, chosen);
    EXPECT_EQ(second.LabelFont, chosen);
    EXPECT_EQ(first_->PaintCount, paints);  // the next paint shows it
}

TEST_F(GraphicsOptions, WithAutoUpdateTheFontIsShownAtOnce) {
    Set("CheckAutoUpdate", 1);
    const std::uint64_t paints = first_->PaintCount;
    Headless.Answers["font"].push_back(R"({"size": 20})");
    UserClick(C("BtnLabelFont"));
    EXPECT_EQ(first_->LabelFont.Size, 20);
    EXPECT_EQ(first_->PaintCount, paints + 1);
    Headless.Answers["font"].emplace_back(std::nullopt);
    UserClick(C("BtnLabelFont"));
    EXPECT_EQ(first_->LabelFont.Size, 20);
    EXPECT_EQ(first_->PaintCount, paints + 1);
}

TEST_F(GraphicsOptions, AFontThatIsNoneIsNotTaken) {
    ExpectUnanswered();
    for (const char* answer : {R"({"size": 0})", R"({"size": 1e9})", R"({"name": 7})", "[]", "no font"}) {
        Headless.Answers["font"].push_back(answer);
        UserClick(C("BtnLabelFont"));
        EXPECT_EQ(first_->LabelFont, TextFont{}) << answer;
    }
    EXPECT_TRUE(Headless.Unanswered);
}

TEST_F(GraphicsOptions, ThePictureOnTheClipboardHasTheChosenFont) {
    first_->LabelFont.Size = 17;
    ActivateScreenWindow(*first_);
    // Without the labels' window the surface would keep what it had.
    first_->Screen.Font = {};
    MenüGraphicsPrint_Command();
    EXPECT_EQ(first_->Screen.Font.Size, 17);
}
