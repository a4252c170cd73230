// An import of large files.
#include "import/long_import.h"

#include <algorithm>
#include <utility>

#include "core/job.h"
#include "core/platform.h"
#include "core/run.h"

namespace {

constexpr std::size_t kLargeFile_bytes = 4 << 20;

PointArrays TakeStart() {
    return {std::move(Job.MCS_Name), std::move(Job.MCS_X), std::move(Job.MCS_Y), std::move(Job.MCS_Z)};
}
PointArrays TakeTarget() {
    return {std::move(Job.OCS_Name), std::move(Job.OCS_X), std::move(Job.OCS_Y), std::move(Job.OCS_Z)};
}
void PutStart(PointArrays points) {
    Job.MCS_Name = std::move(points.Name);
    Job.MCS_X = std::move(points.X);
    Job.MCS_Y = std::move(points.Y);
    Job.MCS_Z = std::move(points.Z);
}
void PutTarget(PointArrays points) {
    Job.OCS_Name = std::move(points.Name);
    Job.OCS_X = std::move(points.X);
    Job.OCS_Y = std::move(points.Y);
    Job.OCS_Z = std::move(points.Z);
}

std::array<std::int32_t*, 5> Counts() {
    return {&Job.nMCS, &Job.nOCS, &Job.nIdent, &Job.nMCSOnly, &Job.nOCSOnly};
}
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
    : counts_(ValuesOf(Counts())),
      names_(ValuesOf(Names())),
      transformation_(ValuesOf(Transformation())),
      seed_(Job.SeedIndex),
      direction_(Job.DirectionMCStoOCS),
      valid_(Run.JobDataValid),
      trafoValid_(Run.TrafoValid),
      calcDone_(Run.CalcDone),
      poses_(Job.RobotABC),
      working_({Job.TMCS_Name.size(), Job.TMCS_X.size(), Job.TMCS_Y.size(), Job.TMCS_Z.size()}),
      generation_(Run.JobGeneration) {}

void JobBeforeImport::Restore() {
    if (Start) PutStart(*std::exchange(Start, std::nullopt));
    if (Target) PutTarget(*std::exchange(Target, std::nullopt));
    PutValues(Counts(), counts_);
    PutValues(Names(), names_);
    PutValues(Transformation(), transformation_);
    Job.SeedIndex = seed_;
    Job.DirectionMCStoOCS = direction_;
    if (poses_) Job.RobotABC = *std::exchange(poses_, std::nullopt);
    // The working points are still there; their arrays have only grown.
    Job.TMCS_Name.resize(working_[0]);
    Job.TMCS_X.resize(working_[1]);
    Job.TMCS_Y.resize(working_[2]);
    Job.TMCS_Z.resize(working_[3]);
    Run.JobDataValid = valid_;
    Run.TrafoValid = trafoValid_;
    Run.CalcDone = calcDone_;
    // The same points again: what was made from them is of them still.
    Run.JobGeneration = generation_;
    RepairJobCounts();
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

void ReplaceStart(PointArrays points) {
    PointArrays old = TakeStart();
    if (LongImport.Before != nullptr && !LongImport.Before->Start) LongImport.Before->Start = std::move(old);
    PutStart(std::move(points));
}

void ReplaceTarget(PointArrays points) {
    PointArrays old = TakeTarget();
    if (LongImport.Before != nullptr && !LongImport.Before->Target)
        LongImport.Before->Target = std::move(old);
    PutTarget(std::move(points));
}
