// The options of `corvinade-cli fit`.
#include "cli/fit_arguments.h"

#include <cstdint>
#include <limits>

#include "cli/arguments.h"
#include "cli/fit_exports.h"
#include "cli/fit_statistics_arguments.h"
#include "cli/fit_table_arguments.h"
#include "cli/input_bytes.h"
#include "core/numbers.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/monte_carlo.h"
#include "engine/noise.h"
#include "engine/norm_table.h"
#include "engine/presets.h"
#include "import/cloud.h"
#include "import/robot_files.h"
#include "import/table_heading.h"

namespace corvinade::cli {

namespace {

// The import takes its tolerance as a 32-bit float above 0.
std::string CheckTolerance(const std::string& text) {
    double value = 0;
    if (TextToNumber(text, '.', value) && value >= 1e-30 && value <= 1e30) return "";
    return "\"" + Printable(text) + "\" is no length between 1e-30 and 1e30 mm";
}

std::string CheckLimit(const std::string& text) {
    double value = 0;
    if (TextToNumber(text, '.', value) && value >= 0) return "";
    return "\"" + Printable(text) + "\" is no length from 0 on";
}

void AddPointOptions(CLI::App& fit, FitSwitches& s) {
    const char* const group = "Points";
    FitOptions& o = s.Options;
    fit.add_option("--match", o.Match,
                   "How the points that both files hold are found: by equal names,\n"
                   "by equal coordinates, or by equal distances; default: id")
        ->check(OneOf({"id", "coordinate", "distance"}))
        ->type_name("id|coordinate|distance")
        ->group(group);
    fit.add_option("--tolerance", o.Tolerance_mm,
                   "How near is equal, in mm whatever the unit; for coordinate and\n"
                   "distance; default: 0.8")
        ->check(CheckTolerance)
        ->type_name("MM")
        ->group(group);
    fit.add_option("--only-first", o.OnlyFirst, "Take the distances of the first N target points alone")
        ->check(Between(1, 1000000000))
        ->type_name("N")
        ->group(group);
    fit.add_option("--leave-out", o.LeaveOut,
                   "Points that take no part in the fit, or coordinates of them:\n"
                   "P7, P9:z, P4:xy")
        ->type_name("POINT")
        ->group(group);
    fit.add_option("--pairs", o.Pairs,
                   "A text file that holds both systems, in place of START and\n"
                   "TARGET: its heading or --columns names x, y, z of START and X, Y,\n"
                   "Z of TARGET; or control points of a map (.points)")
        ->type_name("FILE")
        ->group(group);
    auto* yes = fit.add_flag("--yes,-y", s.Yes,
                             "Answer the questions of the import with Yes; with --format plain\n"
                             "a file with the other decimal delimiter is then changed")
                    ->group(group);
    fit.add_flag("--no,-n", s.No, "Answer the questions of the import with No")->group(group)->excludes(yes);
    AddStrict(fit, o.Strict, group);
}

void AddModelOptions(CLI::App& fit, FitOptions& o) {
    const char* const group = "Model";
    fit.add_option("--parameters", o.Parameters, PresetsInWords())
        ->check(OneOf(PresetNames()))
        ->type_name(Choices(PresetNames()))
        ->group(group);
    fit.add_option("--norm", o.Norm, NormsInWords())
        ->check(OneOf(NormNames()))
        ->type_name(Choices(NormNames()))
        ->group(group);
    fit.add_option("--hold", o.Hold,
                   "Hold parameters at values, in the units in use:\n"
                   "rotz=0, scalexyz=1.002, trax=12.5")
        ->type_name("NAME=VALUE")
        ->group(group);
}

void AddOutputOptions(CLI::App& fit, FitSwitches& s) {
    const char* const group = "Units and output";
    FitOptions& o = s.Options;
    fit.add_option("--length-unit", o.LengthUnit,
                   "Unit of what is shown, and of files that say none; default: mm")
        ->transform(UnitByName(LengthUnits()))
        ->type_name(UnitChoices(LengthUnits()))
        ->group(group);
    fit.add_option("--angle-unit", o.AngleUnit, "Unit of angles; default: deg")
        ->transform(UnitByName(AngleUnits()))
        ->type_name(UnitChoices(AngleUnits()))
        ->group(group);
    fit.add_option("--digits", o.LengthDigits, "Decimals of lengths, 0 to 6; default: 3")
        ->check(Between(0, 6))
        ->type_name("N")
        ->group(group);
    fit.add_option("--angle-digits", o.AngleDigits, "Decimals of angles, 0 to 6; default: 4")
        ->check(Between(0, 6))
        ->type_name("N")
        ->group(group);
    fit.add_flag("--long-scales", o.ScaleDigits, "Scales with 12 decimals instead of 6")->group(group);
    auto* inverse = fit.add_flag("--inverse", o.Inverse,
                                 "Also the inverse transformation, and the parameters of the model\n"
                                 "that reproduce it")
                        ->group(group);
    auto* json = fit.add_flag("--json", s.Json, "Everything as JSON, with full precision, in mm and rad")
                     ->group(group);
    fit.add_flag("--no-points", o.NoPoints, "JSON without its points")->group(group)->needs(json);
    fit.add_option("--report", o.Report,
                   "Also write a report: a page with plots (*.html), the pages of the\n"
                   "desktop's report (*.pdf), or its tables (*.csv)")
        ->type_name("FILE")
        ->check([](const std::string& path) {
            return std::string(path.empty() ? "a file name is expected" : "");
        })
        ->group(group);
    fit.add_flag("--csv", s.Csv, "The points as CSV, in the units in use")
        ->group(group)
        ->excludes(json)
        ->excludes(inverse)
        ->excludes(fit.get_option("--monte-carlo"));
    fit.add_option("--limit", o.Limit_mm,
                   "End with status 5, behind all output, where the largest deviation\n"
                   "of a coordinate in use is above it, in mm whatever the unit")
        ->check(CheckLimit)
        ->type_name("MM")
        ->group(group);
    fit.add_option("--within", o.Within_mm,
                   "Say pass or fail: whether each coordinate in use deviates by no\n"
                   "more, in mm whatever the unit; --save keeps it in the job. The\n"
                   "status is that of --limit all the same")
        ->check(CheckTolerance)
        ->type_name("MM")
        ->group(group);
}

void AddExportOptions(CLI::App& fit, FitOptions& o) {
    const char* const group = "Units and output";
    auto* exports = fit.add_option("--export", o.Exports,
                                   "Also write the result in a form of export --as; - is standard\n"
                                   "output, in place of the table; may be given several times")
                        ->check(CheckFitExport)
                        ->allow_extra_args(false)
                        ->type_name("FORM=FILE|FORM=-")
                        ->group(group);
    fit.add_flag("--unconverged", o.Unconverged, "--export takes a result that did not converge too")
        ->group(group)
        ->needs(exports);
}

// One number for all axes, or three behind commas; "" when the text is neither.
std::string TakeNoise(const std::string& text, std::array<double, 3>& noise_mm) {
    std::vector<double> values;
    if (!TakeNumbers(text, 0, 1e6, values))
        return "\"" + Printable(text) + "\" is no list of lengths from 0 to 1e6 mm";
    if (values.size() != 1 && values.size() != 3)
        return "\"" + Printable(text) + "\" is neither one length nor three with commas between";
    for (std::size_t axis = 0; axis < 3; ++axis) noise_mm[axis] = values[values.size() == 1 ? 0 : axis];
    return "";
}

void AddMonteCarloOptions(CLI::App& fit, FitOptions& o) {
    const char* const group = "Monte Carlo";
    auto* runs = fit.add_option("--monte-carlo", o.MonteCarloRuns,
                                "Repeat the fit N times with noise on the start points, and tell\n"
                                "the spread of each parameter")
                     ->check(Between(2, kMostMonteCarloRuns))
                     ->type_name("N")
                     ->group(group);
    auto* sigma = fit.add_option_function<std::string>(
                         "--sigma", [&o](const std::string& text) { TakeNoise(text, o.Noise_mm); },
                         "Standard deviation of the noise in x, y and z, in mm whatever the\n"
                         "unit; one number for all three")
                      ->check([](const std::string& text) {
                          std::array<double, 3> noise_mm{};
                          return TakeNoise(text, noise_mm);
                      })
                      ->type_name("SX,SY,SZ")
                      ->group(group)
                      ->needs(runs);
    runs->needs(sigma);
    o.Seed = kUsualSeed;
    fit.add_option("--seed", o.Seed, "Begin the random numbers elsewhere; equal seeds give equal results")
        ->check(Between(0, std::numeric_limits<std::uint32_t>::max()))
        ->type_name("K")
        ->group(group)
        ->needs(runs);
}

// What stands in place of points that fall on their targets.
void AddRobotOptions(CLI::App& fit, FitOptions& o) {
    fit.add_option("--as", o.TargetKind, kInputKindsInWords)
        ->check(OneOf(TargetKindNames()))
        ->type_name(Choices(TargetKindNames()))
        ->group("Points");
    fit.add_option("--names", o.Names,
                   "Names of the poses of a robot program: the numbers of their turn,\n"
                   "or those of the program; default: program where names in START\n"
                   "match them")
        ->check(OneOf({"number", "program"}))
        ->type_name("number|program")
        ->group("Points");
    fit.add_option("--select", o.Select,
                   "Take these poses of a robot program alone, by the names of the\n"
                   "program, in capital letters or not")
        ->allow_extra_args(false)
        ->type_name("NAME,...")
        ->group("Points");
    const char* const group = "Model";
    auto* distance = fit.add_flag("--r-dist", o.RDist,
                                  "The transformed points need not fall on their targets: all lie at\n"
                                  "the same distance from them, which floats")
                         ->group(group);
    auto* tool = fit.add_flag("--tool", o.Tool,
                              "The targets are the poses of a robot program, see --as, or of a job\n"
                              "of one: all points lie at the same tool vector from them, which\n"
                              "floats")
                     ->group(group)
                     ->excludes(distance);
    fit.add_option("--poses", o.Poses,
                   "The same with the orientations of FILE, a line a pose:\n"
                   "name x y z a b c, angles in the angle unit")
        ->type_name("FILE")
        ->group(group)
        ->excludes(distance)
        ->excludes(tool);
}

// Where the iteration begins, and which way it goes. Names hold blanks and commas, so a value is never
// followed by another one of the same option.
void AddBeginOptions(CLI::App& fit, FitOptions& o) {
    const char* const group = "Model";
    fit.add_option("--start", o.StartValues,
                   "Begin the iteration at values of your own, for parameters that\n"
                   "float, in the units in use: rotz=170")
        ->allow_extra_args(false)
        ->type_name("NAME=VALUE")
        ->group(group);
    fit.add_option("--seed-points", o.SeedPoints,
                   "Identical points whose exact transformation the iteration begins\n"
                   "with; names with a comma one by one, the option before each;\n"
                   "default: the first three")
        ->allow_extra_args(false)
        ->type_name("A,B,C")
        ->group(group);
    fit.add_option_function<std::string>(
           "--direction", [&o](const std::string& direction) { o.FromTarget = direction == "ocs-mcs"; },
           "Fit START to TARGET (mcs-ocs), or TARGET to START (ocs-mcs);\n"
           "default: mcs-ocs")
        ->check(OneOf({"mcs-ocs", "ocs-mcs"}))
        ->type_name("mcs-ocs|ocs-mcs")
        ->group(group);
}

void AddFormOptions(CLI::App& fit, FitOptions& o) {
    const char* const group = "Units and output";
    fit.add_flag("--details", o.Details,
                 "Also the rotation in five orders of axes, quaternion, matrices, and\n"
                 "the inverse")
        ->group(group)
        ->excludes(fit.get_option("--csv"));
    fit.add_flag("--protocol", o.Protocol, "The complete protocol of the desktop, instead of the table")
        ->group(group)
        ->excludes(fit.get_option("--csv"));
}

// What a job has of its own. (Told as what the option excludes it would make a very long line of the help.)
std::string CheckJobOptions(const FitOptions& o) {
    if (o.Tool && o.Job.empty() && InputKindOf(TargetKindByName(o.TargetKind)).Read == nullptr)
        return "--tool takes the orientations of a robot program: name its kind with --as";
    if (!o.Names.empty() && o.Job.empty() && !InputKindOf(TargetKindByName(o.TargetKind)).ByTurn)
        return "--names is about the poses of robot programs: --as kuka, fanuc or abb";
    if (!o.Select.empty() && o.Job.empty() && InputKindOf(TargetKindByName(o.TargetKind)).Read == nullptr)
        return "--select takes poses of a robot program: name its kind with --as";
    if (TargetKindByName(o.TargetKind) == TargetKind::Shape && o.Match != "id")
        return "--as paraboloid has no target points to pair with: --match does not go with it";
    if (o.Job.empty())
        return o.Start.empty() || o.Target.empty()
                   ? "fit takes START and TARGET, or --pairs FILE, or --job FILE.cvn"
                   : "";
    for (const char* option : {"START", "TARGET", "--pairs", "--columns", "--as", "--names", "--select",
                               "--match", "--tolerance", "--only-first", "--delimiter", "--length-unit",
                               "--angle-unit", "--digits", "--angle-digits", "--direction", "--skip-bad"})
        if (o.IsGiven(option))
            return std::string("--job brings points, units and direction of its own: ") + option +
                   " does not go with it";
    for (const char* name :
         {"format", "columns", "skip", "comment", "delimiter", "decimal", "unit", "angle-unit", "encoding"})
        for (const char* prefix : {"--", "--start-", "--target-"}) {
            // The decimal delimiter of both is that of the output as well.
            const std::string option = std::string(prefix) + name;
            if (option != "--decimal" && o.IsGiven(option))
                return "--job brings points, units and direction of its own: " + option +
                       " does not go with it";
        }
    return "";
}

void AddJobOptions(CLI::App& fit, FitOptions& o) {
    const char* const group = "Job";
    fit.add_option("--job", o.Job,
                   "Fit the points of a job, with its parameters, held values, norm,\n"
                   "seed points and units, instead of START and TARGET; what other\n"
                   "options say of these goes before")
        ->type_name("FILE.cvn")
        ->group(group);
    fit.add_option("--save", o.Save, "Also write a job with the points, all choices and the result")
        ->type_name("FILE.cvn")
        ->check([](const std::string& path) {
            return std::string(path.empty() ? "a file name is expected" : "");
        })
        ->group(group);
}

void AddBatchOptions(CLI::App& fit, BatchOptions& b) {
    const char* const group = "Many fits";
    const auto expected = [](const std::string& path) {
        return std::string(path.empty() ? "a file name is expected" : "");
    };
    auto* batch = fit.add_option("--batch", b.List,
                                 "Run the fits of a list, a line each, in place of START and TARGET:\n"
                                 "its heading names the columns start, target, name, and options\n"
                                 "without their dashes; options given beside it are of all fits")
                      ->check(expected)
                      ->type_name("FILE")
                      ->group(group);
    auto* out = fit.add_option("--out", b.Out,
                               "A line a fit, *.csv or *.jsonl; what stands there as done is\n"
                               "passed over")
                    ->check(expected)
                    ->type_name("FILE")
                    ->group(group)
                    ->needs(batch);
    batch->needs(out);
    fit.add_option("--jobs,-j", b.Jobs, "Fits at once; default: as many as there are processors")
        ->check(Between(1, 1024))
        ->type_name("N")
        ->group(group)
        ->needs(batch);
}

}  // namespace

CLI::App* AddFit(CLI::App& app, FitSwitches& s) {
    CLI::App* fit = app.add_subcommand("fit", "Fit the transformation from one point file to another");
    fit->add_option("START", s.Options.Start, "Point file of the start system, a line a point: name x y z")
        ->type_name("FILE");
    fit->add_option("TARGET", s.Options.Target,
                    "Point file of the target system, or a robot program or a shape,\n"
                    "see --as")
        ->type_name("FILE");
    AddPointOptions(*fit, s);
    AddTableOptions(*fit, s);
    AddModelOptions(*fit, s.Options);
    AddBeginOptions(*fit, s.Options);
    AddRobotOptions(*fit, s.Options);
    AddMonteCarloOptions(*fit, s.Options);
    AddOutputOptions(*fit, s);
    AddExportOptions(*fit, s.Options);
    AddFormOptions(*fit, s.Options);
    AddStatisticsOptions(*fit, s.Options);
    AddJobOptions(*fit, s.Options);
    AddBatchOptions(*fit, s.Batch);
    fit->footer(
        "Examples:\n"
        "  corvinade-cli fit measured.txt nominal.txt --leave-out F09\n"
        "  corvinade-cli fit measured.txt nominal.txt --match distance --tolerance 0.3\n"
        "  corvinade-cli fit measured.txt nominal.txt --parameters 7 --json\n"
        "  corvinade-cli fit measured.txt nominal.txt --monte-carlo 10000 --sigma 0.05\n"
        "  corvinade-cli fit measured.txt program.dat --as kuka --tool\n"
        "  corvinade-cli fit measured.txt shape.txt --as paraboloid\n"
        "  corvinade-cli fit --batch cells.csv --out results.csv --parameters 7\n\n"
        "Exit status: 0 done, 1 refused, 2 wrong usage, 3 an input cannot be read, or\n"
        "with --strict a warning came up, 4 calculated but not converged, 5 a deviation\n"
        "above --limit.");
    return fit;
}

std::string TakeFitSwitches(FitSwitches& s) {
    if (!s.Options.Pairs.empty()) {
        if (!s.Options.Start.empty()) return "--pairs stands in place of START and TARGET";
        if (s.Options.Match != "id" || s.Options.TargetKind != "points")
            return "the points of --pairs are paired already: --match and --as do not go with it";
        s.Options.Start = s.Options.Target = s.Options.Pairs;
    }
    const std::string wrong = TakeTables(s);
    if (!wrong.empty()) return wrong;
    if (s.Yes || s.No) s.Options.Questions = s.Yes;
    s.Options.Output = s.Json ? FitOutput::Json : s.Csv ? FitOutput::Csv : FitOutput::Table;
    s.Options.Inverse |= s.Options.Details;
    if (s.Options.MonteCarloRuns > 0 && !IsLeastSquares(NormByName(s.Options.Norm).Norm))
        return "--monte-carlo goes with --norm l2 alone";
    if (s.Options.Protocol && !s.Json && (s.Options.Statistics || !s.Options.AccuracyAt.empty()))
        return "--protocol stands instead of the table, so --statistics and --accuracy-at go with it in --json alone";
    if (s.Options.Protocol && !s.Json && (s.Options.Inverse || s.Options.MonteCarloRuns > 0))
        return "--protocol stands instead of the table, so --details, --inverse and --monte-carlo go with it in "
               "--json alone";
    if (const std::string against = ExportsAgainst(s.Options); !against.empty()) return against;
    if (const std::string against = CheckStatisticsOptions(s.Options); !against.empty()) return against;
    return CheckJobOptions(s.Options);
}

}  // namespace corvinade::cli
