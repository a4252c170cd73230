// The options of `corvinade-cli fit`.
#include "cli/fit_arguments.h"

#include <cstdint>
#include <limits>

#include "cli/arguments.h"
#include "core/numbers.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/monte_carlo.h"
#include "engine/noise.h"
#include "engine/norm_table.h"
#include "engine/presets.h"
#include "import/robot_files.h"

namespace corvinade::cli {

namespace {

// The import takes its tolerance as a 32-bit float above 0.
std::string CheckTolerance(const std::string& text) {
    double value = 0;
    if (TextToNumber(text, '.', value) && value >= 1e-30 && value <= 1e30) return "";
    return "\"" + Printable(text) + "\" is no length between 1e-30 and 1e30 mm";
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
    AddDecimal(fit, s.Decimal, group);
    fit.add_option("--delimiter", o.Delimiter,
                   "What stands between the fields of a file that does not show it,\n"
                   "as one with blanks alone")
        ->transform(NameOf(DelimiterNames()))
        ->type_name("space|semicolon|colon|star|sharp|tab|comma")
        ->group(group);
    auto* yes = fit.add_flag("--yes,-y", s.Yes,
                             "Answer the questions of the import with Yes; a file with the\n"
                             "other decimal delimiter is then changed")
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
    fit.add_option("--length-unit", o.LengthUnit, "Unit of the files and of what is shown; default: mm")
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
    fit.add_option("--report", o.Report,
                   "Also write a page to look at and to print: parameters, plots, points")
        ->type_name("FILE.html")
        ->check([](const std::string& path) {
            return std::string(path.empty() ? "a file name is expected" : "");
        })
        ->group(group);
    fit.add_flag("--csv", s.Csv, "The points as CSV, in the units in use")
        ->group(group)
        ->excludes(json)
        ->excludes(inverse)
        ->excludes(fit.get_option("--monte-carlo"));
}

// One number for all axes, or three behind commas; "" when the text is neither.
std::string TakeNoise(const std::string& text, std::array<double, 3>& noise_mm) {
    std::vector<double> values;
    std::string_view rest = text;
    for (bool more = true; more;) {
        const std::size_t comma = rest.find(',');
        double value = 0;
        if (!TextToNumber(std::string(rest.substr(0, comma)), '.', value) || !(value >= 0 && value <= 1e6))
            return "\"" + Printable(text) + "\" is no list of lengths from 0 to 1e6 mm";
        values.push_back(value);
        more = comma != std::string_view::npos;
        if (more) rest.remove_prefix(comma + 1);
    }
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

// Numbers behind commas, each from `least` to `most`; false when the text is anything else.
bool TakeNumbers(const std::string& text, double least, double most, std::vector<double>& values) {
    values.clear();
    std::string_view rest = text;
    for (bool more = true; more;) {
        const std::size_t comma = rest.find(',');
        double value = 0;
        if (!TextToNumber(std::string(rest.substr(0, comma)), '.', value) ||
            !(value >= least && value <= most))
            return false;
        values.push_back(value);
        more = comma != std::string_view::npos;
        if (more) rest.remove_prefix(comma + 1);
    }
    return true;
}

// "S" or "SX,SY,SZ"; "" or what is wrong with it.
std::string TakeSigmas(const std::string& text, std::optional<std::array<double, 3>>& sigmas) {
    constexpr double kMost = 1e9;
    std::vector<double> values;
    if (!TakeNumbers(text, 0, kMost, values) || (values.size() != 1 && values.size() != 3))
        return "\"" + Printable(text) +
               "\" is neither one standard deviation from 0 on nor three with commas between";
    sigmas = {values[0], values[values.size() == 1 ? 0 : 1], values[values.size() == 1 ? 0 : 2]};
    return "";
}

std::string TakePlace(const std::string& text, std::array<double, 3>& place) {
    constexpr double kMost = 1e12;
    std::vector<double> values;
    if (!TakeNumbers(text, -kMost, kMost, values) || values.size() != 3)
        return "\"" + Printable(text) + "\" is no point: three coordinates with commas between";
    place = {values[0], values[1], values[2]};
    return "";
}

std::string CheckShare(const std::string& text) {
    double value = 0;
    if (TextToNumber(text, '.', value) && value > 0 && value < 1) return "";
    return "\"" + Printable(text) + "\" is no number between 0 and 1";
}

void AddStatisticsOptions(CLI::App& fit, FitOptions& o) {
    const char* const group = "Statistics";
    const auto addSigma = [&fit, group](const char* name, std::optional<std::array<double, 3>>& sigmas,
                                        const char* text) {
        fit.add_option_function<std::string>(
               name, [&sigmas](const std::string& value) { TakeSigmas(value, sigmas); }, text)
            ->check([](const std::string& value) {
                std::optional<std::array<double, 3>> taken;
                return TakeSigmas(value, taken);
            })
            ->type_name("SX,SY,SZ")
            ->group(group);
    };
    addSigma("--start-sigma", o.StartSigma,
             "Standard deviation of the coordinates of START, in the length unit;\n"
             "one number for all three; 0: free of errors");
    addSigma("--target-sigma", o.TargetSigma, "The same of TARGET");
    fit.add_flag("--statistics", o.Statistics,
                 "Also how far the result can be trusted: accuracies, redundancies,\n"
                 "tests; in JSON for more than 10000 pairs too")
        ->group(group)
        ->excludes(fit.get_option("--csv"));
    fit.add_option("--alpha", o.Alpha,
                   "Error probability of the tests; default: 0.001 for a coordinate, 0.05\n"
                   "for the global test")
        ->check(CheckShare)
        ->type_name("A")
        ->group(group);
    fit.add_option("--power", o.Power,
                   "Probability with which a bias as large as the MDB is found;\n"
                   "default: 0.8")
        ->check(CheckShare)
        ->type_name("P")
        ->group(group);
    fit.add_option("--confidence", o.Confidence, "Probability of the ellipsoids; default: 0.95")
        ->check(CheckShare)
        ->type_name("C")
        ->group(group);
    fit.add_flag("--snoop", o.Snoop,
                 "Take the coordinate out that fails its test by most, fit again, until\n"
                 "none is left")
        ->group(group);
    fit.add_option_function<std::vector<std::string>>(
           "--accuracy-at",
           [&o](const std::vector<std::string>& places) {
               o.AccuracyAt.resize(places.size());
               for (std::size_t i = 0; i < places.size(); ++i) TakePlace(places[i], o.AccuracyAt[i]);
           },
           "Also how accurate this point of the start system is after the\n"
           "transformation; in the length unit")
        ->allow_extra_args(false)
        ->check([](const std::string& text) {
            std::array<double, 3> place{};
            return TakePlace(text, place);
        })
        ->type_name("X,Y,Z")
        ->group(group)
        ->excludes(fit.get_option("--csv"));
}

// What goes with points that coincide alone, and with which norms.
std::string CheckStatisticsOptions(const FitOptions& o) {
    const NormWish norm = NormByName(o.Norm);
    const bool other =
        o.RDist || o.Tool || !o.Poses.empty() || TargetKindByName(o.TargetKind) == TargetKind::Shape;
    for (const char* option : {"--start-sigma", "--target-sigma"})
        if ((other || norm.Exact) && o.IsGiven(option))
            return std::string(option) +
                   " goes with --norm l2, l1 and loo and points that are to coincide alone, not with the exact "
                   "norms, --r-dist, --tool, --poses and --as paraboloid";
    for (const char* option : {"--snoop", "--accuracy-at"})
        if ((other || !IsLeastSquares(norm.Norm)) && o.IsGiven(option))
            return std::string(option) +
                   " goes with --norm l2 and points that are to coincide alone, not with --r-dist, --tool, "
                   "--poses and --as paraboloid";
    if (o.MonteCarloRuns > 0 && (o.StartSigma || o.TargetSigma))
        return "--monte-carlo repeats plain fits: --start-sigma and --target-sigma do not go with it";
    return "";
}

// What stands in place of points that fall on their targets.
void AddRobotOptions(CLI::App& fit, FitOptions& o) {
    fit.add_option("--as", o.TargetKind, kInputKindsInWords)
        ->check(OneOf(TargetKindNames()))
        ->type_name(Choices(TargetKindNames()))
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
    if (TargetKindByName(o.TargetKind) == TargetKind::Shape && o.Match != "id")
        return "--as paraboloid has no target points to pair with: --match does not go with it";
    if (o.Job.empty())
        return o.Start.empty() || o.Target.empty() ? "fit takes START and TARGET, or --job FILE.cvn" : "";
    for (const char* option :
         {"START", "TARGET", "--as", "--match", "--tolerance", "--only-first", "--delimiter", "--length-unit",
          "--angle-unit", "--digits", "--angle-digits", "--direction"})
        if (o.IsGiven(option))
            return std::string("--job brings points, units and direction of its own: ") + option +
                   " does not go with it";
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
    AddModelOptions(*fit, s.Options);
    AddBeginOptions(*fit, s.Options);
    AddRobotOptions(*fit, s.Options);
    AddMonteCarloOptions(*fit, s.Options);
    AddOutputOptions(*fit, s);
    AddFormOptions(*fit, s.Options);
    AddStatisticsOptions(*fit, s.Options);
    AddJobOptions(*fit, s.Options);
    fit->footer(
        "Examples:\n"
        "  corvinade-cli fit measured.txt nominal.txt --leave-out F09\n"
        "  corvinade-cli fit measured.txt nominal.txt --match distance --tolerance 0.3\n"
        "  corvinade-cli fit measured.txt nominal.txt --parameters 7 --json\n"
        "  corvinade-cli fit measured.txt nominal.txt --monte-carlo 10000 --sigma 0.05\n"
        "  corvinade-cli fit measured.txt program.dat --as kuka --tool\n"
        "  corvinade-cli fit measured.txt shape.txt --as paraboloid\n\n"
        "Exit status: 0 done, 1 refused, 2 wrong usage, 3 an input cannot be read, or\n"
        "with --strict a warning came up, 4 calculated but not converged.");
    return fit;
}

std::string TakeFitSwitches(FitSwitches& s) {
    s.Options.Decimal = DecimalOf(s.Decimal);
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
    if (const std::string wrong = CheckStatisticsOptions(s.Options); !wrong.empty()) return wrong;
    return CheckJobOptions(s.Options);
}

}  // namespace corvinade::cli
