// The dialog of the switches that hold for all graphics windows.
#include "graphics/form_graphics_options.h"

#include <optional>

#include "core/changes.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/settings.h"
#include "graphics/ellipsoids.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

FormGraphicsOptions GraphicsOptionsWindow;

namespace {

using Dialog = FormGraphicsOptions;
constexpr Handlers kSetting = {.Click = Dialog::Setting_Click};

const ControlEntry kControls[] = {
    {"FramePoints", &GraphicsOptionsWindow.FramePoints, Frame("Points shown")},
    {"CheckPlotOCSIdent", &GraphicsOptionsWindow.CheckPlotOCSIdent, CheckBox("&OCS points with a partner"),
     kSetting},
    {"CheckPlotMCSIdent", &GraphicsOptionsWindow.CheckPlotMCSIdent, CheckBox("&MCS points with a partner"),
     kSetting},
    {"CheckPlotOnlyOCS", &GraphicsOptionsWindow.CheckPlotOnlyOCS, CheckBox("Points that only OC&S has"),
     kSetting},
    {"CheckPlotOnlyMCS", &GraphicsOptionsWindow.CheckPlotOnlyMCS, CheckBox("Points that only MCS &has"),
     kSetting},
    {"CheckViewOnlyTrafo", &GraphicsOptionsWindow.CheckViewOnlyTrafo,
     CheckBox("Also points that are &used in the transformation"), kSetting},
    {"CheckViewOnlyNotTrafo", &GraphicsOptionsWindow.CheckViewOnlyNotTrafo,
     CheckBox("Also points that are &not in use"), kSetting},
    {"CheckDontViewOOT", &GraphicsOptionsWindow.CheckDontViewOOT, CheckBox("Hide points out of &tolerance"),
     kSetting},
    {"FrameLook", &GraphicsOptionsWindow.FrameLook, Frame("Look")},
    {"CheckShowPointsBigger", &GraphicsOptionsWindow.CheckShowPointsBigger, CheckBox("Near points &bigger"),
     kSetting},
    {"CheckShowPointNames", &GraphicsOptionsWindow.CheckShowPointNames, CheckBox("&Point names"), kSetting},
    {"CheckShowCoordinateSystemLabels", &GraphicsOptionsWindow.CheckShowCoordinateSystemLabels,
     CheckBox("&Labels of the axes"), kSetting},
    {"CheckShowColorBar", &GraphicsOptionsWindow.CheckShowColorBar, CheckBox("&Color bar"), kSetting},
    {"BtnLabelFont",
     &GraphicsOptionsWindow.BtnLabelFont,
     Button("Label &Font..."),
     {.Click = Dialog::BtnLabelFont_Click}},
    {"FrameVectors", &GraphicsOptionsWindow.FrameVectors, Frame("Vectors")},
    {"OptionVecDeviation", &GraphicsOptionsWindow.OptionVecDeviation, Option("Show the &deviation", 1),
     kSetting},
    {"OptionVecCorrection", &GraphicsOptionsWindow.OptionVecCorrection, Option("Show the correct&ion", 1),
     kSetting},
    {"CheckVectorThick", &GraphicsOptionsWindow.CheckVectorThick, CheckBox("As &wide as the points"),
     kSetting},
    {"CheckVectorQuat", &GraphicsOptionsWindow.CheckVectorQuat, CheckBox("&Quaternion axis"), kSetting},
    {"CheckShowRDistVec", &GraphicsOptionsWindow.CheckShowRDistVec, CheckBox("&R vectors"), kSetting},
    {"CheckShowEllipsoids", &GraphicsOptionsWindow.CheckShowEllipsoids,
     CheckBox("Ellipsoids of the points, enlar&ged by"), kSetting},
    {"TextEllipsoidFactor",
     &GraphicsOptionsWindow.TextEllipsoidFactor,
     TextBox(),
     {.Change = Dialog::Setting_Click}},
    {"CheckAutoUpdate", &GraphicsOptionsWindow.CheckAutoUpdate, CheckBox("Auto Updat&e"), kSetting},
    {"BtnApply", &GraphicsOptionsWindow.BtnApply, Button("&Apply"), {.Click = Dialog::BtnApply_Click}},
    {"BtnOK", &GraphicsOptionsWindow.BtnOK, Button("OK"), {.Click = Dialog::BtnOK_Click}},
    {"BtnCancel", &GraphicsOptionsWindow.BtnCancel, Button("Cancel"), {.Click = Dialog::BtnCancel_Click}},
};

struct Switch {
    Control& Check;
    Flag& Place;
};
const Switch kSwitches[] = {
    {GraphicsOptionsWindow.CheckPlotOCSIdent, Job.ViewAllOCS},
    {GraphicsOptionsWindow.CheckPlotMCSIdent, Job.ViewAllMCS},
    {GraphicsOptionsWindow.CheckPlotOnlyOCS, Job.ViewAllonlyOCS},
    {GraphicsOptionsWindow.CheckPlotOnlyMCS, Job.ViewAllonlyMCS},
    {GraphicsOptionsWindow.CheckViewOnlyTrafo, Settings.ViewOnlyIfTrafo},
    {GraphicsOptionsWindow.CheckViewOnlyNotTrafo, Settings.ViewOnlyIfNotTrafo},
    {GraphicsOptionsWindow.CheckDontViewOOT, Settings.DontViewOOT},
    {GraphicsOptionsWindow.CheckShowPointsBigger, Settings.ShowPointsBigger},
    {GraphicsOptionsWindow.CheckShowCoordinateSystemLabels, Settings.ShowCoordinateSystemLabels},
    {GraphicsOptionsWindow.CheckShowPointNames, Settings.ShowPointNames},
    {GraphicsOptionsWindow.CheckShowColorBar, Settings.ShowColorBar},
    {GraphicsOptionsWindow.CheckVectorThick, Settings.VectorThick},
    {GraphicsOptionsWindow.CheckVectorQuat, Settings.VectorQuat},
    {GraphicsOptionsWindow.CheckShowRDistVec, Settings.ShowRVec},
};

// The factor of the field, as the system writes it or with a point; a text that is none warns and leaves the
// one of before.
double EllipsoidFactor() {
    Control& field = GraphicsOptionsWindow.TextEllipsoidFactor;
    double factor = 0;
    const bool good = (TextToNumber(field.Text, factor) || TextToNumber(field.Text, '.', factor)) &&
                      factor > 0 && factor <= kLargestEllipsoidFactor;
    field.BackColor = good ? kSystemColour : 0x66D1FF;
    return good ? factor : EllipsoidSettings().Factor;
}

void Close() {
    UnloadWindow("FormGraphicsOptions");
}

}  // namespace

