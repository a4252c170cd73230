// Start, end and the enabled state of all commands.
#include "core/controller.h"

#include <array>
#include <string_view>

#include "core/changes.h"
#include "core/desktop_defaults.h"
#include "core/file_state.h"
#include "core/files.h"
#include "core/form_main.h"
#include "core/form_start.h"
#include "core/job.h"
#include "core/job_commands.h"
#include "core/job_file.h"
#include "core/notes.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/system_files.h"
#include "core/text.h"
#include "core/units.h"

namespace corvinade::core {

namespace {

constexpr std::string_view kTitle = "Corvinade Version ";
constexpr int kLongestTitle = 160;

// The settings file's place: in the user's folder, or beside the program on systems without one.
void FindSettingsFile() {
    const std::string system = OperatingSystemName();
    const bool hasUserFolder = system.size() >= 13 && system.compare(8, 5, "Vista") == 0;
    if (hasUserFolder) {
        const std::string appdata = EnvironmentVariable("appdata").value_or("");
        const std::string folder = JoinPath(appdata.empty() ? UserSettingsFolder() : appdata, "Corvinade");
        Run.SettingsFilePath = JoinPath(folder, "Corvinade.ini");
        if (FileIsThere(Run.SettingsFilePath)) return;
        if (!FolderIsThere(folder)) CreateFolder(folder);
    } else {
        Run.SettingsFilePath = JoinPath(ProgramFolder(), "Corvinade.ini");
        if (FileIsThere(Run.SettingsFilePath)) return;
    }
    const FolderLock lock(Pfad(Run.SettingsFilePath));
    if (!FileIsThere(Run.SettingsFilePath)) IniDateiAnlegen();  // else another program was quicker
}

// Reads the settings file. What it cannot give, because it is missing, unreadable or holds a text where a
// number must stand, has the default of a new file; what stands before such a text is kept.
void ReadSettings() {
    const auto takeDefaults = [] { ReadSettingsText(DefaultSettingsText(), Run.SettingsFilePath); };
    try {
        if (!FileIsThere(Run.SettingsFilePath)) return takeDefaults();
        IniLesen();
    } catch (const PlatformError&) {
        takeDefaults();
        try {
            IniLesen();
        } catch (const PlatformError&) {  // the same as the one that is passed on
        }
        throw;
    }
}

// Units of the settings that are none: those of a new job stand in their place, and the user is told.
void CheckSettingsUnits() {
    std::string wrong;
    const auto check = [&wrong](std::span<const UnitRow> units, std::string& name) {
        if (IsUnitName(units, name)) return;
        if (wrong.empty()) wrong = NoUnitName(units, name);
        name.clear();  // and a new job takes its own
    };
    check(LengthUnits(), Job.LengthUnitName);
    check(AngleUnits(), Job.AngleUnitName);
    if (!wrong.empty()) throw PlatformError{"\"" + Run.SettingsFilePath + "\": " + wrong};
}

// The last `count` characters of a UTF-8 text.
std::string LastCharacters(const std::string& text, int count) {
    std::size_t place = text.size();
    while (count > 0 && place > 0) {
        --place;
        if ((static_cast<unsigned char>(text[place]) & 0xC0U) != 0x80) --count;
    }
    return text.substr(place);
}

struct ToolbarButtons {
    std::string_view Bar;
    template <class Action>
    void ForEach(int first, Action action) const {
        int number = 0;
        for (const ControlEntry& entry : FormMain_Entry.Controls) {
            const std::string_view name = entry.Name;
            const bool ofBar = entry.Place->Kind == ControlKind::ToolButton && name.size() > Bar.size() &&
                               name.starts_with(Bar) && name[Bar.size()] == '.';
            if (ofBar && ++number >= first) action(*entry.Place);
        }
    }
};

// What follows from data, result and the presence of graphics windows.
void EnableCommands() {
    const bool data = IsTrue(Run.JobDataValid);
    const bool result = IsTrue(Run.TrafoValid);
    for (Control* command :
         {&Main.MenueGraphics, &Main.MenüGlobalGraphics, &Main.MenuTransformation, &Main.MenuEdit})
        command->Enabled = data;
    Main.MenueFileExport.Enabled = result;
    Main.MenueFileExport.Text = "Export";
    Main.Toolbar2_FileNew.Enabled = Main.MenuFileNew.Enabled;
    Main.Toolbar2_FileOpen.Enabled = Main.MenuFileOpen.Enabled;
    Main.Toolbar2_FileSave.Enabled = Main.MenuFileSave.Enabled;
    if (!Run.GraphicsWindowSeen) Main.MenueGraphicsWindow.Enabled = false;

    const bool graphics = Main.MenueGraphicsWindow.Enabled;
    for (Control* command : {&Main.MenüAnsichtAnpassen,
                             &Main.MenüAnsichtcenter,
                             &Main.MenüGrafikBlackPlane,
                             &Main.MenüGraphicsPrint,
                             &Main.MenuGraphicsDistance,
                             &Main.MenuGraphicsWhite,
                             &Main.MenüAnsichtTopview,
                             &Main.MenüAnsichtSideView,
                             &Main.MenüAnsichtFrontView,
                             &Main.MenüAnsichtIsometricView,
                             &Main.MenüAnsichtPunkte,
                             &Main.MenüAnsichtVektoren,
                             &Main.MenüAnsichtAnalyse,
                             &Main.MenüAnsichtToleranzen,
                             &Main.MenüGlobalRotateAbout,
                             &Main.MenüGlobalFlagsMode,
                             &Main.MenüAnsichtDynamicFlag,
                             &Main.MenüGlobalGeneralGraphicsSettings,
                             &Main.MenüViewS,
                             &Main.MenüGraphicsLines,
                             &Main.MenuHelpBindings})
        command->Enabled = graphics;
    Main.ToolbarGraphics.Enabled = Main.MenueGraphics.Enabled;
    const auto enable = [graphics](Control& button) { button.Enabled = graphics; };
    ToolbarButtons{"ToolbarGraphics"}.ForEach(2, enable);
    ToolbarButtons{"ToolbarSaveView"}.ForEach(1, enable);
    ToolbarButtons{"ToolbarLines"}.ForEach(1, enable);
    Main.ToolbarSaveView.Enabled = graphics;
    Main.ToolbarLines.Enabled = graphics;
    for (Control* shown : {&Main.ComboSaveView, &Main.MenüViewLastView, &Main.MenüViewNextView})
        shown->Visible = graphics;
}

void ShowState(What changed) {
    const std::array<Control*, 4> recent = {&Main.MenüDateiAlt1, &Main.MenüDateiAlt2, &Main.MenüDateiAlt3,
                                            &Main.MenüDateiAlt4};
    for (std::size_t i = 0; i < recent.size(); ++i)
        recent[i]->Text = "&" + std::to_string(i + 1) + " " + Run.LastFile[i + 1];
    Main.Window.Caption = TitleText(Run.JobFilePath);
    EnableCommands();
    FollowOnStartPage(Share(changed, What::Points | What::OpenedJob));
}

constexpr ChangeRow kChanges[] = {
    {kStateOfJob, Turn::Commands, ShowState},
};

}  // namespace

std::string ProgramVersion() {
    return CORVINADE_VERSION;
}

std::string SettingsFolder() {
    return Pfad(Run.SettingsFilePath);
}

std::string TitleText(const std::string& path) {
    const std::string rest = ProgramVersion() + " | " + path;
    if (static_cast<int>(kTitle.size()) + CharacterCount(rest) <= kLongestTitle)
        return std::string(kTitle) + rest;
    return std::string(kTitle) + "..." +
           LastCharacters(rest, kLongestTitle - 3 - static_cast<int>(kTitle.size()));
}

// Long work writes a text at every step, so a panel is found by its number.
void SetStatus(int panel, const std::string& text) {
    const std::array<Control*, kStatusPanels> panels = {
        &Main.StatusBar_1, &Main.StatusBar_2, &Main.StatusBar_3, &Main.StatusBar_4, &Main.StatusBar_5,
        &Main.StatusBar_6, &Main.StatusBar_7, &Main.StatusBar_8, &Main.StatusBar_9};
    if (panel >= 1 && panel <= kStatusPanels) panels[static_cast<std::size_t>(panel - 1)]->Text = text;
}

void StartUp(const std::string& commandLine) {
    // Each step is an event of its own: settings that cannot be written or read are told, and the
    // program starts all the same, with the defaults in their place.
    ShowWindow("FormMain");
    if (!Dispatch(FindSettingsFile)) Settings.RefusalTold = true;
    Dispatch(ReadSettings);
    Dispatch(CheckSettingsUnits);
    Dispatch(TakeDesktopDefaults);
    ShowStartScreen();
    Dispatch(Initialisieren);
    if (!commandLine.empty())
        Dispatch([&commandLine] {
            const std::string rest = LastCharacters(commandLine, CharacterCount(commandLine) - 1);
            const std::size_t last = LastCharacters(rest, 1).size();
            Run.JobFilePath = rest.substr(0, rest.size() - last);
            OpenFile(Run.JobFilePath);
        });
    Dispatch(ShowStartPage);
}

void Initialisieren() {
    if (Run.JobFilePath.empty()) Run.JobFilePath = kDefaultJobPath;
    Main.Window.Caption = TitleText(Run.JobFilePath);
    Run.ColorBarOpen = kFalse;
    Run.PointCloud = false;
    Run.TrafoValid = kFalse;
    if (Job.LengthUnitName.empty()) {
        Job.LengthUnitName = "millimeter";
        Job.LengthDigits = 3;
    }
    if (Job.AngleUnitName.empty()) {
        Job.AngleUnitName = "degree";
        Job.AngleDigits = 4;
    }
    RhoFestlegung();
    Job.DirectionMCStoOCS = kTrue;
    // The points stay, and are none of a job any more.
    Job.Start.CountOnly(0);
    Job.Target.CountOnly(0);
    Job.SetPairs(0);
    Run.JobDataValid = kFalse;
    Run.TrafoValid = Run.CalcDone = kFalse;
    ++Run.JobGeneration;
    ForgetNotes();
    ProgrammLogik();
}

void ProgrammLogik() {
    Changed(What::State);
    ShowChanges();
}

std::span<const ChangeRow> CoreChanges() {
    return kChanges;
}

void CloseAllChildForms() {
    ShowNow(What::NoPictures);
    for (const WindowEntry* window : AllWindows())
        if (window != &FormMain_Entry) UnloadWindow(window->Name);
}

void FormMain::Form_Unload() {
    if (!MayGiveUpJob()) throw PlatformError{};  // the window stays, and nothing is to be told of it
    CloseAllChildForms();
    ShowNow(What::ProgramEnd);
}

void CloseProgram() {
    UnloadWindow("FormMain");
}

}  // namespace corvinade::core
