// Opening, closing and sizing of the graphics windows.
#include "graphics/screen_window.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string_view>
#include <utility>

#include "core/changes.h"
#include "core/controller.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/records.h"
#include "core/run.h"
#include "core/settings.h"
#include "engine/undo.h"
#include "fit/require.h"
#include "graphics/drawing.h"
#include "graphics/flags.h"
#include "graphics/form_black_plane.h"
#include "graphics/form_color_bar.h"
#include "graphics/form_edit_fahne.h"
#include "graphics/projection.h"
#include "graphics/scene.h"
#include "graphics/view_undo.h"
#include "graphics/view_values.h"
#include "graphics/views.h"

namespace corvinade::graphics {

namespace {

ScreensRecord screens;

constexpr int kLargestPicture = 16384;  // logical pixels along one side

void SizeSurface(ScreenWindow& window, int width, int height) {
    Surface& screen = window.Screen;
    if (screen.Close != nullptr) screen.Close(screen);
    screen = Surface{};
    screen.Width = std::clamp(width, 1, kLargestPicture);
    screen.Height = std::clamp(height, 1, kLargestPicture);
    if (window.Fill != nullptr) window.Fill(screen);
}

// Powers of ten beyond the type come to its end.
std::int32_t GridSpacing(const ScreenWindow& window) {
    const double spacing =
        std::pow(10.0, Int(std::log10(PictureWidth(window) / 7.0 / window.State.BildFaktor)));
    if (!(spacing > 1)) return 1;
    return spacing < 1e9 ? static_cast<std::int32_t>(spacing) : 1000000000;
}

// Copies the fields that stand in section "LocalGraphics" and pass `wanted`.
template <class Wanted>
void CopyLocalGraphics(const ScreenRecord& from, ScreenRecord& to, Wanted wanted) {
    for (const SettingEntry& entry : AllSettings()) {
        if (std::string_view(entry.Section) != "LocalGraphics" || !wanted(entry.Key)) continue;
        for (const ScreenField& field : ScreenFields())
            if (std::string_view(field.Name) == entry.Key)
                std::visit([&](auto place) { to.*place = from.*place; }, field.Place);
    }
}

void GiveStartValues(ScreenWindow& window) {
    ScreenRecord& state = window.State;
    SetViewAngles(window, kTopViewAngle, 0, 0);
    state.BildFaktor = 1;
    state.BildOffsetX = state.BildOffsetY = 0;
    state.BigNess = 2;
    state.AnzKlassenPos = state.AnzKlassenNeg = 10;
    state.showVeX = state.showVeY = state.showVeZ = kTrue;
    state.ColorBased.clear();
    state.CS_Type = "CART";
    state.SlabThickness = 100;
    Grafik_Festlegen(window);
    state.Max = LargestDeviationForLimits();
    state.Min = 0;
    state.Vec_Maßstab = StartVec_Maßstab(window);
    Anpassen(window);
    state.ADis = state.BDis = state.Cdis = GridSpacing(window);
    // What the settings file holds of earlier windows replaces the start values, key by key.
    CopyLocalGraphics(Settings.LocalGraphics, state,
                      [](const char* key) { return FindIniWert(key).has_value(); });
    MakeViewUsable(state);
}

// The number that a window bears, from 1: the lowest that is free.
int FreeNumber() {
    int number = 1;
    const auto taken = [&number](const auto& window) { return window->Number == number; };
    while (std::any_of(screens.Open.begin(), screens.Open.end(), taken)) ++number;
    return number;
}

// The dialogs that refer to the active window follow it.
void ShowInDialogs(const ScreenWindow& window) {
    ColorBar_ShowWindow(window);
    BlackPlane_ShowWindow(window);
    EditFahne_ShowWindow(window);
}

// Without a window no mode is on.
void ShowNoModes() {
    for (Control* entry :
         {&Main.MenüAnsichtVektorenVektorModeActive, &Main.MenüGlobalFlagsMode, &Main.MenüAnsichtDynamicFlag,
          &Main.MenüGlobalRotateAbout, &Main.MenüGraphicsLinesLineModeActive, &Main.MenüGraphicsLinesSetLines,
          &Main.MenüGraphicsLinesDeleteLines, &Main.MenüAnsichtAnalyseModeActive, &Main.MenuGraphicsDistance})
        entry->Checked = false;
    for (Control* button :
         {&Main.ToolbarGraphics_VectorMode, &Main.ToolbarGraphics_VectorLonger,
          &Main.ToolbarGraphics_VectorShorter, &Main.ToolbarGraphics_FlagMode,
          &Main.ToolbarGraphics_RotateAbout, &Main.ToolbarGraphics_AnalyseMode, &Main.ToolbarLines_LineMode,
          &Main.ToolbarLines_SetLines, &Main.ToolbarLines_DeleteLines})
        button->Value = 0;
    Scene.RotateAboutArmed = false;
}

// The graphics entries are there as long as a window is.
void GraphicsFormOpen() {
    Main.MenueGraphicsWindow.Enabled = !screens.Open.empty();
    Main.MenueGraphics.Checked = !screens.Open.empty();
    if (!screens.Open.empty()) Run.GraphicsWindowSeen = true;
    ProgrammLogik();
    ShowFlagCommands();
    ShowUndoState();
    if (screens.Open.empty()) ShowNoModes();
}

}  // namespace

ScreensRecord& Screens() {
    return screens;
}

PictureLook LookOf(const ScreenWindow& window) {
    if (window.OwnLook) return *window.OwnLook;
    return {.StartPoints = IsTrue(Job.ViewAllMCS),
            .Targets = IsTrue(Job.ViewAllOCS),
            .StartPointsAlone = IsTrue(Job.ViewAllonlyMCS),
            .TargetsAlone = IsTrue(Job.ViewAllonlyOCS),
            .PointNames = IsTrue(Settings.ShowPointNames),
            .ColorBar = IsTrue(Settings.ShowColorBar),
            .AxisLabels = IsTrue(Settings.ShowCoordinateSystemLabels),
            .NearPointsBigger = IsTrue(Settings.ShowPointsBigger)};
}

namespace {

ScreenWindow& Open(const PictureSetup& setup, const std::optional<PictureLook>& own) {
    auto opened = std::make_unique<ScreenWindow>();
    ScreenWindow& window = *opened;
    window.OwnLook = own;
    window.Fill = setup.Fill;
    window.Number = FreeNumber();
    window.Caption = window.Number == 1 ? "Screen - DEFAULT" : "Screen - " + std::to_string(window.Number);
    window.BackColor = setup.BackColor;
    window.Id = ++screens.Count;
    SizeSurface(window, setup.Width, setup.Height);
    screens.Open.push_back(std::move(opened));
    screens.Active = &window;
    Main.MenüAnsichtToleranzenColorbar.Checked = IsTrue(Settings.ShowColorBar);
    GiveStartValues(window);
    ShowInDialogs(window);
    Stelle_Grafik_dar(window);
    StoreScreenPropertiesToRecord(window);
    GraphicsFormOpen();
    return window;
}

}  // namespace

ScreenWindow& OpenScreenWindow() {
    return Open({.Width = screens.NewWidth,
                 .Height = screens.NewHeight,
                 .BackColor = Settings.ScreenBackColor,
                 .Fill = FillSurface},
                {});
}

ScreenWindow& OpenScreenWindow(const PictureSetup& setup) {
    return Open(setup, setup.Look);
}

void CloseScreenWindow(ScreenWindow& window) {
    const auto place = std::find_if(screens.Open.begin(), screens.Open.end(),
                                    [&window](const auto& open) { return open.get() == &window; });
    Require(place != screens.Open.end());
    if (!window.OwnLook) {
        CopyLocalGraphics(window.State, Settings.LocalGraphics, [](const char*) { return true; });
        screens.DefaultsTaken = true;
    }
    if (window.Screen.Close != nullptr) window.Screen.Close(window.Screen);
    if (Scene.PlottedFor == &window) Scene.PlottedFor = nullptr;
    ForgetUndoStepsOf(window.Id);
    // What closes is kept alive to the end of this call; the loops that draw it find it gone.
    const std::unique_ptr<ScreenWindow> closing = std::move(*place);
    screens.Open.erase(place);
    if (screens.Active == &window)
        screens.Active = screens.Open.empty() ? nullptr : screens.Open.back().get();
    if (screens.Active != nullptr)
        ShowInDialogs(*screens.Active);
    else
        for (const char* dialog : {"FormColorBar", "FormBlackPlane", "FormGraphicsOptions", "FormEditFahne"})
            UnloadWindow(dialog);  // there is nothing left that it could refer to
    GraphicsFormOpen();
}

void ActivateScreenWindow(ScreenWindow& window) {
    if (screens.Active == &window) return;
    screens.Active = &window;
    ShowInDialogs(window);
    RunEvent([] { Changed(What::State); });  // while a handler yields, too: the user has changed the window
}

void ResizeScreenWindow(ScreenWindow& window, int width, int height) {
    if (window.Screen.Width == width && window.Screen.Height == height) return;
    SizeSurface(window, width, height);
    Stelle_Grafik_dar(window);
}

bool ScreenIsOpen(std::uint64_t id) {
    return std::any_of(screens.Open.begin(), screens.Open.end(),
                       [id](const auto& open) { return open->Id == id; });
}

ScreenWindow* findLFDFORM() {
    return screens.Active;
}

}  // namespace corvinade::graphics
