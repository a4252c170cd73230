// `corvinade-cli fit`: asks for the same import and runs the same calculation as the desktop does.
#include "cli/fit.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <ostream>

#include "cli/fit_output.h"
#include "cli/fit_report.h"
#include "cli/fit_selection.h"
#include "cli/fit_statistics.h"
#include "cli/headless.h"
#include "cli/job_files.h"
#include "cli/messages.h"
#include "core/controller.h"
#include "core/files.h"
#include "core/form_progress_bar.h"
#include "core/job.h"
#include "core/job_notes.h"
#include "core/measurement_sigmas.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/parameter_names.h"
#include "core/platform.h"
#include "core/refresh.h"
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

// Its questions are answered as the user has said beforehand, and stand among the messages with their answer;
// `open` gets the first one that nobody has answered, which counts as No.
ImportRequest RequestOf(const FitOptions& options, std::string& open) {
    ImportRequest request;
    request.StartPath = options.Start;
    request.TargetPath = options.Target;
    request.Kind = TargetKindByName(options.TargetKind);
    request.ByDeclarations = true;
    request.Delimiter = options.Delimiter;
    request.Way = WayOf(options.Match);
    request.Tolerance_mm = options.Tolerance_mm;
    if (options.OnlyFirst > 0) request.OnlyFirst = std::to_string(options.OnlyFirst);
    if (options.Decimal) request.How.Decimal = *options.Decimal;
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
                       " points and the target file " + std::to_string(Job.Target.Count()) + ", " +
                       std::to_string(Job.Pairs()) + " of them identical; a transformation needs at least 2";
    if (std::min(Job.Start.Count(), Job.Target.Count()) < 2) return text;  // no way of pairing finds more
    if (options.Match == "id" && options.TargetKind != "points")
        text += "\n  the poses of a robot program bear the names 1, 2, 3..., those of a text file their own";
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

int Calculate(const FitOptions& options, std::ostream& err) {
    if (Job.Pairs() < 2) return Refuse(err, kRefused, TooFewPairs(options));
    // The points of a job that was switched stand in the other order already.
    if (options.FromTarget && options.Job.empty() && IsTrue(Job.DirectionMCStoOCS)) {
        Job.DirectionMCStoOCS = kFalse;
        MCS_OCS();
    }
    Headless.Dialogs.clear();
    if (!Dispatch([] { IsTrue(Job.IsParaboloid) ? CalculateParaboloid() : ButtonCalcErsatz(); })) {
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

// The sigmas of the files, whichever of them is fitted to the other. What a job has of a side stays where no
// option tells of it.
void TakeSigmas(const FitOptions& options) {
    if (!options.StartSigma && !options.TargetSigma) return;
    const bool switched = !IsTrue(Job.DirectionMCStoOCS);
    MeasurementSigmas sigmas = SigmasOf(Job);
    const auto take = [](const std::optional<std::array<double, 3>>& given,
                         std::optional<SideAccuracy>& side) {
        if (!given) return;
        side = *given;
        for (double& sigma : *side) sigma /= Units.LengthFactor;
    };
    take(options.StartSigma, switched ? sigmas.Target : sigmas.Start);
    take(options.TargetSigma, switched ? sigmas.Start : sigmas.Target);
    PutSigmas(sigmas, Job);
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

// The points of the two files, paired.
int TakePoints(const FitOptions& options, std::ostream& err, bool showProgress) {
    for (const std::string& path : {options.Start, options.Target})
        if (!Dispatch([&path] { CheckReadable(path); }))
            return Refuse(err, kUnreadable, Run.LastPlatformError);
    std::string question;
    ImportOutcome outcome = ImportOutcome::NotRead;
    Dispatch([&] { outcome = Import(RequestOf(options, question)); });
    if (showProgress && Headless.Yields > 0) err << "\r\x1b[K" << std::flush;
    if (outcome != ImportOutcome::Done) {
        WriteMessages(err);
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
        return Refuse(err, kRefused, "the job has no orientations for --tool");
    if (!options.IsGiven("--parameters")) options.Parameters = "job";
    if (!options.IsGiven("--norm")) options.Norm = NormOfJob().Name;
    return kDone;
}

// The job with its result. The files that it names shall be found from everywhere.
bool SaveJob(const FitOptions& options, const JobFileFacts& facts) {
    return Dispatch([&] {
        for (std::string* path : {&Job.PathMCS, &Job.PathOCS})
            if (!path->empty()) *path = AbsolutePath(*path);
        WriteJobFile(options.Save, facts);
    });
}

}  // namespace

int RunFit(FitOptions options, std::ostream& out, std::ostream& err, bool colour, bool showProgress) {
    if (options.Decimal) Headless.Decimal = options.Decimal;
    AnswerQuestions(options);
    if (showProgress) ShowProgress(err);
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
    int status = Calculate(options, err);
    FitStatistics statistics;
    if (status == kDone && options.Snoop) status = Snoop(options, statistics, err);
    if (showProgress) err << "\r\x1b[K" << std::flush;
    if (status == kRefused) return status;
    if (WantsStatistics(options) || !options.Report.empty())
        statistics.Of = StatisticsOfResult(LevelsOf(options));
    std::optional<SolutionDetails> details;
    if (options.Details) {
        details = DetailsOfSolution();  // with the inverse
    } else if (options.Inverse) {
        InverseTransformation();
    }
    WriteMessages(err);
    if (EndsForWarnings(options.Strict, err)) return kUnreadable;
    if (!options.Save.empty() && !SaveJob(options, job)) return Refuse(err, kRefused, Run.LastPlatformError);
    // Start is what was transformed, whichever of the files that was.
    FitOptions shown = options;
    if (shown.FromTarget) std::swap(shown.Start, shown.Target);
    switch (shown.Output) {
        case FitOutput::Table:
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
    if (!shown.Report.empty() && !Dispatch([&] { WriteFile(shown.Report, FitReport(shown, statistics)); }))
        return Refuse(err, kRefused, Run.LastPlatformError);
    if (!out.flush()) return Refuse(err, kRefused, "the result could not be written to standard output");
    return status;
}

}  // namespace corvinade::cli