const WindowEntry FormGraphicsOptions_Entry = {
    .Name = "FormGraphicsOptions",
    .State = &GraphicsOptionsWindow.Window,
    .Controls = kControls,
    .Fresh = [] { GraphicsOptionsWindow = FormGraphicsOptions{}; },
    .Load = FormGraphicsOptions::Form_Load,
    .Escape = FormGraphicsOptions::Form_Escape,
    .Stand = WindowStand::Beside,
};

void FormGraphicsOptions::Übernehmen() {
    for (const Switch& one : kSwitches) one.Place = ToFlag(one.Check.Value == 1);
    Settings.DevVecDirection = ToFlag(GraphicsOptionsWindow.OptionVecDeviation.Value == 1);
    SettingsSchreiben({"ViewAllOCS", "ViewAllMCS", "ViewAllonlyOCS", "ViewAllonlyMCS", "ViewOnlyIfTrafo",
                       "ViewOnlyIfNotTrafo", "DontViewOOT", "ShowPointsBigger", "ShowCoordinateSystemLabels",
                       "ShowPointNames", "ShowColorBar", "VectorThick", "VectorQuat", "ShowRVec",
                       "DevVecDirection"});
    StoreEllipsoidSettings(GraphicsOptionsWindow.CheckShowEllipsoids.Value == 1, EllipsoidFactor());
    // The two-colour mode goes by this entry, so it is right before the windows are painted.
    Main.MenüAnsichtToleranzenColorbar.Checked = IsTrue(Settings.ShowColorBar);
    Changed(What::PictureSettings);
}

void GraphicsOptions_ShowColorBar() {
    if (IsLoaded("FormGraphicsOptions"))
        GraphicsOptionsWindow.CheckShowColorBar.Value = IsTrue(Settings.ShowColorBar) ? 1 : 0;
}

void FormGraphicsOptions::Form_Load() {
    for (const Switch& one : kSwitches) one.Check.Value = IsTrue(one.Place) ? 1 : 0;
    GraphicsOptionsWindow.CheckShowEllipsoids.Value = EllipsoidSettings().Show ? 1 : 0;
    GraphicsOptionsWindow.TextEllipsoidFactor.Text = PlainText(EllipsoidSettings().Factor);
    const bool deviation = IsTrue(Settings.DevVecDirection);
    GraphicsOptionsWindow.OptionVecDeviation.Value = deviation ? 1 : 0;
    GraphicsOptionsWindow.OptionVecCorrection.Value = deviation ? 0 : 1;
}
void FormGraphicsOptions::Form_Escape() {
    Close();
}
void FormGraphicsOptions::Setting_Click() {
    if (GraphicsOptionsWindow.CheckAutoUpdate.Value == 1) Übernehmen();
}
void FormGraphicsOptions::BtnLabelFont_Click() {
    const ScreenWindow* active = findLFDFORM();
    if (active == nullptr) return;
    const std::optional<TextFont> chosen = AskFont(active->LabelFont);
    if (!chosen) return;
    for (const auto& window : Screens().Open) window->LabelFont = *chosen;
    Setting_Click();
}
void FormGraphicsOptions::BtnApply_Click() {
    Übernehmen();
}
void FormGraphicsOptions::BtnOK_Click() {
    Übernehmen();
    Close();
}
void FormGraphicsOptions::BtnCancel_Click() {
    Close();
}

}  // namespace corvinade::graphics
