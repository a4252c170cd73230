// Steps that replace the job whole, as an import and the change of direction do.
#include "engine/undo_job.h"

#include <algorithm>
#include <utility>

#include "core/changes.h"
#include "core/controller.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/notes.h"
#include "core/pose_spans.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/units.h"
#include "core/window.h"
#include "engine/calculation.h"
#include "engine/calculation_window.h"
#include "engine/result_state.h"

namespace corvinade::engine {

namespace {

bool WindowIsOpen() {
    return IsLoaded("FormTrafoBerechnung");
}

std::array<Flag*, 8> StateOfJob() {
    return {&Run.JobDataValid, &Run.TrafoValid, &Run.CalcDone,       &Run.IsDefault,
            &Run.IsABBModx,    &Run.IsFanuc,    &Run.RobotFileHasId, &Run.IsXYZABC};
}

// About; names are counted as if each were long.
std::size_t BytesOf(const JobRecord& job) {
    constexpr std::size_t kPoint = sizeof(std::string) + 2 * sizeof(TaggedValue) + sizeof(double);
    std::size_t size = sizeof job;
    for (const PointSet* points : {&job.Start, &job.Target, &job.Transformed})
        size += points->Name.size() * kPoint;
    for (const ScreenRecord& view : job.SavedView)
        size += view.FlagIndex.size() * sizeof(std::int16_t) + view.Flags.size() * sizeof(FlagRecord);
    for (const auto& [name, value] : job.OtherMembers) size += name.size() + value.size();
    size += job.RVecX.size() * (2 * sizeof(TaggedValue) + sizeof(double));
    size += (job.RobotABC.Elements.size() + job.ParaboloidShape.Elements.size()) * sizeof(double);
    return size + job.UseFlags.size() * sizeof(std::int16_t);
}

void TakeState(KeptJob& kept) {
    const auto places = StateOfJob();
    for (std::size_t i = 0; i < places.size(); ++i) kept.State[i] = *places[i];
    kept.TargetKind = Settings.LastDropDownInfoInOCS;
    kept.Choices = ChoicesNow();
    kept.Generation = Run.JobGeneration;
}

// The points that a result belongs to are back, under a new number.
void TakeBackResult(std::uint64_t before) {
    const bool ofThem = Calculation.JobGeneration == before;
    if (ofThem) Calculation.JobGeneration = Run.JobGeneration;
    if (ShownResult.From.JobGeneration == before) ShownResult.From.JobGeneration = Run.JobGeneration;
    if (!ofThem) Run.TrafoValid = Run.CalcDone = kFalse;
}

void ShowChoices(const std::optional<ParameterChoices>& choices) {
    if (!choices || !WindowIsOpen()) return;
    const NoRecalculation none;
    PutChoices(*choices);
}

void ShowOtherDirection(const std::optional<ParameterChoices>& choices) {
    Changed(What::Counts | What::State | What::Coordinates | What::Pairs);
    if (!WindowIsOpen()) return ShowChanges();
    ShowDirection(" -> ");
    ShowChoices(choices);
    ShowChanges();
    ShowKnownResult();
    ShowChoices(choices);
}

void ShowOtherPoints(const std::optional<ParameterChoices>& choices) {
    const bool open = WindowIsOpen();
    if (open) UnloadWindow("FormTrafoBerechnung");
    Changed(What::OpenedJob);
    ShowChanges();
    if (open && !WindowIsOpen()) FormMain::MenuTransformationCalculation_Click();
    ShowChoices(choices);
}

}  // namespace

void ChangePlaces(KeptJob& other, JobChange change) {
    KeptJob now;
    TakeState(now);
    if (change == JobChange::Import) {
        if (IsTrue(Run.ColorBarOpen)) UnloadWindow("FormColorBar");
        ShowNow(What::NoPictures);
        std::swap(other.Notes, Notes.List);
    }
    std::swap(other.Job, Job);
    std::swap(other.ViewNames, Main.ComboSaveView.Items);
    Main.ComboSaveView.Index = -1;
    Main.ComboSaveView.Text.clear();
    const auto places = StateOfJob();
    for (std::size_t i = 0; i < places.size(); ++i) *places[i] = other.State[i];
    Settings.LastDropDownInfoInOCS = other.TargetKind;
    ++Run.JobGeneration;
    StandOnThisJob();
    TakeBackResult(other.Generation);
    const auto choices = std::exchange(other.Choices, now.Choices);
    other.State = now.State;
    other.TargetKind = now.TargetKind;
    other.Generation = now.Generation;
    FindPoseSpans();
    RhoFestlegung();
    if (change == JobChange::Import)
        ShowOtherPoints(choices);
    else
        ShowOtherDirection(choices);
}

JobStep::JobStep() {
    if (Undo.Paused == 0) NoteUndoStep();  // what has been done before it
    ++Undo.Paused;
    if (!IsTrue(Run.JobDataValid)) return;
    tooLarge_ = BytesOf(Job) > kUndoBytes;
    if (tooLarge_) return;
    before_ = std::make_shared<KeptJob>();
    before_->Job = Job;
    before_->ViewNames = Main.ComboSaveView.Items;
    before_->Notes = Notes.List;
    TakeState(*before_);
}

JobStep::~JobStep() {
    if (!kept_) --Undo.Paused;
}

void JobStep::Keep(const char* name, JobChange change) {
    if (std::exchange(kept_, true)) return;
    --Undo.Paused;
    if (Undo.Paused > 0) return;
    if (tooLarge_ && Undo.Done > 0) {
        EndSteps();
        return;
    }
    if (!before_) return;
    const std::size_t bytes = BytesOf(before_->Job);
    KeepStepOfJob({.Name = name, .Other = std::move(before_), .Change = change, .Bytes = bytes});
}

}  // namespace corvinade::engine
