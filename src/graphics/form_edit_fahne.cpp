// The dialog of the flags.
#include "graphics/form_edit_fahne.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <utility>

#include "core/numbers.h"
#include "core/platform.h"
#include "core/settings.h"
#include "graphics/drawing.h"
#include "graphics/flag_placing.h"
#include "graphics/flags.h"
#include "graphics/view_undo.h"

namespace corvinade::graphics {

FormEditFahne EditFahneWindow;

namespace {

using Dialog = FormEditFahne;
FormEditFahne& w = EditFahneWindow;

constexpr int kLeastGrid = 10, kLargestGrid = 1000;  // pixels

const ControlEntry kControls[] = {
    {"FrameRows", &w.FrameRows, Frame("Rows")},
    {"CheckShowOnlyPointNumber",
     &w.CheckShowOnlyPointNumber,
     CheckBox("Point &Number only"),
     {.Click = Dialog::CheckShowOnlyPointNumber_Click}},
    {"CheckActual", &w.CheckActual, CheckBox("&Actual"), {.Click = Dialog::CheckActual_Click}},
    {"CheckNominal", &w.CheckNominal, CheckBox("N&ominal"), {.Click = Dialog::CheckNominal_Click}},
    {"CheckDev", &w.CheckDev, CheckBox("&Deviation"), {.Click = Dialog::CheckDev_Click}},
    {"CheckUse", &w.CheckUse, CheckBox("&Use"), {.Click = Dialog::CheckUse_Click}},
    {"CheckLegendexyz", &w.CheckLegendexyz, CheckBox("&Heading Row")},
    {"CheckLegendeName", &w.CheckLegendeName, CheckBox("Na&me Column")},
    {"FrameColumns", &w.FrameColumns, Frame("Columns")},
    {"CheckX", &w.CheckX, CheckBox("x")},
    {"CheckY", &w.CheckY, CheckBox("y")},
    {"CheckZ", &w.CheckZ, CheckBox("z")},
    {"Check3D", &w.Check3D, CheckBox("3D Dev.")},
    {"CheckR", &w.CheckR, CheckBox("R")},
    {"CheckPhi", &w.CheckPhi, CheckBox("Phi")},
    {"CheckRho", &w.CheckRho, CheckBox("Rho")},
    {"CheckTheta", &w.CheckTheta, CheckBox("Theta")},
    {"FrameLook", &w.FrameLook, Frame("Look")},
    {"CheckSetTolCol", &w.CheckSetTolCol, CheckBox("&Tolerance Color")},
    {"CheckGrid", &w.CheckGrid, CheckBox("&Grid Lines")},
    {"CheckFlagWithinScreen", &w.CheckFlagWithinScreen, CheckBox("Only while the Point is in the &Picture")},
    {"CmdFonts", &w.CmdFonts, Button("&Font..."), {.Click = Dialog::CmdFonts_Click}},
    {"CheckSnaptoGrid", &w.CheckSnaptoGrid, CheckBox("&Snap to Grid")},
    {"LabelGridLength", &w.LabelGridLength, Label("Grid Length [Pixel]")},
    {"TextGridLength", &w.TextGridLength, TextBox(), {.Change = Dialog::TextGridLength_Change}},
    {"VScroll1", &w.VScroll1, ScrollBar(10, 1000), {.Click = Dialog::VScroll1_Change}},
    {"FramePlace", &w.FramePlace, Frame("Place")},
    {"OptionPlaceClose",
     &w.OptionPlaceClose,
     Option("&Close to the Point", 1),
     {.Click = Dialog::Option_Click}},
    {"OptionPlaceRadial",
     &w.OptionPlaceRadial,
     Option("&Radial, Factor", 1),
     {.Click = Dialog::Option_Click}},
    {"TextFaktor", &w.TextFaktor, TextBox("1.50"), {.Change = Dialog::TextFaktor_Change}},
    {"OptionPlaceBorder", &w.OptionPlaceBorder, Option("At the &Border", 1), {.Click = Dialog::Option_Click}},
    {"OptionSpeziale",
     &w.OptionSpeziale,
     Option("Stac&ked at the nearest Side", 1),
     {.Click = Dialog::Option_Click}},
    {"CheckPutAll", &w.CheckPutAll, CheckBox("Flags to all Po&ints"), {.Click = Dialog::CheckPutAll_Click}},
    {"CheckPutToEvery",
     &w.CheckPutToEvery,
     CheckBox("Only to e&very n-th, n ="),
     {.Click = Dialog::CheckPutAll_Click}},
    {"TextFlagOnEvery", &w.TextFlagOnEvery, TextBox("2.00"), {.Change = Dialog::TextFlagOnEvery_Change}},
    {"CheckChangeAll", &w.CheckChangeAll, CheckBox("Change all F&lags")},
    {"BtnFahneLöschen", &w.BtnFahneLöschen, Button("D&elete Flag"), {.Click = Dialog::BtnFahneLöschen_Click}},
    {"BtnAlleLöschen", &w.BtnAlleLöschen, Button("Delete All"), {.Click = Dialog::BtnAlleLöschen_Click}},
    {"BtnOK", &w.BtnOK, Button("OK"), {.Click = Dialog::BtnOK_Click}},
    {"BtnCancel", &w.BtnCancel, Button("Cancel"), {.Click = Dialog::BtnCancel_Click}},
};

struct Switch {
    Control* Box;
    Flag FlagRecord::*Place;
    bool Content;  // cleared and put out of reach where the number alone is wanted
};
// The rows come first: they stay within reach, for each of them leads back from the number alone.
const Switch kSwitches[] = {
    {&w.CheckActual, &FlagRecord::ShowActual, true},
    {&w.CheckNominal, &FlagRecord::ShowNominal, true},
    {&w.CheckDev, &FlagRecord::ShowDev, true},
    {&w.CheckUse, &FlagRecord::ShowUseNotUse, true},
    {&w.CheckX, &FlagRecord::showX, true},
    {&w.CheckY, &FlagRecord::showY, true},
    {&w.CheckZ, &FlagRecord::showZ, true},
    {&w.Check3D, &FlagRecord::show3D, true},
    {&w.CheckR, &FlagRecord::showR, true},
    {&w.CheckPhi, &FlagRecord::showPhi, true},
    {&w.CheckRho, &FlagRecord::showRho, true},
    {&w.CheckTheta, &FlagRecord::showTheta, true},
    {&w.CheckLegendexyz, &FlagRecord::ShowLegendeXYZ, true},
    {&w.CheckLegendeName, &FlagRecord::ShowLegendeName, true},
    {&w.CheckSetTolCol, &FlagRecord::ShowTolCol, false},
    {&w.CheckGrid, &FlagRecord::ShowGrid, false},
    {&w.CheckChangeAll, &FlagRecord::ChangeAll, false},
    {&w.CheckSnaptoGrid, &FlagRecord::SnaptoGrid, false},
    {&w.CheckFlagWithinScreen, &FlagRecord::WithinScreen, false},
    {&w.CheckShowOnlyPointNumber, &FlagRecord::ShowPointNumber, false},
};
constexpr int kRowSwitches = 4;

// Null once the window has been closed.
ScreenWindow* WindowOfDialog() {
    for (const auto& window : Screens().Open)
        if (window->Id == w.Screen) return window.get();
    return nullptr;
}

bool AnyRow() {
    return std::any_of(kSwitches, kSwitches + kRowSwitches,
                       [](const Switch& row) { return row.Box->Value == 1; });
}

bool AnyColumn() {
    return std::any_of(kSwitches + kRowSwitches, std::end(kSwitches),
                       [](const Switch& one) { return one.Content && one.Box->Value == 1; });
}

void EnableContent() {
    const bool whole = w.CheckShowOnlyPointNumber.Value != 1;
    int number = 0;
    for (const Switch& one : kSwitches)
        if (number++ >= kRowSwitches && one.Content) one.Box->Enabled = whole;
}

void EnablePlacing() {
    const bool placed = w.OptionPlaceClose.Value == 1 || w.OptionPlaceRadial.Value == 1 ||
                        w.OptionPlaceBorder.Value == 1 || w.OptionSpeziale.Value == 1;
    w.CheckPutAll.Enabled = placed;
    w.CheckPutToEvery.Enabled = placed && w.CheckPutAll.Value == 1;
}

void ShowRecord(const FlagRecord& record) {
    w.Filling = true;
    for (const Switch& one : kSwitches) one.Box->Value = IsTrue(record.*one.Place) ? 1 : 0;
    w.Filling = false;
    w.Record = record;
    EnableContent();
}

// Content and look of the dialog; place and colour of letters of `record` stay where they have no control.
void TakeInto(FlagRecord& record) {
    for (const Switch& one : kSwitches) record.*one.Place = ToFlag(one.Box->Value == 1);
    record.Bold = w.Record.Bold;
    record.Charset = w.Record.Charset;
    record.Italic = w.Record.Italic;
    record.Name = w.Record.Name;
    record.Size = w.Record.Size;
    record.Strikethrough = w.Record.Strikethrough;
    record.Underline = w.Record.Underline;
    record.Weight = w.Record.Weight;
    record.Forecolor = w.Record.Forecolor;
}

void RowClicked(Control& box) {
    if (w.Filling) return;
    if (box.Value == 1) {
        SetValue(w.CheckShowOnlyPointNumber, 0);
        return;
    }
    if (AnyRow() || w.CheckShowOnlyPointNumber.Value == 1) return;
    ShowMessage("It makes no sense to turn this of");
    if (w.Window.Loaded) SetValue(box, 1);
}

// Digits and one point, with at most two digits behind it; a comma is a point.
std::string FactorText(const std::string& text) {
    std::string kept;
    std::size_t point = std::string::npos;
    for (char c : text) {
        if (c == ',') c = '.';
        if (c == '.' ? point != std::string::npos : c < '0' || c > '9') continue;
        if (point != std::string::npos && kept.size() > point + 2) continue;
        if (c == '.') point = kept.size();
        kept += c;
    }
    return kept;
}

void FactorChanged(Control& text) {
    text.Text = FactorText(text.Text);
}

FlagPlacing PlacingOfDialog() {
    FlagPlacing placing;
    placing.Placement = w.OptionPlaceClose.Value == 1    ? FlagPlacement::Close
                        : w.OptionPlaceRadial.Value == 1 ? FlagPlacement::Radial
                        : w.OptionPlaceBorder.Value == 1 ? FlagPlacement::Border
                        : w.OptionSpeziale.Value == 1    ? FlagPlacement::Side
                                                         : FlagPlacement::None;
    // A field without a digit asks for nothing.
    if (w.TextFaktor.Text.find_first_of("0123456789") != std::string::npos)
        placing.Factor = Val(w.TextFaktor.Text);
    placing.OnGrid = w.CheckSnaptoGrid.Value == 1;
    placing.PutAll = w.CheckPutAll.Value == 1;
    if (w.CheckPutToEvery.Value == 1)
        placing.Every = static_cast<int>(std::clamp(std::nearbyint(Val(w.TextFlagOnEvery.Text)), 1.0, 1e9));
    return placing;
}

int GridLengthOf(const std::string& text) {
    return static_cast<int>(std::clamp(std::nearbyint(Val(text)), static_cast<double>(kLeastGrid),
                                       static_cast<double>(kLargestGrid)));
}

void Close() {
    UnloadWindow("FormEditFahne");
}

void EnableDeleting(const ScreenWindow& window) {
    w.BtnFahneLöschen.Enabled = window.State.ActiveFlag != 0;
    w.BtnAlleLöschen.Enabled = window.State.FlagCount != 0;
}

}  // namespace

const WindowEntry FormEditFahne_Entry = {
    .Name = "FormEditFahne",
    .State = &EditFahneWindow.Window,
    .Controls = kControls,
    .Fresh = [] { EditFahneWindow = FormEditFahne{}; },
    .Load = FormEditFahne::Form_Load,
    .Escape = FormEditFahne::Form_Escape,
    .Stand = WindowStand::Dialog,
};

void ÜbernehmenEditFahne() {
    ScreenWindow* window = WindowOfDialog();
    if (window == nullptr) return;
    ScreenRecord& state = window->State;
    FlagRecord record = NewFlagRecord(*window);
    TakeInto(record);
    TakeAsTemplate(*window, record);
    if (state.ActiveFlag != 0) TakeInto(FlagOf(*window, state.ActiveFlag));
    state.GridLength = static_cast<std::int16_t>(GridLengthOf(w.TextGridLength.Text));
    if (w.CheckChangeAll.Value == 1) DoChangesOnFlags();
    FahnenReset(*window);
    const std::uint64_t id = window->Id;
    // Cells are as large as a flag, so flags look as chosen before they are placed.
    const FlagPlacing placing = PlacingOfDialog();
    if (placing.Placement == FlagPlacement::None)
        Stelle_Grafik_dar(*window);
    else
        FlagPutAll(*window, placing);
    if (ScreenIsOpen(id)) StoreScreenPropertiesToRecord(*window);
}

void DoChangesOnFlags() {
    ScreenWindow* window = WindowOfDialog();
    if (window == nullptr) return;
    for (int flag = 1; flag <= FlagsOf(window->State); ++flag) TakeInto(FlagOf(*window, flag));
}

void EditFahne_EnableDeleting() {
    if (const ScreenWindow* window = WindowOfDialog(); w.Window.Loaded && window != nullptr)
        EnableDeleting(*window);
}

void EditFahne_ShowWindow(const ScreenWindow& window) {
    if (w.Window.Loaded && w.Screen != window.Id) FormEditFahne::Form_Load();
}

void FormEditFahne::Form_Load() {
    const ScreenWindow* window = findLFDFORM();
    w.Screen = window == nullptr ? 0 : window->Id;
    EnablePlacing();
    if (window == nullptr) return;
    const ScreenRecord& state = window->State;
    ShowRecord(state.ActiveFlag != 0 ? state.Flags[static_cast<std::size_t>(state.ActiveFlag)]
                                     : NewFlagRecord(*window));
    const int length = std::clamp<int>(state.GridLength, kLeastGrid, kLargestGrid);
    w.TextGridLength.Text = std::to_string(length);
    w.VScroll1.Value = length;
    EnableDeleting(*window);
}
void FormEditFahne::Form_Escape() {
    Close();
}

void FormEditFahne::CheckShowOnlyPointNumber_Click() {
    if (w.Filling) return;
    w.Filling = true;
    if (w.CheckShowOnlyPointNumber.Value == 1) {
        for (const Switch& one : kSwitches)
            if (one.Content) one.Box->Value = 0;
    } else {
        // Something has to be shown: of rows and of columns, all where there is none.
        const bool rows = AnyRow(), columns = AnyColumn();
        int number = 0;
        for (const Switch& one : kSwitches) {
            const bool any = number++ < kRowSwitches ? rows : columns;
            if (one.Content && !any) one.Box->Value = 1;
        }
    }
    w.Filling = false;
    EnableContent();
}
void FormEditFahne::CheckActual_Click() {
    RowClicked(w.CheckActual);
}
void FormEditFahne::CheckNominal_Click() {
    RowClicked(w.CheckNominal);
}
void FormEditFahne::CheckDev_Click() {
    RowClicked(w.CheckDev);
}
void FormEditFahne::CheckUse_Click() {
    RowClicked(w.CheckUse);
}
void FormEditFahne::TextGridLength_Change() {
    const int length = GridLengthOf(w.TextGridLength.Text);
    w.TextGridLength.Text = std::to_string(length);
    w.VScroll1.Value = length;
}
void FormEditFahne::VScroll1_Change() {
    SetText(w.TextGridLength, std::to_string(w.VScroll1.Value));
}
void FormEditFahne::TextFaktor_Change() {
    FactorChanged(w.TextFaktor);
}
void FormEditFahne::TextFlagOnEvery_Change() {
    FactorChanged(w.TextFlagOnEvery);
}
void FormEditFahne::Option_Click() {
    EnablePlacing();
}
void FormEditFahne::CheckPutAll_Click() {
    EnablePlacing();
}
void FormEditFahne::CmdFonts_Click() {
    std::int32_t colour = w.Record.Forecolor;
    const std::optional<TextFont> chosen = AskFont(FontOfFlag(w.Record), &colour);
    if (!chosen || !w.Window.Loaded) return;
    w.Record.Name = chosen->Name;
    w.Record.Size = chosen->Size;
    w.Record.Bold = ToFlag(chosen->Bold);
    w.Record.Weight = chosen->Bold ? 700 : 400;
    w.Record.Italic = ToFlag(chosen->Italic);
    w.Record.Underline = ToFlag(chosen->Underline);
    w.Record.Strikethrough = ToFlag(chosen->Strikethrough);
    w.Record.Forecolor = colour;
}
void FormEditFahne::BtnFahneLöschen_Click() {
    if (ScreenWindow* window = WindowOfDialog(); window != nullptr && window->State.ActiveFlag != 0) {
        Fahne_Löschen(*window, window->State.ActiveFlag);
        StoreScreenPropertiesToRecord(*window);
        EnableDeleting(*window);
    }
}
void FormEditFahne::BtnAlleLöschen_Click() {
    if (ScreenWindow* window = WindowOfDialog()) {
        AlleLöschen(*window);
        StoreScreenPropertiesToRecord(*window);
        EnableDeleting(*window);
    }
}
void FormEditFahne::BtnOK_Click() {
    ÜbernehmenEditFahne();
    if (w.Window.Loaded) Close();
}
void FormEditFahne::BtnCancel_Click() {
    Close();
}

}  // namespace corvinade::graphics
