// The window in which units and digits are chosen.
#include "core/form_units.h"

#include "core/changes.h"
#include "core/controller.h"
#include "core/job.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/units.h"

namespace corvinade::core {

FormUnits UnitsWindow;

namespace {

const ControlEntry kControls[] = {
    {"LabelLength", &UnitsWindow.LabelLength, Label("&Length")},
    {"ComboLength", &UnitsWindow.ComboLength, ComboBox()},
    {"ComboDigitLength", &UnitsWindow.ComboDigitLength, ComboBox()},
    {"LabelAngle", &UnitsWindow.LabelAngle, Label("&Angle")},
    {"ComboAngle", &UnitsWindow.ComboAngle, ComboBox()},
    {"ComboDigitAngle", &UnitsWindow.ComboDigitAngle, ComboBox()},
    {"LabelScale", &UnitsWindow.LabelScale, Label("&Scale")},
    {"ComboDigitScale", &UnitsWindow.ComboDigitScale, ComboBox()},
    {"CheckPhiThetaAsQ", &UnitsWindow.CheckPhiThetaAsQ, CheckBox("&Phi and Theta as length of arc")},
    {"BtnOK", &UnitsWindow.BtnOK, Button("OK"), {.Click = FormUnits::BtnOK_Click}},
};

template <class List, class Name>
void Fill(Control& combo, const List& list, Name name) {
    for (const auto& entry : list) combo.Items.emplace_back(name(entry));
}

// Selects the entry of that name; a name that the list does not have leaves nothing selected.
void Select(Control& combo, const std::string& name) {
    for (std::size_t i = 0; i < combo.Items.size(); ++i)
        if (combo.Items[i] == name) SetIndex(combo, static_cast<int>(i));
}

void SelectDigits(Control& combo, int digits) {
    if (digits >= 0 && digits < static_cast<int>(combo.Items.size())) SetIndex(combo, digits);
}

}  // namespace

const WindowEntry FormUnits_Entry = {
    .Name = "FormUnits",
    .State = &UnitsWindow.Window,
    .Controls = kControls,
    .Fresh = [] { UnitsWindow = FormUnits{}; },
    .Load = FormUnits::Form_Load,
    .Escape = FormUnits::Form_Escape,
    .Stand = WindowStand::Dialog,
};

void FormUnits::Form_Load() {
    FormUnits& w = UnitsWindow;
    const auto unitName = [](const UnitRow& unit) { return unit.Name; };
    const auto format = [](const char* text) { return text; };
    Fill(w.ComboLength, LengthUnits(), unitName);
    Fill(w.ComboAngle, AngleUnits(), unitName);
    Fill(w.ComboDigitLength, DigitFormats(), format);
    Fill(w.ComboDigitAngle, DigitFormats(), format);
    Fill(w.ComboDigitScale, ScaleFormats(), format);
    Select(w.ComboLength, Job.LengthUnitName);
    Select(w.ComboAngle, Job.AngleUnitName);
    SelectDigits(w.ComboDigitLength, Job.LengthDigits);
    SelectDigits(w.ComboDigitAngle, Job.AngleDigits);
    SelectDigits(w.ComboDigitScale, Settings.ScaleDigits);
    SetValue(w.CheckPhiThetaAsQ, IsTrue(Settings.PhiThetaAsQ) ? 1 : 0);
}

void FormUnits::Form_Escape() {
    UnloadWindow("FormUnits");
}

void FormUnits::BtnOK_Click() {
    FormUnits& w = UnitsWindow;
    if (w.ComboLength.Index >= 0) Job.LengthUnitName = w.ComboLength.Text;
    if (w.ComboAngle.Index >= 0) Job.AngleUnitName = w.ComboAngle.Text;
    if (w.ComboDigitLength.Index >= 0) Job.LengthDigits = static_cast<std::int16_t>(w.ComboDigitLength.Index);
    if (w.ComboDigitAngle.Index >= 0) Job.AngleDigits = static_cast<std::int16_t>(w.ComboDigitAngle.Index);
    if (w.ComboDigitScale.Index >= 0)
        Settings.ScaleDigits = static_cast<std::int16_t>(w.ComboDigitScale.Index);
    Settings.PhiThetaAsQ = ToFlag(w.CheckPhiThetaAsQ.Value == 1);
    w.LengthBefore = Units.LengthFactor;
    w.AngleBefore = Units.AngleFactor;
    RhoFestlegung();
    ShowNow(What::UnitFactors);
    UnloadWindow("FormUnits");
    Changed(What::UnitsAndDigits);
    ShowChanges();  // ahead of what there may be to say of the settings
    SettingsSchreiben({"UnitLength", "UnitAngle", "DigitLength", "DigitAngle", "PhiThetaAsQ", "DigitScale"});
}

}  // namespace corvinade::core
