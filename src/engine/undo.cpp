// Undo and redo: steps keep what differs, with the values before and behind it.
#include "engine/undo.h"

#include <algorithm>

#include "core/changes.h"
#include "core/controller.h"
#include "core/form_main.h"
#include "core/form_units.h"
#include "core/job.h"
#include "core/job_tolerance.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/units.h"
#include "core/window.h"
#include "engine/calculation_window.h"
#include "engine/norm_table.h"
#include "engine/tolerance_check.h"
#include "engine/undo_job.h"

namespace corvinade::engine {

namespace {

constexpr const char* kUse = "Use of Points";
constexpr const char* kNorm = "Norm";
constexpr const char* kTolerance = "Tolerance";
constexpr const char* kParameters = "Parameters";
constexpr const char* kUnits = "Units";

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

bool WindowIsOpen() {
    return IsLoaded("FormTrafoBerechnung");
}

UndoGround GroundNow() {
    return {Run.JobGeneration, Job.UseFlags.size()};
}

UnitChoice UnitsNow() {
    return {Job.LengthUnitName,   Job.AngleUnitName,    Job.LengthDigits, Job.AngleDigits,
            Settings.ScaleDigits, Settings.PhiThetaAsQ, Job.ParamText};
}

// Texts of held values alone are no other units.
bool SameUnits(const UnitChoice& a, const UnitChoice& b) {
    UnitChoice same = a;
    same.ParamText = b.ParamText;
    return same == b;
}

// A step is being made or put.
struct UndoPause {
    UndoPause() { ++Undo.Paused; }
    ~UndoPause() { --Undo.Paused; }
    UndoPause(const UndoPause&) = delete;
    UndoPause& operator=(const UndoPause&) = delete;
};

}  // namespace

std::optional<ParameterChoices> ChoicesNow() {
    if (!WindowIsOpen()) return std::nullopt;
    ParameterChoices now;
    for (const ParameterControls& row : ParameterRows()) {
        const int floats = row.Check->Value;
        now[At(row.Parameter)] = {.Floats = floats,
                                  .Seeded = row.SeedCheck->Value,
                                  .Held = floats == 1 ? "" : row.Text->Text,
                                  .Seed = row.SeedText->Text};
    }
    return now;
}

namespace {

void LookAtJob() {
    Undo.Units = UnitsNow();
    Undo.UseFlags = Job.UseFlags;
    Undo.Norm = Job.NormType;
    Undo.Tolerance = ToleranceOf(Job);
    Undo.Choices = ChoicesNow();
}

void OfferSteps() {
    const auto offer = [](Control& command, const char* caption, const UndoStep* step) {
        command.Enabled = step != nullptr;
        command.Text = step == nullptr ? caption : std::string(caption) + " " + step->Name;
    };
    offer(Main.MenuEditUndo, "&Undo", Undo.Done > 0 ? &Undo.Steps[Undo.Done - 1] : nullptr);
    offer(Main.MenuEditRedo, "&Redo", Undo.Done < Undo.Steps.size() ? &Undo.Steps[Undo.Done] : nullptr);
}

// False where the steps are of another job; they are forgotten then.
bool StandsOnItsGround() {
    if (Undo.Ground == GroundNow()) return true;
    Undo = UndoRecord{.Paused = Undo.Paused, .Ground = GroundNow()};
    LookAtJob();
    OfferSteps();
    return false;
}

// The field, where it is the only difference.
int OnlyField(const ParameterChoices& before, const ParameterChoices& after) {
    int field = 0, count = 0;
    for (std::size_t i = 0; i < before.size(); ++i) {
        ParameterChoice same = before[i];
        same.Held = after[i].Held;
        same.Seed = after[i].Seed;
        if (same != after[i]) return 0;
        const auto at = static_cast<int>(2 * i);
        if (before[i].Held != after[i].Held) ++count, field = 1 + at;
        if (before[i].Seed != after[i].Seed) ++count, field = 2 + at;
    }
    return count == 1 ? field : 0;
}

UndoStep StepToNow() {
    UndoStep step{.NormBefore = Undo.Norm,
                  .NormAfter = Job.NormType,
                  .ToleranceBefore = Undo.Tolerance,
                  .ToleranceAfter = ToleranceOf(Job)};
    for (std::size_t i = 0; i < Job.UseFlags.size(); ++i)
        if (Undo.UseFlags[i] != Job.UseFlags[i])
            step.Use.push_back({static_cast<std::int32_t>(i), Undo.UseFlags[i], Job.UseFlags[i]});
    step.Use.shrink_to_fit();
    const auto now = ChoicesNow();
    if (Undo.Choices && now && *Undo.Choices != *now) {
        step.Before = Undo.Choices;
        step.After = now;
    }
    // Fields are written in other units then, which is no choice of its own.
    const UnitChoice units = UnitsNow();
    if (!SameUnits(Undo.Units, units)) {
        step.UnitsBefore = Undo.Units;
        step.UnitsAfter = units;
        if (!step.Before) step.Before = step.After = now;
    }
    const bool norm = step.NormBefore != step.NormAfter,
               tolerance = step.ToleranceBefore != step.ToleranceAfter;
    if (!step.Use.empty())
        step.Name = kUse;
    else if (step.UnitsBefore)
        step.Name = kUnits;
    else if (norm)
        step.Name = kNorm;
    else if (step.Before)
        step.Name = kParameters;
    else if (tolerance)
        step.Name = kTolerance;
    if (!step.Use.empty() || norm || step.UnitsBefore) return step;
    if (step.Before && !tolerance) step.Typed = OnlyField(*step.Before, *step.After);
    if (!step.Before && tolerance) step.Typed = kTypedTolerance;
    return step;
}

std::size_t SizeOf(const UndoStep& step) {
    return sizeof step + step.Use.capacity() * sizeof(UseTurn) + step.Bytes;
}

void Keep(UndoStep&& step) {
    Undo.Steps.resize(Undo.Done);
    if (step.Typed != 0 && Undo.Done > 0 && Undo.Steps.back().Typed == step.Typed) {
        Undo.Steps.back().After = std::move(step.After);
        Undo.Steps.back().ToleranceAfter = step.ToleranceAfter;
    } else {
        Undo.Steps.push_back(std::move(step));
    }
    std::size_t bytes = 0, kept = 0;
    for (auto old = Undo.Steps.rbegin(); old != Undo.Steps.rend(); ++old) {
        bytes += SizeOf(*old);
        if (kept == kUndoSteps || (kept > 0 && bytes > kUndoBytes)) break;
        ++kept;
    }
    while (Undo.Steps.size() > kept) Undo.Steps.pop_front();
    Undo.Done = Undo.Steps.size();
}

// A step of parameters is one of the window's boxes.
bool WindowIsThere() {
    if (!WindowIsOpen()) FormMain::MenuTransformationCalculation_Click();
    return WindowIsOpen();
}

// As the dialog of the units does it; the texts of held values are then those of before, to the last digit.
void PutUnits(const UnitChoice& units) {
    UnitsWindow.LengthBefore = Units.LengthFactor;
    UnitsWindow.AngleBefore = Units.AngleFactor;
    Job.LengthUnitName = units.Length;
    Job.AngleUnitName = units.Angle;
    Job.LengthDigits = units.LengthDigits;
    Job.AngleDigits = units.AngleDigits;
    Settings.ScaleDigits = units.ScaleDigits;
    Settings.PhiThetaAsQ = units.PhiThetaAsQ;
    RhoFestlegung();
    ShowNow(What::UnitFactors);
    Job.ParamText = units.ParamText;
    Changed(What::UnitsAndDigits);
    ShowChanges();
}

// What the window chooses for a calculation.
void PutChosen(const UndoStep& step, bool back) {
    const auto& choices = back ? step.Before : step.After;
    const bool ofUnits = step.UnitsBefore.has_value();
    if (choices && !ofUnits && !WindowIsThere()) return;
    if (ofUnits) PutUnits(back ? *step.UnitsBefore : *step.UnitsAfter);
    {
        const NoRecalculation none;
        for (const UseTurn& turn : step.Use) Job.UseFlags[At(turn.Index)] = back ? turn.Before : turn.After;
        Job.NormType = back ? step.NormBefore : step.NormAfter;
        if (WindowIsOpen()) SetValue(TrafoWindow.*NormOfJob().Option, 1);
        if (choices && WindowIsOpen()) PutChoices(*choices);
    }
    Run.JobDirty = kTrue;
    if (step.ToleranceBefore != step.ToleranceAfter) {
        PutTolerance(back ? step.ToleranceBefore : step.ToleranceAfter, Job);
        ShowTolerance(true);
        Changed(What::Coordinates);
    }
    if (step.Typed == kTypedTolerance) return;
    if (!step.Use.empty()) {
        if (WindowIsOpen()) TabelleFüllenNeu();
        Changed(What::Use);
    }
    Changed(What::Choice);
    const bool sameFit = ofUnits && step.Use.empty() && step.NormBefore == step.NormAfter;
    if (WindowIsOpen() && !sameFit) RecalculateIfAutomatic();
}

void Go(const UndoStep& step, bool back) {
    Undo.Done = back ? Undo.Done - 1 : Undo.Done + 1;
    {
        const UndoPause pause;
        if (step.Other)
            ChangePlaces(*step.Other, step.Change);
        else if (step.Put)
            step.Put(back);
        else
            PutChosen(step, back);
    }
    if (!StandsOnItsGround()) return;  // another job has come in while this was shown
    Run.JobDirty = kTrue;
    LookAtJob();
    OfferSteps();
    if (step.UnitsBefore)
        SettingsSchreiben(
            {"UnitLength", "UnitAngle", "DigitLength", "DigitAngle", "PhiThetaAsQ", "DigitScale"});
}

}  // namespace

// Boxes act on each other, so that one is put twice.
void PutChoices(const ParameterChoices& choices) {
    for (int pass = 0; pass < 2; ++pass)
        for (const ParameterControls& row : ParameterRows()) {
            const ParameterChoice& choice = choices[At(row.Parameter)];
            SetValue(*row.Check, choice.Floats);
            if (choice.Floats != 1) SetText(*row.Text, choice.Held);
            SetValue(*row.SeedCheck, choice.Seeded);
            SetText(*row.SeedText, choice.Seed);
        }
    MarkPreset();
}

void NoteUndoStep() {
    if (Undo.Paused > 0 || !StandsOnItsGround()) return;
    if (!Undo.Choices && WindowIsOpen()) return LookAtJob();  // the window has just opened
    UndoStep step = StepToNow();
    if (*step.Name == 0) {
        Undo.Units = UnitsNow();  // a calculation has written what it held
        return;
    }
    Keep(std::move(step));
    LookAtJob();
    OfferSteps();
}

void KeepUndoStep(UndoStep step) {
    if (Undo.Paused > 0) return;
    NoteUndoStep();  // what has been done before it
    Keep(std::move(step));
    OfferSteps();
}

void StandOnThisJob() {
    Undo.Ground = GroundNow();
}

void KeepStepOfJob(UndoStep step) {
    Keep(std::move(step));
    StandOnThisJob();
    LookAtJob();
    OfferSteps();
}

void EndSteps() {
    StandsOnItsGround();
    Main.MenuEditUndo.Text = "&Undo (too many points to keep those of before)";
    SetStatus(1, "There are too many points to keep those of before: what was done until now stays.");
}

void ForgetUndoStepsOf(std::uint64_t window) {
    const auto ofWindow = [window](const UndoStep& step) { return step.Window == window; };
    const auto done = Undo.Steps.begin() + static_cast<std::ptrdiff_t>(Undo.Done);
    Undo.Done -= At(static_cast<int>(std::count_if(Undo.Steps.begin(), done, ofWindow)));
    if (std::erase_if(Undo.Steps, ofWindow) > 0) OfferSteps();
}

void LookPastResult() {
    if (Undo.Choices) Undo.Choices = ChoicesNow();
    Undo.Units.ParamText = Job.ParamText;
}

void ForgetShownChoices() {
    Undo.Choices.reset();
}

void MenuEditUndo_Click() {
    if (Undo.Paused == 0 && StandsOnItsGround() && Undo.Done > 0)
        Go(UndoStep(Undo.Steps[Undo.Done - 1]), true);
}

void MenuEditRedo_Click() {
    if (Undo.Paused == 0 && StandsOnItsGround() && Undo.Done < Undo.Steps.size())
        Go(UndoStep(Undo.Steps[Undo.Done]), false);
}

}  // namespace corvinade::engine
