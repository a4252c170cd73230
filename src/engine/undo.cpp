// Undo and redo: steps keep what differs, with the values before and behind it.
#include "engine/undo.h"

#include <algorithm>

#include "core/changes.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/run.h"
#include "core/window.h"
#include "engine/calculation_window.h"
#include "engine/norm_table.h"

namespace corvinade::engine {

namespace {

constexpr const char* kUse = "Use of Points";
constexpr const char* kNorm = "Norm";
constexpr const char* kParameters = "Parameters";

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

bool WindowIsOpen() {
    return IsLoaded("FormTrafoBerechnung");
}

UndoGround GroundNow() {
    return {Run.JobGeneration, Job.UseFlags.size(), Job.LengthUnitName,
            Job.LengthDigits,  Job.AngleUnitName,   Job.AngleDigits};
}

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

void LookAtJob() {
    Undo.UseFlags = Job.UseFlags;
    Undo.Norm = Job.NormType;
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

// False where the steps are of another job, direction or unit; they are forgotten then.
bool StandsOnItsGround() {
    if (Undo.Ground == GroundNow()) return true;
    Undo = UndoRecord{.Ground = GroundNow()};
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
    UndoStep step{.NormBefore = Undo.Norm, .NormAfter = Job.NormType};
    for (std::size_t i = 0; i < Job.UseFlags.size(); ++i)
        if (Undo.UseFlags[i] != Job.UseFlags[i])
            step.Use.push_back({static_cast<std::int32_t>(i), Undo.UseFlags[i], Job.UseFlags[i]});
    step.Use.shrink_to_fit();
    const auto now = ChoicesNow();
    if (Undo.Choices && now && *Undo.Choices != *now) {
        step.Before = Undo.Choices;
        step.After = now;
    }
    const bool norm = step.NormBefore != step.NormAfter;
    if (!step.Use.empty())
        step.Name = kUse;
    else if (norm)
        step.Name = kNorm;
    else if (step.Before)
        step.Name = kParameters;
    if (step.Before && step.Use.empty() && !norm) step.Typed = OnlyField(*step.Before, *step.After);
    return step;
}

std::size_t SizeOf(const UndoStep& step) {
    return sizeof step + step.Use.capacity() * sizeof(UseTurn);
}

void Keep(UndoStep&& step) {
    Undo.Steps.resize(Undo.Done);
    if (step.Typed != 0 && Undo.Done > 0 && Undo.Steps.back().Typed == step.Typed)
        Undo.Steps.back().After = std::move(step.After);
    else
        Undo.Steps.push_back(std::move(step));
    std::size_t bytes = 0, kept = 0;
    for (auto old = Undo.Steps.rbegin(); old != Undo.Steps.rend(); ++old) {
        bytes += SizeOf(*old);
        if (kept == kUndoSteps || (kept > 0 && bytes > kUndoBytes)) break;
        ++kept;
    }
    while (Undo.Steps.size() > kept) Undo.Steps.pop_front();
    Undo.Done = Undo.Steps.size();
}

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

// A step of parameters is one of the window's boxes.
bool WindowIsThere() {
    if (!WindowIsOpen()) FormMain::MenuTransformationCalculation_Click();
    return WindowIsOpen();
}

void Go(const UndoStep& step, bool back) {
    const auto& choices = back ? step.Before : step.After;
    if (choices && !WindowIsThere()) return;
    {
        const NoRecalculation none;
        for (const UseTurn& turn : step.Use) Job.UseFlags[At(turn.Index)] = back ? turn.Before : turn.After;
        Job.NormType = back ? step.NormBefore : step.NormAfter;
        if (WindowIsOpen()) SetValue(TrafoWindow.*NormOfJob().Option, 1);
        if (choices) PutChoices(*choices);
    }
    Run.JobDirty = kTrue;
    Undo.Done = back ? Undo.Done - 1 : Undo.Done + 1;
    LookAtJob();
    OfferSteps();
    if (!step.Use.empty()) {
        if (WindowIsOpen()) TabelleFüllenNeu();
        Changed(What::Use);
    }
    Changed(What::Choice);
    if (WindowIsOpen()) RecalculateIfAutomatic();
}

}  // namespace

void NoteUndoStep() {
    if (!StandsOnItsGround()) return;
    if (!Undo.Choices && WindowIsOpen()) return LookAtJob();  // the window has just opened
    UndoStep step = StepToNow();
    if (*step.Name == 0) return;
    Keep(std::move(step));
    LookAtJob();
    OfferSteps();
}

void LookPastResult() {
    if (Undo.Choices) Undo.Choices = ChoicesNow();
}

void ForgetShownChoices() {
    Undo.Choices.reset();
}

void MenuEditUndo_Click() {
    if (StandsOnItsGround() && Undo.Done > 0) Go(UndoStep(Undo.Steps[Undo.Done - 1]), true);
}

void MenuEditRedo_Click() {
    if (StandsOnItsGround() && Undo.Done < Undo.Steps.size()) Go(UndoStep(Undo.Steps[Undo.Done]), false);
}

}  // namespace corvinade::engine
