// The import of a job from two files.
#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <memory>
#include <optional>
#include <utility>

#include "core/changes.h"
#include "core/controller.h"
#include "core/desktop_defaults.h"
#include "core/file_state.h"
#include "core/files.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/job_tolerance.h"
#include "core/measurement_sigmas.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/window.h"
#include "engine/calculation_window.h"
#include "engine/undo.h"
#include "fit/require.h"
#include "import/auto_find.h"
#include "import/import_request.h"
#include "import/long_import.h"
#include "import/matching.h"
#include "import/named_poses.h"
#include "import/point_file.h"
#include "import/readers_above.h"
#include "import/row_notes.h"

namespace corvinade::import {

namespace {

const std::string kNewLine = kLineEnd;

std::string Lines(std::initializer_list<const char*> lines) {
    std::string text;
    for (const char* line : lines) text += line + kNewLine;
    return text;
}

const std::string& AccuracyText() {
    static const std::string text = Lines(
        {"The accuracy of your Coordinates beetween Start- and Targetsystem is needed to sepperate the Data",
         "If you set it too small, maybe no identically point will be detected.",
         "If you set it too big, maybe points will be detected as identically but they are not.", ""});
    return text;
}

const std::string& DistanceText() {
    static const std::string text =
        Lines({"The process of AutoFinding the indentically points might take a while",
               "If you have more than 100 points it might take several minutes!", "",
               "It works by comparison of distances in both datasets MCS and OCS.",
               "It works well while you have measured data in MCS and OCS File", "",
               "It does not work in some other cases: ",
               "- Object Data is design data (lots of equal distances)",
               "- MCS Data and OCS Data have to big differences", "- To Much Points", "", ""}) +
        AccuracyText();
    return text;
}

const std::string& CoordinateText() {
    static const std::string text =
        Lines(
            {"Identify by coordinate comparison works by comparison",
             "of the coordinates in both datasets MCS and OCS WITHOUT",
             "any transformation. It works quick and easy.", "",
             "It does not work when MCS and OCS do have significant transformation parameters to each other.",
             "", ""}) +
        AccuracyText();
    return text;
}

// Takes the tolerance of the matching, or asks for it until it is not 0. False when the user gives none.
bool TakeEtta(const ImportRequest& request, const std::string& text) {
    Run.Etta = static_cast<float>(request.Tolerance_mm.value_or(0));
    while (Run.Etta == 0) {
        const auto answer = request.AskLine(text, "Etta Value", PlainText(0.8));
        if (!answer || answer->empty()) return false;
        Run.Etta = static_cast<float>(NumberFromText(*answer, "Etta Value"));
    }
    return true;
}

void AddPrefix(PointValues<std::string>& names, const char* prefix) {
    for (std::size_t i = 1; i < names.size(); ++i)
        if (!names[i].empty()) names[i].insert(0, prefix);  // an unused element stays without a name
}

MatchingOptions OptionsOf(const ImportRequest& request) {
    MatchingOptions options;
    options.CheckRenameMCS = request.RenameStart;
    options.CheckRenameOCS = request.RenameTarget;
    options.CheckUseOnlyFirst = request.OnlyFirst.has_value();
    if (request.OnlyFirst && request.Way == Pairing::ByDistance)
        options.TextMaxOCS = NumberFromText(*request.OnlyFirst, "Number of OCS points");
    return options;
}

// The file that the target points are read from as text. A kind with a reader of its own has none, and the
// targets of a shape are found on it: there the start points stand in their place.
const std::string& TargetPointFile(const ImportRequest& request) {
    return request.Kind == TargetKind::Points ? request.TargetPath : request.StartPath;
}

// Sorts and pairs by name. False when the import must stop.
bool MatchByName() {
    MCS_OCS_aufbereiten();
    if (IsTrue(Run.ImportFailed)) return false;
    GetInfoFromData();
    return true;
}

// Poses that are paired by their turn go with other points behind one that is missing or not taken.
void NotePosesByTurn(const ImportRequest& request) {
    const auto named = [](const PointValues<std::string>& names) {
        return static_cast<int>(std::count_if(names.begin() + 1, names.end(),
                                              [](const std::string& name) { return !name.empty(); }));
    };
    const int points = named(Job.Start.Name), poses = named(Job.Target.Name);
    const bool skipped = std::any_of(Notes.List.begin(), Notes.List.end(), [&request](const Note& note) {
        return note.Code == NoteCode::PosesSkipped && note.File == request.TargetPath;
    });
    if (points == poses || (!skipped && !InputKindOf(request.Kind).NumbersPoints)) return;
    AddNote(
        NoteCode::PosesByTurn,
        std::to_string(poses) + " poses are taken for " + std::to_string(points) +
            " points and numbered by their turn: where one is missing in the midst, all behind it are paired "
            "with other points",
        request.TargetPath);
}

void NumberStartPoints() {
    for (std::size_t i = 1; i < Job.Start.Name.size(); ++i) Job.Start.Name[i] = std::to_string(i);
}

// Reads both files, the target by the reader of its kind. False when the import must stop.
bool ReadBothFiles(const ImportRequest& request) {
    const InputKind& kind = InputKindOf(request.Kind);
    // Where a kind has a reader of its own no point file stands in the place of the start points' again.
    const bool isCopy =
        request.Kind == TargetKind::Shape || (request.StartPoints != nullptr && kind.Read != nullptr);
    Einlesen_Neu({request.StartPath, TargetPointFile(request), isCopy, request.How, request.StartPoints,
                  request.TargetPoints});
    if (IsTrue(Run.ImportFailed)) return false;
    const bool numbers = request.Way == Pairing::ByID && kind.NumbersPoints;
    // Where the names may be those of the program the start points keep theirs until the program is known.
    if (numbers && request.Names == PoseNames::ByTurn) NumberStartPoints();
    if (kind.Read == nullptr) return true;
    kind.Read({request.TargetPath, request.ByDeclarations, request.How});
    if (IsTrue(Run.ImportFailed)) return false;
    const bool named = NamePoses(request);
    if (numbers && !named) NumberStartPoints();
    // Before any is left out: those do not move the others.
    if (request.Way == Pairing::ByID && kind.ByTurn && !named && request.Select.empty())
        NotePosesByTurn(request);
    if (!request.ByDeclarations) return true;
    const std::string unknown = SelectPoses(request);
    if (!unknown.empty()) request.UnknownPose(unknown);
    return unknown.empty();
}

// Pairing by names refuses a double one, the other ways pair the points whatever they are called.
// Whoever has read a file already has noted its own.
void NoteDoubleNamesOfFiles(const ImportRequest& request) {
    if (request.StartPoints == nullptr) NoteDoubleNames(Job.PathMCS, Job.Start.Name);
    if (!IsTrue(Job.IsParaboloid) && request.TargetPoints == nullptr)
        NoteDoubleNames(Job.PathOCS, Job.Target.Name);
}

// Each way of identifying reads both files and pairs the points. False when the import must stop.
bool ImportByID(const ImportRequest& request) {
    return ReadBothFiles(request) && MatchByName();
}

// Pairs that a search has found do not stand in front yet. Those of a job that has come in meanwhile do.
void ForgetPairsFound(std::uint64_t generation) {
    if (Run.JobGeneration == generation) Job.SetPairs(0);
}

bool ImportByDistance(const ImportRequest& request) {
    if (!ReadBothFiles(request)) return false;
    NoteDoubleNamesOfFiles(request);
    const MatchingOptions options = OptionsOf(request);
    if (!TakeEtta(request, DistanceText())) return false;
    AddPrefix(Job.Start.Name, "MCS_");
    AddPrefix(Job.Target.Name, "OCS_");
    const std::uint64_t generation = Run.JobGeneration;
    AutoFindPts(options);
    ForgetPairsFound(generation);
    return !IsTrue(Run.ImportFailed) && MatchByName();
}

bool ImportByCoordinate(const ImportRequest& request) {
    if (!ReadBothFiles(request)) return false;
    NoteDoubleNamesOfFiles(request);
    const MatchingOptions options = OptionsOf(request);
    Job.ScaleX = Job.ScaleY = Job.ScaleZ = 1;
    if (!TakeEtta(request, CoordinateText())) return false;
    if (!options.CheckRenameMCS && !options.CheckRenameOCS) {
        AddPrefix(Job.Start.Name, "MCS_");
        AddPrefix(Job.Target.Name, "OCS_");
    }
    const std::uint64_t generation = Run.JobGeneration;
    PärchenSuchen(options);
    ForgetPairsFound(generation);
    if (IsTrue(Run.ImportFailed) || IsTrue(Run.StopRequested)) return false;
    if (options.CheckRenameMCS)
        RewritePointFile(request.StartPath, Job.Start.Name, Job.Start.X, Job.Start.Y, Job.Start.Z,
                         request.How.Decimal);
    // A robot program has more in it than points, and no place for their names.
    if (options.CheckRenameOCS && InputKindOf(request.Kind).Read == nullptr)
        RewritePointFile(TargetPointFile(request), Job.Target.Name, Job.Target.X, Job.Target.Y, Job.Target.Z,
                         request.How.Decimal);
    return MatchByName();
}

bool ImportPoints(const ImportRequest& request) {
    switch (request.Way) {
        case Pairing::ByID:
            return ImportByID(request);
        case Pairing::ByCoordinate:
            return ImportByCoordinate(request);
        case Pairing::ByDistance:
            return ImportByDistance(request);
        case Pairing::None:
            break;
    }
    return false;
}

// A name that no job file can keep: the import would end in a job that cannot be saved.
void RefuseLongNames() {
    constexpr std::size_t kMost = 65535;
    for (const auto& [points, path] :
         {std::pair{&Job.Start, &Job.PathMCS}, std::pair{&Job.Target, &Job.PathOCS}})
        for (int i = 1; i <= points->Count(); ++i)
            if (const std::size_t size = points->Name[static_cast<std::size_t>(i)].size(); size > kMost)
                throw PlatformError{"Cannot read \"" + *path + "\": the name of point " + std::to_string(i) +
                                    " (\"" + Printable(points->Name[static_cast<std::size_t>(i)], 20) +
                                    "...\") has " + std::to_string(size) + " bytes, and a job keeps " +
                                    std::to_string(kMost)};
}

// Both files must be there; the message names the one that is not.
bool IsThereOrTold(const std::string& path) {
    if (FileIsThere(path)) return true;
    ShowMessage(kNewLine + kNewLine + path + kNewLine + kNewLine + " is not existing");
    return false;
}

// On the way out of an import, however it ends: all points count, and a job that an error has left half read
// is not valid.
struct ImportGuard {
    explicit ImportGuard(JobBeforeImport& before) : before_(before) {}
    ImportGuard(const ImportGuard&) = delete;
    ImportGuard& operator=(const ImportGuard&) = delete;
    ~ImportGuard() {
        const bool thrown = !Whole && std::uncaught_exceptions() != exceptions_;
        if (thrown && DesktopDefaults.FailedImport && !Paired && !before_.Overtaken) {
            before_.Restore();
            Run.StopRequested = kFalse;
            Changed(What::Restored);
            return;
        }
        CountAllPoints();
        Run.StopRequested = kFalse;  // a stop ends this import, not the calculation after it
        if (Whole) return;
        // Where other points stand by now, the result of before is none of them.
        if ((before_.Start || before_.Target) && !before_.Overtaken && IsTrue(Run.TrafoValid)) {
            Run.TrafoValid = Run.CalcDone = kFalse;
            Changed(What::State);
        }
        if (std::uncaught_exceptions() == exceptions_) return;
        Run.JobDataValid = Run.TrafoValid = kFalse;
        Changed(What::State);
    }
    bool Whole = false;   // all points are read and paired
    bool Paired = false;  // the points of before cannot come back

private:
    JobBeforeImport& before_;
    int exceptions_ = std::uncaught_exceptions();
};

// As an import goes on the job becomes one of the kind of its request. Unless the import comes to
// its end the job is again of the kind that it was, with its orientations where its target points are still
// there: a Save must not lose what it had.
class KindOfImport {
public:
    KindOfImport(TargetKind chosen, JobBeforeImport& before) : before_(before) {
        for (const InputKind& kind : InputKinds())
            if (kind.IsKind != nullptr) flags_.push_back(*kind.IsKind);
        MakeJobOfKind(chosen);
        Settings.LastDropDownInfoInOCS = static_cast<std::int16_t>(chosen);
    }
    ~KindOfImport() {
        const bool isOtherJob = before_.Overtaken || Run.JobFilePath != jobPath_;
        if (Kept || isOtherJob) return;
        std::size_t i = 0;
        for (const InputKind& kind : InputKinds())
            if (kind.IsKind != nullptr) *kind.IsKind = flags_[i++];
        Settings.LastDropDownInfoInOCS = last_;
        before_.RestorePoses();
    }
    KindOfImport(const KindOfImport&) = delete;
    KindOfImport& operator=(const KindOfImport&) = delete;
    bool Kept = false;

private:
    JobBeforeImport& before_;
    std::vector<Flag> flags_;  // of the kinds that have one
    std::int16_t last_ = Settings.LastDropDownInfoInOCS;
    std::string jobPath_ = Run.JobFilePath;
};

// A program gives each of its poses an orientation, which a fit of the tool vector needs.
void NotePairsWithoutOrientation(const ImportRequest& request) {
    const int known = std::max(Job.RobotABC.Rows, 0);
    if (InputKindOf(request.Kind).Read == nullptr || known >= Job.Pairs()) return;
    AddNote(NoteCode::NoOrientation,
            "Pairs have no orientation, the first is point \"" +
                Printable(Job.Start.Name[static_cast<std::size_t>(known) + 1]) +
                "\": a tool vector cannot be fitted",
            request.TargetPath, 0, Job.Pairs() - known);
}

// Takes the accuracies of the points in hand for as long as the import is under way.
class SigmasOfImport {
public:
    explicit SigmasOfImport(const ImportRequest& request) {
        SigmasUnderWay = {};
        if (request.StartSigmas != nullptr) SigmasUnderWay.Start = std::move(*request.StartSigmas);
        if (request.TargetSigmas != nullptr) SigmasUnderWay.Target = std::move(*request.TargetSigmas);
    }
    ~SigmasOfImport() { SigmasUnderWay = std::move(outer_); }
    SigmasOfImport(const SigmasOfImport&) = delete;
    SigmasOfImport& operator=(const SigmasOfImport&) = delete;

