// Every entry of every menu and every tool bar key of the main window does something that a user sees.
#include <algorithm>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "analysis/form_main_sheet.h"
#include "bundle/network.h"
#include "cli/headless.h"
#include "cli/record_json.h"
#include "core/changes.h"
#include "core/controller.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/platform.h"
#include "core/settings.h"
#include "engine/form_trafo_berechnung.h"
#include "graphics/analyse_mode.h"
#include "graphics/drawing.h"
#include "graphics/flags.h"
#include "graphics/form_main_graphics.h"
#include "graphics/form_save_view.h"
#include "graphics/graphics_refresh.h"
#include "graphics/picking.h"
#include "graphics/scene.h"
#include "graphics/screen_events.h"
#include "graphics/screen_window.h"
#include "import/form_input_files.h"
#include "paint/picture.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

const ControlEntry* EntryOf(std::string_view name) {
    for (const ControlEntry& entry : FormMain_Entry.Controls)
        if (entry.Name == name) return &entry;
    return nullptr;
}

bool IsCommand(const ControlEntry& entry) {
    const ControlKind kind = entry.Place->Kind;
    if (kind == ControlKind::ToolButton || kind == ControlKind::Combo) return true;
    if (kind != ControlKind::Menu) return false;
    return std::none_of(FormMain_Entry.Controls.begin(), FormMain_Entry.Controls.end(),
                        [&entry](const ControlEntry& other) {
                            return other.Parent != nullptr && std::string_view(other.Parent) == entry.Name;
                        });
}

std::vector<std::string> Commands() {
    std::vector<std::string> names;
    for (const ControlEntry& entry : FormMain_Entry.Controls) {
        // The menu of a picture has entries that stand elsewhere too.
        if (IsCommand(entry) && entry.Place != &Main.MenuPicture) names.emplace_back(entry.Name);
    }
    return names;
}

// Can a user reach it: is it there and enabled, and all that it stands in?
bool IsWithinReach(const ControlEntry& entry) {
    if (!entry.Place->Enabled || !entry.Place->Visible) return false;
    return entry.Parent == nullptr || IsWithinReach(*EntryOf(entry.Parent));
}

class EveryCommand : public Program {
protected:
    // A program in the middle of its work: a job of four pairs, saved and calculated, a network in memory,
    // and two graphics windows with a saved view, steps to both sides, vectors and lines.
    EveryCommand() {
        ExpectUnanswered();
        FillSurface = FillSurfaceWithPicture;
        StartUp("");
        Import();
        UserClick(Main.MenuTransformationCalculation);
        UserClick(TrafoWindow.BtnCalculate);
        Bundle.nStations = 1;
        Headless.Answers["save"].push_back(PathOf("job.cvn"));
        UserClick(Main.MenuFileSave);
        for (std::size_t i = 1; i <= 4; ++i) ::Run.LastFile[i] = PathOf("job.cvn");
        UserClick(Main.MenueGraphics);
        UserClick(Main.MenueGraphics);
        ScreenWindow& window = *findLFDFORM();
        for (ScreenWindow* other : {Screens().Open.front().get(), &window}) other->BindingsShown = false;
        Headless.OnForm = [](const std::string&) {
            UserSetText(SaveViewWindow.TextNewName, "view " + std::to_string(Job.nSavedViews + 1));
            UserClick(SaveViewWindow.BtnOK);
        };
        UserClick(Main.MenüViewSaveView);
        UserClick(Main.MenüViewSaveView);
        UserClick(Main.MenüAnsichtVektorenVektorModeActive);
        UserClick(Main.MenüGraphicsLinesLineModeActive);
        UserClick(Main.MenüAnsichtIsometricView);
        UserClick(Main.MenüViewLastView);
        ProgrammLogik();
        ::Run.JobDirty = kFalse;
        Headless.Answers.clear();
        Headless.Dialogs.clear();
        EXPECT_EQ(Screens().Open.size(), 2U);
        EXPECT_TRUE(IsTrue(::Run.TrafoValid));
    }
    ~EveryCommand() override {
        Headless.OnYield = nullptr;
        CloseAllGraphicsWindows();
        FillSurface = nullptr;
    }

    void Import() {
        UserClick(Main.MenuFileInputFiles);
        UserSetText(InputFiles.TextNameMCS,
                    Write("start.txt", "A;0;0;1\nB;1000;0;0\nC;0;2000;0\nD;0;0;3000\n"));
        UserSetText(InputFiles.TextNameOCS,
                    Write("target.txt", "A;5;6;7\nB;1005;6;7\nC;5;2006;7\nD;5;6;3007\n"));
        UserClick(InputFiles.BtnOK);
        ASSERT_EQ(Job.Pairs(), 4);
    }

