// The job that an adjusted network becomes.
#include <exception>

#include "bundle/bundle_run.h"
#include "core/changes.h"
#include "core/controller.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/job_tolerance.h"
#include "core/run.h"
#include "core/window.h"
#include "import/form_input_files.h"
#include "import/import_request.h"
#include "import/long_import.h"
#include "import/matching.h"
#include "import/point_file.h"
#include "import/robot_files.h"

namespace corvinade::bundle {

namespace {

// However the reading ends, all points count, and a job that is half read is not valid.
struct HandOver {
    HandOver() = default;
    HandOver(const HandOver&) = delete;
    HandOver& operator=(const HandOver&) = delete;
    ~HandOver() {
        CountAllPoints();
        if (Whole) return;
        Run.JobDataValid = Run.TrafoValid = kFalse;
        Changed(What::State);
    }
    bool Whole = false;
};

// What the points of an earlier job were beside points.
void ForgetKindOfJob() {
    MakeJobOfKind(TargetKind::Points);
    if (IsLoaded("FormInputFiles")) SetIndex(InputFiles.ComboOCS_Data, 0);
    Job.ParaboloidShape = Matrix{};
    Job.RobotABC = Matrix{};
    Job.NameMCS = "MCS";
    Job.NameOCS = "OCS";
}

}  // namespace

void TakeBundleAsJob(const std::string& startPath, const std::string& targetPath) {
    if (IsTrue(Run.JobDataValid)) {
        // Save shall ask for a name: the file that is open holds the points of another job.
        if (Job.Start.Count() + Job.Target.Count() > 0 && Job.PathMCS != startPath)
            Run.JobFilePath = kDefaultJobPath;
        if (IsTrue(Run.ColorBarOpen)) UnloadWindow("FormColorBar");
        Initialisieren();
        ShowNow(What::NoPictures);
    }
    ForgetKindOfJob();
    HandOver handOver;
    ++Run.JobGeneration;
    Run.ImportFailed = kFalse;
    Job.PathMCS = startPath;
    Job.PathOCS = targetPath;
    Einlesen_Neu();
    if (IsTrue(Run.ImportFailed)) return;
    MCS_OCS_aufbereiten();
    if (IsTrue(Run.ImportFailed)) return;
    GetInfoFromData();
    IdentischePkte_Neu();
    handOver.Whole = true;
    const double tolerance = ToleranceOf(Job);  // of the job, whatever points it has
    ForgetBlock();
    PutTolerance(tolerance, Job);
    Run.JobDataValid = kTrue;
    const std::uint64_t generation = Run.JobGeneration;
    Changed(What::Points);
    ShowChanges();
    if (Run.JobGeneration != generation) return;
    ShowNewPoints();
    Changed(What::Pairs);
}

}  // namespace corvinade::bundle