    // The points are paired: the job has their accuracies from now on.
    static void GiveToJob() {
        MeasurementSigmas sigmas;
        const auto give = [](PointAccuracies& of, SharedAccuracies& side, const PointSet& points) {
            if (of.Of[0].empty()) return;
            Require(static_cast<int>(of.Count()) == points.Count());
            side = std::make_shared<PointAccuracies>(std::move(of));
        };
        // Where the job is switched the files stand in the other order by now.
        const bool switched = DirectionSwitched();
        give(SigmasUnderWay.Start, sigmas.StartOfEach, switched ? Job.Target : Job.Start);
        give(SigmasUnderWay.Target, sigmas.TargetOfEach, switched ? Job.Start : Job.Target);
        if (sigmas.Any()) PutSigmas(switched ? Swapped(sigmas) : sigmas, Job);
    }

private:
    PairedSigmas outer_ = std::move(SigmasUnderWay);
};

// A cancelled import leaves the points of before, and all that shows them.
ImportOutcome EndCancelled(JobBeforeImport& before) {
    const bool keeps = IsTrue(Run.StopRequested) || DesktopDefaults.FailedImport;
    if (!keeps || LongImport.Overtaken) return ImportOutcome::NotRead;
    before.Restore();
    Changed(What::Restored);
    return ImportOutcome::NotRead;
}

}  // namespace

void ShowNewPoints() {
    if (Main.MenuTransformationCalculation.Checked) {
        UnloadWindow("FormTrafoBerechnung");
        ShowWindow("FormTrafoBerechnung");
        Main.MenuTransformationCalculation.Checked = true;
        Main.Toolbar1_TrafoBerechnung.Value = 1;
    }
    Run.JobDirty = kTrue;
}

ImportOutcome Import(const ImportRequest& request) {
    const BusyPointer busy;
    Run.ImportFailed = kFalse;
    const std::array<std::string, 4> before = {Job.PathMCS, Job.PathOCS, Job.NameMCS, Job.NameOCS};
    JobBeforeImport jobBefore;
    JobStep step;
    const std::string startName = request.StartName.value_or(Job.NameMCS.empty() ? "MCS" : Job.NameMCS);
    const std::string targetName = request.TargetName.value_or(Job.NameOCS.empty() ? "OCS" : Job.NameOCS);
    Job.PathMCS = request.StartPath;
    Job.PathOCS = request.TargetPath;
    const auto leaveJob = [&before] {
        Job.PathMCS = before[0];
        Job.PathOCS = before[1];
        Job.NameMCS = before[2];
        Job.NameOCS = before[3];
        return ImportOutcome::NotRead;
    };
    if ((request.StartPoints == nullptr && !IsThereOrTold(Job.PathMCS)) ||
        (request.TargetPoints == nullptr && !IsThereOrTold(Job.PathOCS)))
        return leaveJob();
    Job.NameMCS = startName;
    Job.NameOCS = targetName;
    if (IsTrue(Run.JobDataValid) && !request.ReplacesQuietly) {
        if (!request.How.YesNo(
                "This will not add points, it will delete the old imported Points and import the new Points",
                "Overwrite old Points?"))
            return leaveJob();
        if (IsTrue(Run.ColorBarOpen)) UnloadWindow("FormColorBar");
        Initialisieren();
        ShowNow(What::NoPictures);
    }
    if (request.StartPath.empty()) {
        ShowMessage("There is no file for the MCS ");
        return ImportOutcome::NotRead;
    }
    if (request.TargetPath.empty()) {
        ShowMessage("There is no file for the OCS ");
        return ImportOutcome::NotRead;
    }

    ForgetNotes();
    if (request.Delimiter) Run.Delimiter = *request.Delimiter;
    KindOfImport kind(request.Kind, jobBefore);
    ImportGuard guard(jobBefore);
    const SigmasOfImport sigmas(request);
    std::optional<ImportUnderWay> underWay(&jobBefore);
    ++Run.JobGeneration;
    if (!ImportPoints(request)) return EndCancelled(jobBefore);
    IdentischePkte_Neu();
    if (IsTrue(Run.ImportFailed)) return EndCancelled(jobBefore);
    guard.Paired = true;
    RefuseLongNames();
    underWay.reset();
    guard.Whole = kind.Kept = true;
    const double tolerance = ToleranceOf(Job);  // of the job, whatever points it has
    ForgetBlock();
    PutTolerance(tolerance, Job);
    SigmasOfImport::GiveToJob();
    NotePairsWithoutOrientation(request);
    Run.JobDataValid = kTrue;  // the main sheet shows no others
    step.Keep("Import", JobChange::Import);
    const std::uint64_t generation = Run.JobGeneration;
    Changed(What::Points);
    ShowChanges();
    if (Run.JobGeneration != generation && !IsLoaded(request.Window)) return ImportOutcome::Overtaken;
    ShowNewPoints();
    // The dialog may have imported other points during the fill: the shape is not theirs.
    const bool isOfThisJob = IsTrue(Job.IsParaboloid) && Job.PathOCS == request.TargetPath;
    if (request.Kind == TargetKind::Shape && isOfThisJob)
        ReadAbove(FileAbove::Shape, {request.TargetPath, request.ByDeclarations, request.How});
    Settings.LastMCSRoot = Pfad(Job.PathMCS);
    Settings.LastOCSRoot = Pfad(Job.PathOCS);
    Settings.MCS_FileName = Job.PathMCS;
    Settings.OCS_FileName = Job.PathOCS;
    SettingsSchreiben({"NameMCS", "NameOCS", "LastMCSRoot", "LastOCSRoot", "MCS_FileName", "OCS_FileName",
                       "LastDropDownInfoInOCS"});
    Changed(What::Pairs);
    return IsTrue(Run.ImportFailed) ? ImportOutcome::NotRead : ImportOutcome::Done;
}

}  // namespace corvinade::import