    // What a user sees, hears of and finds on the disk, but for the control that is just worked: that it
    // stands otherwise than before is no effect. Messages of one button are none either.
    std::string All(const Control* worked = nullptr) const {
        std::ostringstream all;
        for (const WindowEntry* window : AllWindows())
            all << window->Name << ' ' << window->State->Loaded << ' ' << window->State->Asked << ' '
                << window->State->Caption << '\n';
        for (const ControlEntry& entry : FormMain_Entry.Controls) {
            const Control& c = *entry.Place;
            if (worked != nullptr && (&c == worked || SameCommand(entry, *worked))) continue;
            all << entry.Name << ' ' << c.Text << ' ' << c.Value << c.Checked << c.Enabled << c.Visible
                << c.Items.size() << ' ' << c.Index << '\n';
        }
        const auto questions = std::count_if(Headless.Dialogs.begin(), Headless.Dialogs.end(),
                                             [](const DialogShown& shown) { return !IsRefusal(shown); });
        all << questions << ' ' << Headless.Shell.size() << ' ' << Headless.Clipboard << ' '
            << Headless.ClipboardPicture.Width << '\n';
        for (const auto& window : Screens().Open)
            all << window->Id << ' ' << ScreenToJson(window->State).dump() << ' ' << window->SetLine
                << window->DeleteLine << window->AnalyseMode << window->BindingsShown << ' '
                << static_cast<int>(window->Pointer) << ' ' << window->DynamicFlag.Row << '\n';
        all << analysed_ << Scene.RotateAboutArmed << ::Run.JobDirty << ::Run.JobDataValid << ' '
            << ::Run.JobFilePath << '\n';
        for (const auto& file : std::filesystem::recursive_directory_iterator(folder_))
            if (file.is_regular_file())
                all << file.path().string() << ' ' << Contents(file.path().string()) << '\n';
        return all.str();
    }

    bool analysed_ = false;  // the loop of the analyse mode has run

    static void MouseOverFirstPoint() {
        ScreenWindow& window = *findLFDFORM();
        PixelsForWindow(window);
        MouseEvent move;
        move.X = Scene.PixelX[1];
        move.Y = Scene.PixelY[1];
        ScreenPixel_MouseMove(window, move);
    }
    // A key of a tool bar and its entry do the same and are ticked together.
    static bool SameCommand(const ControlEntry& entry, const Control& worked) {
        return entry.On.Click != nullptr && worked.Entry != nullptr &&
               entry.On.Click == worked.Entry->On.Click;
    }
    static bool IsRefusal(const DialogShown& shown) {
        return shown.Kind == "message" && shown.Buttons.size() <= 1 &&
               !shown.Text.starts_with("Angle and Distance Output will always be made in Unit");
    }

    // What has to be there for one command alone.
    void Prepare(const std::string& name) {
        if (name == "MenuFileSave" || name == "Toolbar2.FileSave") ::Run.JobDirty = kTrue;
        if (name == "MenuEditCopy" || name == "Toolbar1.Copy") {
            UserClick(Main.MenuVievMainSheet);
            Headless.Clipboard.clear();
        }
        if (name.starts_with("MenuFahne") && name != "MenuFahneEdit") {
            MenüGlobalFlagsMode_Click();
            ScreenWindow& window = *findLFDFORM();
            window.State.ActiveFlag = static_cast<std::int16_t>(AddFlag(window, 1, 10, 10));
            ShowFlagCommands();
            Stelle_Grafik_dar(window);
            Headless.Clipboard.clear();
        }
        if (name == "MenuEditUndo" || name == "MenuEditRedo") {
            Changed(What::Choice);  // from here on steps are kept
            Job.UseFlags[1] = 0;
            Changed(What::Use);
            if (name == "MenuEditRedo") UserClick(Main.MenuEditUndo);
        }
        if (name == "MenuEditGraphData") {
            UserClick(Main.MenuVievMainSheet);
            UserSelectCells(MainSheetWindow.MSFlexGrid1, {2, 4, 2, 4});
        }
        if (name == "MenüAnsichtAnpassen" || name == "ToolbarGraphics.ZoomAll")
            findLFDFORM()->State.BildFaktor *= 2;
        if (name == "MenueHelpSpezial")
            Headless.Clipboard =
                "A\t0\t0\t0\tA\t5\t6\t7\r\nB\t1\t0\t0\tB\t6\t6\t7\r\nC\t0\t1\t0\tC\t5\t7\t7\r\n";
        // The loop of the mode ends by its own key.
        Headless.OnYield = [this] {
            ScreenWindow* window = findLFDFORM();
            if (window != nullptr && window->AnalyseMode) analysed_ = true;
            if (window != nullptr && window->AnalyseMode && Headless.Yields % 5 == 0)
                ToggleAnalyseMode(*window);
        };
    }
};

