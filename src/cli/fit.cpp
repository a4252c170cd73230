// `corvinade-cli fit`: asks for the same import and runs the same calculation as the desktop does.
#include "cli/fit.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <ostream>
#include <vector>
#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include "cli/fit_exports.h"
#include "cli/fit_files.h"
#include "cli/fit_output.h"
#include "cli/fit_report.h"
#include "cli/fit_selection.h"
#include "cli/fit_statistics.h"
#include "cli/headless.h"
#include "cli/input_bytes.h"
#include "cli/job_files.h"
#include "cli/messages.h"
#include "core/controller.h"
#include "core/files.h"
#include "core/form_progress_bar.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/job_notes.h"
#include "core/job_tolerance.h"
#include "core/measurement_sigmas.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/parameter_names.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/adjustment.h"
#include "engine/calculation.h"
#include "engine/calculation_window.h"
#include "engine/clipboard_report.h"
#include "engine/design.h"
#include "engine/field_number.h"
#include "engine/inverse.h"
#include "engine/job_calculation.h"
#include "engine/monte_carlo.h"
#include "engine/noise.h"
#include "engine/norm_table.h"
#include "engine/pose_file.h"
#include "engine/result_statistics.h"
#include "engine/solution_details.h"
#include "fit/vector.h"
#include "import/import_request.h"

