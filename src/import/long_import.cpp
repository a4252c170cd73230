// An import of large files.
#include "import/long_import.h"

#include <algorithm>
#include <utility>

#include "core/job.h"
#include "core/platform.h"
#include "core/run.h"

namespace corvinade::import {

namespace {

constexpr std::size_t kLargeFile_bytes = 4 << 20;

std::array<std::string*, 4> Names() {
    return {&Job.PathMCS, &Job.PathOCS, &Job.NameMCS, &Job.NameOCS};
}
std::array<double*, 9> Transformation() {
    return {&Job.TraX,     &Job.TraY,   &Job.TraZ,   &Job.RotXCopy, &Job.RotYCopy,
            &Job.RotZCopy, &Job.ScaleX, &Job.ScaleY, &Job.ScaleZ};
}

template <class Value, std::size_t n>
std::array<Value, n> ValuesOf(const std::array<Value*, n>& places) {
    std::array<Value, n> values;
    std::transform(places.begin(), places.end(), values.begin(), [](const Value* place) { return *place; });
    return values;
}
template <class Value, std::size_t n>
void PutValues(const std::array<Value*, n>& places, const std::array<Value, n>& values) {
    for (std::size_t i = 0; i < n; ++i) *places[i] = values[i];
}

}  // namespace

JobBeforeImport::JobBeforeImport()
    : startCount_(Job.Start.Count()),
      targetCount_(Job.Target.Count()),
      pairs_(Job.Pairs()),
      transformed_(Job.Transformed.Count()),
      names_(ValuesOf(Names())),
      transformation_(ValuesOf(Transformation())),
      seed_(Job.SeedIndex),
      direction_(Job.DirectionMCStoOCS),
      valid_(Run.JobDataValid),
      trafoValid_(Run.TrafoValid),
      calcDone_(Run.CalcDone),
      poses_(Job.RobotABC),
      generation_(Run.JobGeneration) {}

void JobBeforeImport::Restore() {
    if (Start) Job.Start = *std::exchange(Start, std::nullopt);
    if (Target) Job.Target = *std::exchange(Target, std::nullopt);
    Job.Start.CountOnly(startCount_);
    Job.Target.CountOnly(targetCount_);
    Job.SetPairs(pairs_);
    PutValues(Names(), names_);
    PutValues(Transformation(), transformation_);
    Job.SeedIndex = seed_;
    Job.DirectionMCStoOCS = direction_;
    if (poses_) Job.RobotABC = *std::exchange(poses_, std::nullopt);
    // The transformed points are still there; they have only become more.
    if (Job.Transformed.Count() > transformed_) Job.Transformed.Resize(transformed_);
    Run.JobDataValid = valid_;
    Run.TrafoValid = trafoValid_;
    Run.CalcDone = calcDone_;
    // The same points again: what was made from them is of them still.
    Run.JobGeneration = generation_;
}

void JobBeforeImport::RestorePoses() {
    if (!Target && poses_) Job.RobotABC = *std::exchange(poses_, std::nullopt);
}

ImportUnderWay::ImportUnderWay(JobBeforeImport* before) {
    LongImport = LongImportRecord{};
    LongImport.Before = before;
    LongImport.Active = true;
    Run.StopRequested = kFalse;
}

ImportUnderWay::~ImportUnderWay() {
    if (LongImport.Before != nullptr) LongImport.Before->Overtaken = LongImport.Overtaken;
    if (LongImport.Large && !outer_.Large) UnloadWindow(FormProgressBar_Entry.Name);
    LongImport = outer_;
}

void BeginFile(std::size_t size, int from, int to) {
    LongImport.From = from;
    LongImport.To = to;
    if (!LongImport.Active || size < kLargeFile_bytes || LongImport.Large) return;
    LongImport.Large = true;
    ShowWindow(FormProgressBar_Entry.Name);
    Progress.Window.Caption = "Reading points - Progress";
}

bool ImportGoesOn(double share) {
    if (!LongImport.Large) return true;
    const double percent = LongImport.From + share * (LongImport.To - LongImport.From);
    // The second set goes through the steps of the first: the bar waits meanwhile.
    const int shown = static_cast<int>(std::clamp(percent, 2.0, 100.0));
    SetValue(Progress.ProgressBar1, std::max(Progress.ProgressBar1.Value, shown));
    const std::uint64_t generation = Run.JobGeneration;
    YieldToEvents();
    if (Run.JobGeneration != generation) LongImport.Overtaken = true;
    if (!IsTrue(Run.StopRequested) && !LongImport.Overtaken) return true;
    Run.ImportFailed = kTrue;
    return false;
}

namespace {

void Replace(PointSet JobRecord::*set, std::optional<PointSet> JobBeforeImport::*kept, PointSet points) {
    std::swap(Job.*set, points);
    if (LongImport.Before != nullptr && !(LongImport.Before->*kept))
        LongImport.Before->*kept = std::move(points);
    Job.Start.CountAll();
    Job.Target.CountAll();
    Job.SetPairs(0);
    // In an import they follow behind the pairing, which needs as much memory for itself.
    const bool follow = LongImport.Before != nullptr && !LongImport.Before->HadTransformed();
    if (!follow) Job.Transformed.Reach(Job.Start.Count());
    ++Run.JobGeneration;
}

}  // namespace

void ReplaceStart(PointSet points) {
    Replace(&JobRecord::Start, &JobBeforeImport::Start, std::move(points));
}

void ReplaceTarget(PointSet points) {
    Replace(&JobRecord::Target, &JobBeforeImport::Target, std::move(points));
}

void CountAllPoints() {
    if (Job.Start.CountsAll() && Job.Target.CountsAll() && Job.Transformed.Count() >= Job.Start.Count())
        return;
    Job.SetPairs(0);
    Job.Start.CountAll();
    Job.Target.CountAll();
    Job.Transformed.Reach(Job.Start.Count());
    Run.JobDataValid = kFalse;
    ++Run.JobGeneration;
}

}  // namespace corvinade::import