class Command : public EveryCommand, public testing::WithParamInterface<std::string> {};

std::string TestName(const testing::TestParamInfo<std::string>& name) {
    std::string plain;
    for (const char c : name.param) {
        if (c == '.') plain += '_';
        if (std::isalnum(static_cast<unsigned char>(c)) != 0 && static_cast<unsigned char>(c) < 0x80)
            plain += c;
    }
    return plain;
}

}  // namespace

TEST_P(Command, IsWithinReachAndHasAnEffect) {
    const ControlEntry& entry = *EntryOf(GetParam());
    Prepare(GetParam());
    ASSERT_TRUE(IsWithinReach(entry));
    Control& control = *entry.Place;
    // The analyse mode reads this tick and nothing else; its own tests show what comes of it.
    const bool tickIsAll = GetParam() == "MenüAnsichtAnalyseKeepPoints";
    const Control* const worked = tickIsAll ? nullptr : &control;
    const std::string before = All(worked);
    const std::size_t dialogs = Headless.Dialogs.size();
    if (control.Kind == ControlKind::Combo) {
        ASSERT_GE(control.Items.size(), 2U);
        UserSetIndex(control, 1 - control.Index);
    } else {
        ASSERT_NE(entry.On.Click, nullptr);
        UserClick(control);
    }
    if (GetParam() == "MenüAnsichtDynamicFlag") MouseOverFirstPoint();
    EXPECT_TRUE(All(worked) != before);
    EXPECT_EQ(::Run.LastPlatformError, "");
    for (std::size_t i = dialogs; i < Headless.Dialogs.size(); ++i)
        EXPECT_FALSE(IsRefusal(Headless.Dialogs[i])) << Headless.Dialogs[i].Text;
}

INSTANTIATE_TEST_SUITE_P(OfMenusAndToolBars, Command, testing::ValuesIn(Commands()), TestName);

TEST_F(EveryCommand, AreManyAndEachEntryOfAToolBarAndMenuIsAmongThem) {
    const std::vector<std::string> names = Commands();
    EXPECT_GE(names.size(), 80U);
    for (const char* name : {"MenuFileNew", "MenueGraphics", "MenüGraphicsLinesSetLines", "MenueHelpSpezial",
                             "MenüGlobalGeneralGraphicsSettings", "Toolbar1.Copy", "ComboSaveView"})
        EXPECT_NE(std::find(names.begin(), names.end(), name), names.end()) << name;
}

TEST_F(EveryCommand, NothingSeenChangesByItself) {
    Prepare("");
    const std::string before = All();
    YieldToEvents();
    ProgrammLogik();
    EXPECT_EQ(All(), before);
}

TEST_F(EveryCommand, ThoseOfAGraphicsWindowAreOutOfReachWithoutOne) {
    const std::vector<std::string> names = {"MenüAnsichtAnpassen",
                                            "MenüAnsichtcenter",
                                            "MenüAnsichtTopview",
                                            "MenüAnsichtSideView",
                                            "MenüAnsichtFrontView",
                                            "MenüAnsichtIsometricView",
                                            "MenüAnsichtPunkteBigger",
                                            "MenüAnsichtPunkteSmaller",
                                            "MenüAnsichtPunkteSmallPoints",
                                            "MenüAnsichtVektorenVektorModeActive",
                                            "MenüAnsichtVektorenLonger",
                                            "MenüAnsichtVektorenShorter",
                                            "MenüAnsichtToleranzenColorbar",
                                            "MenüAnsichtToleranzenEinstellungen",
                                            "MenüGlobalGeneralGraphicsSettings",
                                            "MenüGrafikBlackPlane",
                                            "MenüGlobalRotateAbout",
                                            "MenüGlobalFlagsMode",
                                            "MenüAnsichtDynamicFlag",
                                            "MenüGraphicsLinesLineModeActive",
                                            "MenüGraphicsLinesSetLines",
                                            "MenüGraphicsLinesDeleteLines",
                                            "MenüViewSaveView",
                                            "MenüViewDeleteView",
                                            "MenüViewLastView",
                                            "MenüViewNextView",
                                            "MenüGraphicsPrint"};
    for (const std::string& name : names) EXPECT_TRUE(IsWithinReach(*EntryOf(name))) << name;
    CloseAllGraphicsWindows();
    for (const std::string& name : names) EXPECT_FALSE(IsWithinReach(*EntryOf(name))) << name;
    ProgrammLogik();
    for (const std::string& name : names) EXPECT_FALSE(IsWithinReach(*EntryOf(name))) << name;
    UserClick(Main.MenueGraphics);
    for (const char* name : {"MenüAnsichtAnpassen", "MenüGlobalGeneralGraphicsSettings"})
        EXPECT_TRUE(IsWithinReach(*EntryOf(name))) << name;
}