namespace corvinade::cli {

namespace {

// Answers the questions of a calculation: Yes or No as the user has said beforehand.
void AnswerQuestions(const FitOptions& options) {
    Headless.OnQuestion = [&options](const DialogShown& dialog) -> std::optional<std::string> {
        if (dialog.Kind != "message" || !options.Questions) return std::nullopt;
        const std::string wanted = *options.Questions ? "Yes" : "No";
        const bool has =
            std::find(dialog.Buttons.begin(), dialog.Buttons.end(), wanted) != dialog.Buttons.end();
        return has ? std::optional<std::string>(wanted) : std::nullopt;
    };
}

void ShowProgress(std::ostream& err) {
    using Clock = std::chrono::steady_clock;
    const auto begin = Clock::now();
    auto last = begin;
    Headless.OnYield = [&err, begin, last]() mutable {
        const auto now = Clock::now();
        if (now - begin < std::chrono::seconds(1) || now - last < std::chrono::milliseconds(200)) return;
        last = now;
        if (Progress.Window.Loaded) {
            err << "\r" << Progress.Window.Caption << ": " << Progress.ProgressBar1.Value << " %  "
                << std::flush;
        } else {
            err << "\rcalculating, iteration " << Adjustment.Iterations << "  " << std::flush;
        }
    };
}

void SetUp(const FitOptions& options) {
    // A fit shall give the same on every machine, so it neither reads nor writes anybody's settings.
    ReadSettingsText(DefaultSettingsText(), "the built-in settings");
    Job.LengthUnitName = options.LengthUnit;
    Job.AngleUnitName = options.AngleUnit;
    Job.LengthDigits = static_cast<std::int16_t>(options.LengthDigits);
    Job.AngleDigits = static_cast<std::int16_t>(options.AngleDigits);
    Settings.ScaleDigits = static_cast<std::int16_t>(options.ScaleDigits);
    ShowWindow("FormMain");
    Initialisieren();
    if (options.MonteCarloRuns == 0) return;
    MonteCarlo.MonteCarloOn = kTrue;
    Settings.MonteCarloRuns = options.MonteCarloRuns;
    Settings.SigmaX = options.Noise_mm[0];
    Settings.SigmaY = options.Noise_mm[1];
    Settings.SigmaZ = options.Noise_mm[2];
    SeedNoise(options.Seed);
}

Pairing WayOf(const std::string& match) {
    if (match == "coordinate") return Pairing::ByCoordinate;
    return match == "distance" ? Pairing::ByDistance : Pairing::ByID;
}

// Names with commas between.
void AddNames(std::string_view text, std::vector<std::string>& names) {
    for (bool more = true; more;) {
        const std::size_t comma = text.find(',');
        more = comma != std::string_view::npos;
        names.emplace_back(text.substr(0, comma));
        if (more) text.remove_prefix(comma + 1);
    }
}

// Its questions are answered as the user has said beforehand, and stand among the messages with their answer;
// `open` gets the first one that nobody has answered, which counts as No, and `unknownPose` what is told of a
// pose that is selected and not there.
ImportRequest RequestOf(const FitOptions& options, std::array<FitFile, 2>& files, std::string& open,
                        std::string& unknownPose) {
    ImportRequest request;
    request.StartPath = options.Start;
    request.TargetPath = options.Target;
    request.Kind = TargetKindByName(options.TargetKind);
    request.ByDeclarations = true;
    request.Names = options.Names.empty()       ? PoseNames::Match
                    : options.Names == "number" ? PoseNames::ByTurn
                                                : PoseNames::Program;
    for (const std::string& names : options.Select) AddNames(names, request.Select);
    request.UnknownPose = [&unknownPose](const std::string& text) { unknownPose = text; };
    request.Delimiter = options.Delimiter;
    // A file behind one that has been read finds its delimiter as behind any other.
    if (files[0].Read && options.Delimiter.empty()) request.Delimiter = files[0].Delimiter;
    if (files[0].Read) request.StartPoints = &files[0].Points;
    if (files[1].Read) request.TargetPoints = &files[1].Points;
    if (files[0].Read) request.StartSigmas = &files[0].Sigmas;
    if (files[1].Read) request.TargetSigmas = &files[1].Sigmas;
    request.Way = WayOf(options.Match);
    request.Tolerance_mm = options.Tolerance_mm;
    if (options.OnlyFirst > 0) request.OnlyFirst = std::to_string(options.OnlyFirst);
    // Only one of the files is read by the import where they are read differently, and that is the target.
    const bool both = !files[0].Read && !files[1].Read;
    const std::optional<char> decimal =
        both || files[0].Read ? options.Files[1].Decimal : options.Files[0].Decimal;
    if (decimal) request.How.Decimal = *decimal;
    request.How.YesNo = [&options, &open](const std::string& text, const std::string& title) {
        DialogShown question{"message", title, text, {"Yes", "No"}, "Yes", "", {}, ""};
        if (options.Questions) question.Answer = *options.Questions ? "Yes" : "No";
        if (!options.Questions && open.empty()) open = OneParagraph(text);
        Headless.Dialogs.push_back(std::move(question));
        return options.Questions.value_or(false);
    };
    return request;
}

std::string TooFewPairs(const FitOptions& options) {
    std::string text = "the start file has " + std::to_string(Job.Start.Count()) +
                       (Job.Start.Count() == 1 ? " point" : " points") + " and the target file " +
                       std::to_string(Job.Target.Count()) + ", " + std::to_string(Job.Pairs()) +
                       " of them identical; a transformation needs at least 2";
    if (std::min(Job.Start.Count(), Job.Target.Count()) < 2) return text;  // no way of pairing finds more
    if (options.Match == "id" && options.TargetKind != "points")
        text +=
            "\n  the poses of a robot program bear the names 1, 2, 3..., those of a text file their own; "
            "--names program takes those of the program";
    if (options.Match == "id")
        return text +
               "\n  points without common names are paired with --match coordinate or --match distance";
    return text + "\n  they were paired within a tolerance (Etta) of " + PlainText(options.Tolerance_mm) +
           " mm; --tolerance changes it";
}

// A distance fit that begins too far away can leave for where all directions and so all distances are the
// same. No true solution is a million times farther than the points are from their origins.
bool RanAway() {
    double largest = 1;
    for (int i = 1; i <= Job.Pairs(); ++i)
        for (const Vec3& point : {StartPoint(i), TargetPoint(i)})
            largest = std::max(largest, Hypot3(point(1), point(2), point(3)));
    return Hypot3(Job.TraX, Job.TraY, Job.TraZ) > 1e6 * largest;
}

// What the first calculation of two files makes anew takes no memory while it runs: of a million pairs that
// is 80 MB. Without a result the transformed points are those of the start again. R vectors come back where
// a job is written, which has room for them.
class FilledByFit {
public:
    explicit FilledByFit(const FitOptions& options)
        : spares_(options.Job.empty() && !Calculation.Done), writes_(!options.Save.empty()) {
        if (!spares_) return;
        Job.Transformed = PointSet();
        Job.RVecX = std::vector<TaggedValue>(1);
        Job.RVecY = std::vector<TaggedValue>(1);
        Job.RVecZ = std::vector<double>(1);
#if defined(__GLIBC__)
        // What reading and pairing took is free, but in shapes that the fit cannot use; and its own columns
        // would leave holes that the transformed points do not fit in. Other norms take columns again and
        // again, which would cost them a tenth of their time.
        malloc_trim(0);
        if (IsLeastSquares(NormByName(options.Norm).Norm)) mallopt(M_MMAP_THRESHOLD, 4 << 20);
#endif
    }
    // Behind the calculation. No destructor: it takes memory, and there may be too little of it.
    void Fill() const {
        if (!spares_) return;
        if (Job.Transformed.Count() < Job.Start.Count()) Job.Transformed = Job.Start;
        const std::size_t size = static_cast<std::size_t>(Job.Pairs()) + 1;
        if (!writes_ || Job.RVecX.size() >= size) return;
        Job.RVecX.resize(size);
        Job.RVecY.resize(size);
        Job.RVecZ.resize(size);
    }

private:
    bool spares_, writes_;
};

int Calculate(const FitOptions& options, std::ostream& err) {
    if (Job.Pairs() < 2) return Refuse(err, kRefused, TooFewPairs(options));
    // The points of a job that was switched stand in the other order already.
    if (options.FromTarget && options.Job.empty() && IsTrue(Job.DirectionMCStoOCS)) {
        Job.DirectionMCStoOCS = kFalse;
        MCS_OCS();
    }
    Headless.Dialogs.clear();
    const FilledByFit filled(options);
    const bool ran = Dispatch(CalculateJob);
    filled.Fill();
    if (!ran) {
        WriteMessages(err);
        return kRefused;
    }
    const bool told = !Headless.Dialogs.empty();
    WriteMessages(err);
    const int unknowns = CountUnknowns(Job.ParamText);
    if (Calculation.Refused && ObservationsInUse() >= unknowns) return kRefused;  // a message has said why
    if (Calculation.Refused)
        return Refuse(err, kRefused,
                      std::to_string(ObservationsInUse()) + " observations in use, " +
                          std::to_string(unknowns) + " unknowns: " +
                          std::to_string(unknowns - ObservationsInUse()) + " more observations are needed");
    if (!Calculation.Finite)
        return Refuse(err, kRefused,
                      "the result is not finite: the points do not determine these parameters");
    if (options.RDist && RanAway())
        return Refuse(
            err, kRefused,
            "the iteration ran away from the points; give start values near the truth with --start");
    if (options.MonteCarloRuns > 0 && !HasMonteCarlo(options))
        return Refuse(err, kNotConverged, "the Monte Carlo runs ended early: one of them did not converge");
    if (Calculation.Converged) return kDone;
    // The way to an exact optimum ends without a message.
    return told ? kNotConverged : Refuse(err, kNotConverged, "the calculation did not converge");
}

// The sigmas of the files, whichever of them is fitted to the other. What a file has of its points goes
// before its option; what a job has of a side stays where no option tells of it.
void TakeSigmas(const FitOptions& options) {
    if (!options.StartSigma && !options.TargetSigma) return;
    const bool switched = !IsTrue(Job.DirectionMCStoOCS);
    MeasurementSigmas sigmas = switched ? Swapped(SigmasOf(Job)) : SigmasOf(Job);
    const auto take = [&options](const std::optional<std::array<double, 3>>& given, const char* option,
                                 const std::string& file, std::optional<SideAccuracy>& side,
                                 SharedAccuracies& ofEach) {
        if (!given) return;
        if (options.Job.empty() && ofEach != nullptr)
            return AddNote(NoteCode::SigmaColumns,
                           std::string("The standard deviations that the file has of each point go before ") +
                               option + ", which is not used",
                           file);
        ofEach = nullptr;
        side = *given;
        for (double& sigma : *side) sigma /= Units.LengthFactor;
    };
    take(options.StartSigma, "--start-sigma", options.Start, sigmas.Start, sigmas.StartOfEach);
    take(options.TargetSigma, "--target-sigma", options.Target, sigmas.Target, sigmas.TargetOfEach);
    PutSigmas(switched ? Swapped(sigmas) : sigmas, Job);
}

// Takes the worst coordinate out and calculates again, until none fails its test. Gives the exit status of
// the last calculation.
int Snoop(const FitOptions& options, FitStatistics& statistics, std::ostream& err) {
    for (;;) {
        statistics.Of = StatisticsOfResult(LevelsOf(options));
        if (!statistics.Of) return kDone;
        const Coordinate worst = WorstOutlier(*statistics.Of);
        if (worst.Pair == 0) return kDone;
        const std::size_t index =
            3 * static_cast<std::size_t>(worst.Pair - 1) + static_cast<std::size_t>(worst.Axis);
        statistics.Snooped.push_back({Job.Start.Name[static_cast<std::size_t>(worst.Pair)], worst.Axis,
                                      statistics.Of->Standardized[index], statistics.Of->CriticalValue});
        Job.UseFlags[index] = 0;
        const int status = Calculate(options, err);
        if (status != kDone) return status;
    }
}

// The units of what the import reads: those of the result, unless a robot program has others.
void UseUnits(const std::string& length, const std::string& angle) {
    if (Job.LengthUnitName == length && Job.AngleUnitName == angle) return;
    Job.LengthUnitName = length;
    Job.AngleUnitName = angle;
    RhoFestlegung();
}

void TellFiles(FitOptions& options, const std::array<FitFile, 2>& files, std::ostream& err) {
    for (int file = 0; file < 2; ++file) {
        const FitFile& read = files[static_cast<std::size_t>(file)];
        options.FileFacts.push_back(read.Read ? read.Facts : ToldFacts(options, file));
        if (options.Verbose) err << FactsLine(options.FileFacts.back()) << "\n";
    }
}

// The points of the two files, paired.
int TakePoints(FitOptions& options, std::ostream& err, bool showProgress) {
    std::array<FitFile, 2> files;
    for (int file = 0; file < 2; ++file) {
        if (!options.Pairs.empty() && file == 1) break;
        const std::string refusal = options.Pairs.empty() ? ReadFitFile(options, file, options.In,
                                                                        files[static_cast<std::size_t>(file)])
                                                          : ReadFitPairs(options, files);
        if (!refusal.empty()) {
            WriteMessages(err);
            return Refuse(err, kUnreadable, refusal);
        }
    }
    const std::vector<Note> read = Notes.List;  // the import begins a list of its own
    std::string question, unknownPose;
    ImportOutcome outcome = ImportOutcome::NotRead;
    const TableFile& target = options.Files[1];
    const std::string unit = target.Unit.empty() || files[1].Read ? "" : ProgramUnit(target.Unit);
    UseUnits(unit.empty() ? options.LengthUnit : unit, target.AngleUnit);
    Dispatch([&] { outcome = Import(RequestOf(options, files, question, unknownPose)); });
    UseUnits(options.LengthUnit, options.AngleUnit);
    Notes.List.insert(Notes.List.begin(), read.begin(), read.end());
    if (showProgress && Headless.Yields > 0) LiveStream(err) << "\r\x1b[K" << std::flush;
    if (outcome != ImportOutcome::Done) {
        WriteMessages(err);
        if (!unknownPose.empty()) return Refuse(err, kWrongUsage, unknownPose);
        if (!question.empty())
            return Refuse(err, kUnreadable,
                          "the import asks a question, and neither --yes nor --no was given:\n  " + question);
        return Refuse(err, kUnreadable, "the points were not read");
    }
    // The delimiter of before is what the user has named.
    if (!options.Delimiter.empty())
        std::erase_if(Notes.List, [](const Note& note) { return note.Code == NoteCode::OldDelimiter; });
    // Orientations take part with the tool vector alone, or in a job that is written.
    if (!options.Tool && options.Save.empty())
        std::erase_if(Notes.List, [](const Note& note) { return note.Code == NoteCode::AngleUnit; });
    WriteMessages(err);
    TellFiles(options, files, err);
    return kDone;
}

// The points and all choices of a job.
int TakeJob(FitOptions& options, JobFileFacts& facts, std::ostream& err) {
    const int status = OpenJob(options.Job, options.Questions, facts, err);
    if (status != kDone) return status;
    // Nothing is calculated from what is wrong with the job: that might end with a refusal of its own.
    if (options.Strict && HasWarnings() && EndsForWarnings(true, err)) return kUnreadable;
    options.Start = Job.PathMCS;
    options.Target = Job.PathOCS;
    options.Match = "the job " + options.Job;
    options.FromTarget = !IsTrue(Job.DirectionMCStoOCS);
    if (options.Tool && Job.RobotABC.Rows < Job.Pairs())
        return Refuse(
            err, kRefused,
            "the job has no orientations for --tool. A job file keeps those of Kuka programs and of quaternions alone: "
            "give the points and the robot program again, or the orientations with --poses");
    if (!options.IsGiven("--parameters")) options.Parameters = "job";
    if (!options.IsGiven("--norm")) options.Norm = NormOfJob().Name;
    return kDone;
}

// The job with its result. The files that it names shall be found from everywhere.
bool SaveJob(const FitOptions& options, const JobFileFacts& facts, std::ostream& out) {
    return Dispatch([&] {
        for (std::string* path : {&Job.PathMCS, &Job.PathOCS})
            if (!path->empty() && !IsStream(*path)) *path = AbsolutePath(*path);
        if (options.Save == "-") {
            out << JobBytes(Job, facts.Views);
            return;
        }
        WriteJobFile(options.Save, facts, options.Questions.value_or(false));
    });
}

// The largest deviation in use against the one that the user lets pass.
int HeldAgainstLimit(const FitOptions& options, std::ostream& err) {
    if (!options.Limit_mm) return kDone;
    const double largest = NormsOfDeviations().Largest;
    if (largest <= *options.Limit_mm) return kDone;
    return Refuse(err, kAboveLimit,
                  "the largest deviation in use, " + PlainText(largest) + " mm, is above --limit " +
                      PlainText(*options.Limit_mm) + " mm");
}

}  // namespace

int RunFit(FitOptions options, std::ostream& out, std::ostream& err, bool colour, bool showProgress) {
    if (options.Decimal) Headless.Decimal = options.Decimal;
    AnswerQuestions(options);
    if (showProgress) ShowProgress(LiveStream(err));
    SetUp(options);
    JobFileFacts job;
    const int taken =
        options.Job.empty() ? TakePoints(options, err, showProgress) : TakeJob(options, job, err);
    if (taken != kDone) return taken;
    const std::string wrong = SelectParameters(options);
    if (!wrong.empty()) return Refuse(err, kWrongUsage, wrong);
    if (const int held = FirstHeldText(); held != 0) {
        const std::string name = HeldParameterName(held);
        return Refuse(err, kUnreadable,
                      "the job holds " + std::string(ParameterName(held)) + " at \"" +
                          Printable(Job.ParamText[static_cast<std::size_t>(held)]) +
                          "\", which is no number; " +
                          (held <= kAngleZtoXY ? "give a value with --hold " + name + "=VALUE, or " : "") +
                          "choose with --parameters which ones float");
    }
    // The unit of the angles has been said with --angle-unit, or by the job, so nobody has to be warned of
    // it.
    Adjustment.AngleUnitsConfirmed = true;
    if (!options.Poses.empty() && !Dispatch([&options] { LoadPoses(options.Poses); }))
        return Refuse(err, kUnreadable, Run.LastPlatformError);
    if (!options.Save.empty()) NoteOrientationsLost(options.Save);
    TakeSigmas(options);
    if (options.Within_mm) PutTolerance(*options.Within_mm, Job);
    int status = Calculate(options, err);
    FitStatistics statistics;
    if (status == kDone && options.Snoop) status = Snoop(options, statistics, err);
    if (showProgress) LiveStream(err) << "\r\x1b[K" << std::flush;
    if (status == kRefused) return status;
    if (WantsStatistics(options) || !options.Report.empty())
        statistics.Of = StatisticsOfResult(LevelsOf(options));
    std::optional<SolutionDetails> details;
    if (options.Details) {
        details = DetailsOfSolution();  // with the inverse
    } else if (options.Inverse) {
        InverseTransformation();
    }
    std::vector<FitExport> exports;
    if (const int refused = MakeExports(options, exports, err); refused != kDone) return refused;
    WriteMessages(err);
    if (EndsForWarnings(options.Strict, err)) return kUnreadable;
    if (!options.Save.empty() && !SaveJob(options, job, out))
        return Refuse(err, kRefused, Run.LastPlatformError);
    // Start is what was transformed, whichever of the files that was.
    FitOptions shown = options;
    if (shown.FromTarget) std::swap(shown.Start, shown.Target);
    switch (shown.Output) {
        case FitOutput::Table:
            if (TakesOutput(options)) break;
            if (options.Protocol) {
                out << CompleteProtocol();
            } else {
                WriteFitTable(shown, details ? &*details : nullptr, statistics, out, colour);
            }
            break;
        case FitOutput::Json:
            WriteFitJson(shown, details ? &*details : nullptr, statistics, out);
            break;
        case FitOutput::Csv:
            WriteFitCsv(shown, out);
            break;
    }
    const auto report = [&] {
        const std::string page = ReportAs(shown, statistics);
        if (shown.Report == "-") {
            out << page;
        } else {
            WriteFile(shown.Report, page);
        }
    };
    if (!shown.Report.empty() && !Dispatch(report)) return Refuse(err, kRefused, Run.LastPlatformError);
    if (const int refused = WriteExports(exports, out, err); refused != kDone) return refused;
    if (!out.flush()) return Refuse(err, kRefused, "the result could not be written to standard output");
    return status == kDone ? HeldAgainstLimit(options, err) : status;
}

}  // namespace corvinade::cli
