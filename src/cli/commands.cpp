// The command line: its commands, options and exit statuses.
#include "cli/commands.h"

#include <ostream>
#include <tuple>

#include "cli/arguments.h"
#include "cli/automate.h"
#include "cli/bundle.h"
#include "cli/distances.h"
#include "cli/export_job.h"
#include "cli/fit.h"
#include "cli/fit_arguments.h"
#include "cli/headless.h"
#include "cli/job_files.h"
#include "cli/messages.h"
#include "cli/named_files.h"
#include "cli/render.h"
#include "cli/transform.h"
#include "cli/trumpet_file.h"
#include "core/controller.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/text.h"

namespace corvinade::cli {

namespace {

// Tells two files that are one; false then.
bool AreApart(const std::vector<NamedFile>& inputs, const std::vector<NamedFile>& outputs,
              std::ostream& err) {
    const std::string wrong = FilesApart(inputs, outputs);
    if (!wrong.empty()) err << wrong << "\n";
    return wrong.empty();
}

struct JobSwitches {
    JobFileOptions Options;
    std::string Decimal;
    bool Yes = false, No = false;
};

void AddJobQuestions(CLI::App& command, JobSwitches& s) {
    auto* yes = command.add_flag("--yes,-y", s.Yes,
                                 "A file without the head of a job file is one of an early version");
    command.add_flag("--no,-n", s.No, "It is none")->excludes(yes);
    AddStrict(command, s.Options.Strict, "Options");
    AddDecimal(command, s.Decimal, "Options");
}

CLI::App* AddInfo(CLI::App& app, JobSwitches& s) {
    CLI::App* info = app.add_subcommand("info", "Tell what a job file holds");
    info->add_option("JOB", s.Options.Path, "Job file of any version")->type_name("FILE.cvn")->required();
    info->add_flag("--json", s.Options.Json, "As JSON, with full precision, in mm and rad");
    AddJobQuestions(*info, s);
    return info;
}

CLI::App* AddConvert(CLI::App& app, JobSwitches& s) {
    CLI::App* convert = app.add_subcommand("convert", "Write a job file of any version as another file");
    convert->add_option("JOB", s.Options.Path, "Job file of any version")->type_name("FILE.cvn")->required();
    convert
        ->add_option("OUT", s.Options.Out,
                     "File to write, its kind by its extension: .cvn a job file of the\n"
                     "present version, .json everything, .csv the points")
        ->type_name("FILE")
        ->check(CheckConvertOut)
        ->required();
    convert->add_flag("--json", s.Options.Json, "Tell as JSON what was written and noticed");
    AddJobQuestions(*convert, s);
    return convert;
}

// A check by a procedure that fills a value as well.
template <class... Values>
CLI::Validator Written(std::string (*take)(const std::string&, Values&...)) {
    return CLI::Validator(
        [take](const std::string& text) {
            std::tuple<Values...> values;
            return std::apply([&](auto&... each) { return take(text, each...); }, values);
        },
        "");
}

CLI::Validator Factor(double least, double most) {
    return CLI::Validator(
        [least, most](const std::string& text) {
            double factor = 0;
            const bool good = TextToNumber(text, '.', factor) && factor >= least && factor <= most;
            return good ? ""
                        : "\"" + Printable(text) + "\" is no factor from " + PlainText(least) + " to " +
                              PlainText(most);
        },
        "");
}

struct RenderSwitches {
    RenderOptions Options;
    std::string Size = "1600x1000", Vectors, Background = "black", Limits, Decimal;
    const CLI::Option* VectorsOption = nullptr;
    bool Yes = false, No = false;
};

CLI::App* AddRender(CLI::App& app, RenderSwitches& s) {
    PictureWish& wish = s.Options.Wish;
    CLI::App* render = app.add_subcommand("render", "Draw the points of a job and their deviations");
    render->add_option("JOB", s.Options.Job, "Job file of any version")->type_name("FILE.cvn")->required();
    render->add_option("--out", s.Options.Out, "File to write, its kind by its extension: .png or .svg")
        ->type_name("FILE")
        ->check(CheckPictureFile)
        ->required();
    render->add_option("--view", wish.View, "iso, top, side, front, or the name of a saved view of the job")
        ->type_name("NAME")
        ->capture_default_str();
    render->add_option("--size", s.Size, "Size of the picture, pixels")
        ->check(Written(SizeFromText))
        ->type_name("WxH")
        ->capture_default_str();
    render->add_option("--zoom", wish.Zoom, "Against the view in which all points fit, or the saved one")
        ->check(Factor(1e-3, 1e3))
        ->type_name("FACTOR")
        ->capture_default_str();
    s.VectorsOption = render
                          ->add_option("--vectors", s.Vectors,
                                       "Also the deviations as lines, SCALE times as long as in the scene;\n"
                                       "without SCALE so long that they can be seen")
                          ->expected(0, 1)
                          ->check(Factor(1e-6, 1e9))
                          ->type_name("[SCALE]");
    render->add_flag("--color-bar", wish.ColorBar, "Also the colour bar");
    render->add_option("--classes", wish.Classes, "Tolerance classes on each side of 0")
        ->check(Between(1, 100))
        ->type_name("N");
    render
        ->add_option("--limits", s.Limits,
                     "Limits of the colours in the job's unit, as in --limits=-0.2,0.5;\n"
                     "default: the largest deviation in use, both sides of 0")
        ->check(Written(LimitsFromText))
        ->type_name("MIN,MAX");
    render->add_flag("--names", wish.Names, "Also the names of the points");
    auto* flags = render->add_flag("--flags", wish.Flags,
                                   "Also flags: those of a saved view that has any, else on the\n"
                                   "points that deviate most");
    render->add_option("--flag-count", wish.FlagCount, "Of the latter, at most")
        ->check(Between(1, 1000))
        ->type_name("N")
        ->needs(flags)
        ->capture_default_str();
    render->add_flag("--labels", wish.AxisLabels, "Also the names of the axes");
    render->add_flag("--targets", wish.Targets, "Also the targets of the identical points");
    render->add_option("--point-size", wish.PointSize, "Pixels; default: after the number of points")
        ->check(Between(1, 100))
        ->type_name("N");
    render->add_option("--background", s.Background, "white, black, or red, green and blue as ffee00")
        ->check(Written(BackgroundFromText))
        ->type_name("COLOUR")
        ->capture_default_str();
    render->add_flag("--json", s.Options.Json, "Tell as JSON what was written and noticed");
    auto* yes = render->add_flag("--yes,-y", s.Yes,
                                 "A file without the head of a job file is one of an early version");
    render->add_flag("--no,-n", s.No, "It is none")->excludes(yes);
    AddStrict(*render, s.Options.Strict, "Options");
    AddDecimal(*render, s.Decimal, "Options");
    return render;
}

int Render(RenderSwitches& s, std::ostream& out, std::ostream& err) {
    RenderOptions& options = s.Options;
    PictureWish& wish = options.Wish;
    SizeFromText(s.Size, wish.Width, wish.Height);
    BackgroundFromText(s.Background, wish.Background.emplace());
    wish.Vectors = s.VectorsOption->count() > 0;
    if (!s.Vectors.empty()) wish.Magnification = Val(s.Vectors);
    if (!s.Limits.empty()) LimitsFromText(s.Limits, options.Limits.emplace());
    options.Decimal = DecimalOf(s.Decimal);
    if (s.Yes || s.No) options.Questions = s.Yes;
    if (!AreApart({{"JOB", options.Job}}, {{"--out", options.Out}}, err)) return kWrongUsage;
    return RunRender(options, out, err);
}

struct DistancesSwitches {
    DistancesOptions Options;
    std::string Decimal;
    bool Yes = false, No = false;
};

CLI::App* AddDistances(CLI::App& app, DistancesSwitches& s) {
    DistancesOptions& options = s.Options;
    CLI::App* distances = app.add_subcommand(
        "distances", "Compare the distances between all pairs of points in the two systems of a job");
    distances->add_option("JOB", options.Job, "Job file of any version")->type_name("FILE.cvn")->required();
    distances->add_flag("--with-result", options.WithResult,
                        "Take the start points after the transformation, not as measured");
    auto* json = distances->add_flag("--json", options.Json, "As JSON, with full precision, in mm");
    distances->add_flag("--csv", options.Csv, "As CSV, in the units of the job")->excludes(json);
    distances
        ->add_option("--trumpet", options.Trumpet,
                     "Also write the differences against the distances as a plot,\n"
                     ".svg or .png")
        ->type_name("FILE")
        ->check(CheckTrumpetFile);
    distances->add_option("--pairs", options.Pairs, "Also write all pairs of points, one line a pair")
        ->type_name("FILE");
    auto* yes = distances->add_flag("--yes,-y", s.Yes,
                                    "A file without the head of a job file is one of an early version");
    distances->add_flag("--no,-n", s.No, "It is none")->excludes(yes);
    AddStrict(*distances, options.Strict, "Options");
    AddDecimal(*distances, s.Decimal, "Options");
    return distances;
}

struct BundleSwitches {
    BundleOptions Options;
    std::string Decimal;
};

CLI::App* AddBundle(CLI::App& app, BundleSwitches& s) {
    BundleOptions& o = s.Options;
    CLI::App* bundle =
        app.add_subcommand("bundle", "Adjust a theodolite network so that it agrees with its distances");
    bundle
        ->add_option("FILE", o.Path,
                     "Network: the sections Theodolite, Object Points and Distances,\n"
                     "each with a line that is skipped, its entries, and END")
        ->type_name("FILE")
        ->required();
    bundle
        ->add_option("--reduce", o.Percent,
                     "Percentage of the object points that take part, 1 to 100;\n"
                     "default: 100")
        ->check(CLI::Validator([](const std::string& text) { return CheckReduce(text); }, ""))
        ->type_name("P");
    bundle
        ->add_option("--to", o.Folder,
                     "Also write the approximate network as BündelOCS.txt and the\n"
                     "adjusted one as BündelMCS.txt into this folder")
        ->check([](const std::string& text) {
            return std::string(text.empty() ? "the name of the folder is empty" : "");
        })
        ->type_name("DIR");
    bundle->add_option("--length-unit", o.LengthUnit, "Unit of the files and of what is shown; default: mm")
        ->transform(UnitByName(LengthUnits()))
        ->type_name(UnitChoices(LengthUnits()));
    bundle->add_option("--digits", o.LengthDigits, "Decimals of lengths, 0 to 6; default: 3")
        ->check(Between(0, 6))
        ->type_name("N");
    bundle->add_flag("--json", o.Json, "Everything as JSON, with full precision, in mm");
    AddStrict(*bundle, o.Strict, "Options");
    AddDecimal(*bundle, s.Decimal, "Options");
    return bundle;
}

struct AutomateSwitches {
    AutomationOptions Options;
    std::string SettingsDir, Decimal, Screen = "800x600";
};

CLI::App* AddAutomate(CLI::App& app, AutomateSwitches& s) {
    CLI::App* automate = app.add_subcommand(
        "automate", "Drive windows and controls by name: one JSON request a line on standard input");
    automate
        ->add_option("--settings-dir", s.SettingsDir, "Folder that stands in for the user's settings folder")
        ->check([](const std::string& text) {
            // A script's variable that is not set must not lead to the user's own settings.
            return std::string(text.empty() ? "the name of the folder is empty" : "");
        })
        ->type_name("DIR");
    automate->add_option("--job", s.Options.Job, "Job file to open at the start")->type_name("FILE");
    automate->add_option("--screen", s.Screen, "Inner size of a new graphics window, pixels")
        ->check(Written(SizeFromText))
        ->type_name("WxH")
        ->capture_default_str();
    AddDecimal(*automate, s.Decimal, "Options", "that of the locale");
    return automate;
}

bool ColourWanted() {
    const auto noColour = EnvironmentVariable("NO_COLOR");
    return !noColour || noColour->empty();
}

int Fit(FitSwitches& s, std::ostream& out, std::ostream& err, bool terminal, bool progress) {
    const std::string wrong = TakeFitSwitches(s);
    if (!wrong.empty()) {
        err << wrong << "\n";
        return kWrongUsage;
    }
    const FitOptions& o = s.Options;
    // A job may be saved where it came from; a page may not.
    if (!AreApart({{"START", o.Start}, {"TARGET", o.Target}, {"--poses", o.Poses}},
                  {{"--save", o.Save}, {"--report", o.Report}}, err) ||
        !AreApart({{"--job", o.Job}}, {{"--report", o.Report}}, err))
        return kWrongUsage;
    return RunFit(s.Options, out, err, terminal && ColourWanted(), progress);
}

int Distances(DistancesSwitches& s, std::ostream& out, std::ostream& err, bool terminal, bool progress) {
    s.Options.Decimal = DecimalOf(s.Decimal);
    if (s.Yes || s.No) s.Options.Questions = s.Yes;
    const DistancesOptions& o = s.Options;
    if (!AreApart({{"JOB", o.Job}}, {{"--trumpet", o.Trumpet}, {"--pairs", o.Pairs}}, err))
        return kWrongUsage;
    return RunDistances(s.Options, out, err, terminal && ColourWanted(), progress);
}

void TakeJobSwitches(JobSwitches& s) {
    s.Options.Decimal = DecimalOf(s.Decimal);
    if (s.Yes || s.No) s.Options.Questions = s.Yes;
}

int Serve(AutomateSwitches& s, std::istream& in, std::ostream& out) {
    if (!s.SettingsDir.empty()) Headless.SettingsDir = s.SettingsDir;
    if (!s.Decimal.empty()) Headless.Decimal = DecimalOf(s.Decimal);
    SizeFromText(s.Screen, s.Options.ScreenWidth, s.Options.ScreenHeight);
    Automate(s.Options, in, out);
    return out ? kDone : kRefused;  // nobody has read the replies
}

// The notes of one command: it begins with none, and those that it has not told by its end are told then.
class ToldNotes {
public:
    explicit ToldNotes(std::ostream& err) : err_(err) {
        ForgetNotes();
        Headless.NotesTold = 0;
    }
    ~ToldNotes() { WriteNotes(err_); }
    ToldNotes(const ToldNotes&) = delete;
    ToldNotes& operator=(const ToldNotes&) = delete;

private:
    std::ostream& err_;
};

}  // namespace

int RunCommandLine(int argc, const char* const* argv, std::istream& in, std::ostream& out, std::ostream& err,
                   bool terminal, bool progress) {
    CLI::App app("Corvinade finds the least-squares 3D transformation between two point sets.",
                 "corvinade-cli");
    app.set_version_flag("--version", "corvinade-cli " + ProgramVersion());
    app.require_subcommand(1);
    app.get_formatter()->column_width(34);
    FitSwitches fitSwitches;
    AutomateSwitches automateSwitches;
    JobSwitches jobSwitches;
    const CLI::App* fit = AddFit(app, fitSwitches);
    const CLI::App* info = AddInfo(app, jobSwitches);
    AddConvert(app, jobSwitches);
    RenderSwitches renderSwitches;
    const CLI::App* render = AddRender(app, renderSwitches);
    DistancesSwitches distancesSwitches;
    const CLI::App* distances = AddDistances(app, distancesSwitches);
    BundleSwitches bundleSwitches;
    const CLI::App* bundle = AddBundle(app, bundleSwitches);
    TransformSwitches transformSwitches;
    const CLI::App* transform = AddTransform(app, transformSwitches);
    ExportSwitches exportSwitches;
    const CLI::App* exported = AddExport(app, exportSwitches);
    const CLI::App* automate = AddAutomate(app, automateSwitches);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error, out, err) == 0 ? kDone : kWrongUsage;
    }
    if (automate->parsed()) return Serve(automateSwitches, in, out);
    // A command gives the same on every machine, and to a script what its other programs read. Only the one
    // above, which stands in for the desktop, has the locale as that has.
    Headless.Decimal = '.';
    const ToldNotes notes(err);
    if (fit->parsed()) {
        for (const CLI::Option* option : fit->get_options())
            if (option->count() > 0) fitSwitches.Options.Given.push_back(option->get_name());
        return Fit(fitSwitches, out, err, terminal, progress);
    }
    if (render->parsed()) return Render(renderSwitches, out, err);
    if (distances->parsed()) return Distances(distancesSwitches, out, err, terminal, progress);
    if (bundle->parsed()) {
        bundleSwitches.Options.Decimal = DecimalOf(bundleSwitches.Decimal);
        return RunBundle(bundleSwitches.Options, out, err, terminal && ColourWanted(), progress);
    }
    if (transform->parsed()) {
        const std::string wrong = TakeTransformSwitches(transformSwitches);
        if (!wrong.empty()) {
            err << wrong << "\n";
            return kWrongUsage;
        }
        const TransformOptions& o = transformSwitches.Options;
        for (const std::string& path : o.In)
            if (path != "-" && o.Out != "-" &&
                !AreApart({{"JOB", o.Job}, {"--with", o.With}, {"IN", path}}, {{"--out", o.Out}}, err))
                return kWrongUsage;
        return RunTransform(o, in, out, err, progress);
    }
    if (exported->parsed()) {
        TakeExportSwitches(exportSwitches);
        const ExportOptions& o = exportSwitches.Options;
        if (!AreApart({{"JOB", o.Job}},
                      {{"--robcad", o.RobCad}, {"--rocal", o.Rocal}, {"--points", o.Points}}, err))
            return kWrongUsage;
        return RunExport(exportSwitches.Options, out, err);
    }
    TakeJobSwitches(jobSwitches);
    if (info->parsed()) return RunInfo(jobSwitches.Options, out, err, terminal && ColourWanted());
    return RunConvert(jobSwitches.Options, out, err);
}

}  // namespace corvinade::cli
