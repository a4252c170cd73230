// The command line: its commands, options and exit statuses.
#include "cli/commands.h"

#include <algorithm>
#include <new>
#include <ostream>
#include <sstream>

#include "cli/arguments.h"
#include "cli/automate.h"
#include "cli/bundle.h"
#include "cli/completion.h"
#include "cli/csv.h"
#include "cli/distances.h"
#include "cli/export_job.h"
#include "cli/fit.h"
#include "cli/fit_arguments.h"
#include "cli/fit_batch.h"
#include "cli/fit_exports.h"
#include "cli/headless.h"
#include "cli/input_bytes.h"
#include "cli/job_files.h"
#include "cli/messages.h"
#include "cli/named_files.h"
#include "cli/render.h"
#include "cli/render_arguments.h"
#include "cli/told.h"
#include "cli/transform.h"
#include "core/controller.h"
#include "core/held_streams.h"
#include "core/job_on_disk.h"
#include "core/notes.h"
#include "core/platform.h"
#include "core/text.h"
#include "paint/trumpet_file.h"

namespace corvinade::cli {

namespace {

// Tells two files that are one; false then.
bool AreApart(const std::vector<NamedFile>& inputs, const std::vector<NamedFile>& outputs,
              std::ostream& err) {
    const std::string wrong = FilesApart(inputs, outputs);
    if (!wrong.empty()) err << wrong << "\n";
    return wrong.empty();
}

// Reads those of the inputs that are streams.
int HoldInputs(const std::vector<std::string>& paths, std::istream& in, std::ostream& err) {
    try {
        for (const std::string& path : paths) HoldStream(path, &in);
    } catch (const PlatformError& error) {
        return Refuse(err, kUnreadable, error.What);
    }
    return kDone;
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

int Render(RenderSwitches& s, std::istream& in, std::ostream& out, std::ostream& err) {
    TakeRenderSwitches(s);
    if (!AreApart({{"JOB", s.Options.Job}}, {{"--out", s.Options.Out}}, err)) return kWrongUsage;
    if (const int status = HoldInputs({s.Options.Job}, in, err); status != kDone) return status;
    return RunRender(s.Options, out, err);
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
    automate->add_flag("--recovery", s.Options.Recovery,
                       "Keep recovery copies beside the settings, as the desktop does");
    automate->add_flag("--desktop-defaults", s.Options.DesktopDefaults,
                       "Begin with the defaults of the desktop, not with those that scripts know");
    AddDecimal(*automate, s.Decimal, "Options", "that of the locale");
    return automate;
}

bool ColourWanted() {
    const auto noColour = EnvironmentVariable("NO_COLOR");
    return !noColour || noColour->empty();
}

int Fit(FitSwitches& s, std::istream& in, std::ostream& out, std::ostream& err, bool terminal,
        bool progress) {
    const std::string wrong = TakeFitSwitches(s);
    if (!wrong.empty()) {
        err << wrong << "\n";
        return kWrongUsage;
    }
    const FitOptions& o = s.Options;
    // A job may be saved where it came from; a page and a form may not stand there.
    std::vector<NamedFile> written = ExportFiles(o);
    written.push_back({"--report", o.Report});
    if (!AreApart({{"--job", o.Job}}, written, err)) return kWrongUsage;
    written.insert(written.begin(), {"--save", o.Save});
    if (!AreApart({{"START", o.Start}, {"TARGET", o.Target}, {"--poses", o.Poses}}, written, err))
        return kWrongUsage;
    const std::string twice = StandardInputTwice({{"START", o.Pairs.empty() ? o.Start : ""},
                                                  {"TARGET", o.Pairs.empty() ? o.Target : ""},
                                                  {"--pairs", o.Pairs},
                                                  {"--job", o.Job},
                                                  {"--poses", o.Poses}});
    if (!twice.empty()) {
        err << twice << "\n";
        return kWrongUsage;
    }
    s.Options.In = &in;
    if (const int status = HoldInputs({o.Job, o.Poses}, in, err); status != kDone) return status;
    return RunFit(s.Options, out, err, terminal && ColourWanted(), progress);
}

int Distances(DistancesSwitches& s, std::istream& in, std::ostream& out, std::ostream& err, bool terminal,
              bool progress) {
    s.Options.Decimal = DecimalOf(s.Decimal);
    if (s.Yes || s.No) s.Options.Questions = s.Yes;
    const DistancesOptions& o = s.Options;
    if (!AreApart({{"JOB", o.Job}}, {{"--trumpet", o.Trumpet}, {"--pairs", o.Pairs}}, err))
        return kWrongUsage;
    for (const NamedFile& file : {NamedFile{"--trumpet", o.Trumpet}, NamedFile{"--pairs", o.Pairs}})
        if (file.Path == "-") {
            err << file.What << " is written to a file: - is none, and ./- one of this name\n";
            return kWrongUsage;
        }
    if (const int status = HoldInputs({o.Job}, in, err); status != kDone) return status;
    return RunDistances(s.Options, out, err, terminal && ColourWanted(), progress);
}

int Export(ExportSwitches& s, std::istream& in, std::ostream& out, std::ostream& err) {
    const std::string wrong = TakeExportSwitches(s);
    if (!wrong.empty()) {
        err << wrong << "\n";
        return kWrongUsage;
    }
    const ExportOptions& o = s.Options;
    const bool named = (o.RobCad + o.Rocal + o.Points).empty() && o.Out != "-";
    if (!AreApart({{"JOB", o.Job}},
                  {{"--robcad", o.RobCad},
                   {"--rocal", o.Rocal},
                   {"--points", o.Points},
                   {"--out", named ? o.Out : ""}},
                  err))
        return kWrongUsage;
    if (const int status = HoldInputs({o.Job}, in, err); status != kDone) return status;
    return RunExport(o, out, err);
}

void TakeJobSwitches(JobSwitches& s) {
    s.Options.Decimal = DecimalOf(s.Decimal);
    if (s.Yes || s.No) s.Options.Questions = s.Yes;
}

int Serve(AutomateSwitches& s, std::istream& in, std::ostream& out, std::ostream& err) {
    if (!s.SettingsDir.empty()) Headless.SettingsDir = s.SettingsDir;
    if (!s.Decimal.empty()) Headless.Decimal = DecimalOf(s.Decimal);
    SizeFromText(s.Screen, s.Options.ScreenWidth, s.Options.ScreenHeight);
    if (!Automate(s.Options, in, out))
        return Refuse(err, kUnreadable, "Cannot read \"standard input\": the stream has broken off");
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

// The switches of all commands, and those that were parsed.
struct Commands {
    FitSwitches FitOf;
    AutomateSwitches AutomateOf;
    JobSwitches JobOf;
    RenderSwitches RenderOf;
    DistancesSwitches DistancesOf;
    BundleSwitches BundleOf;
    TransformSwitches TransformOf;
    ExportSwitches ExportOf;
    bool Quiet = false, RawText = false;
    std::string Shell;
    CLI::App *FitApp, *InfoApp, *ConvertApp, *RenderApp, *DistancesApp, *BundleApp, *TransformApp, *ExportApp,
        *AutomateApp, *CompletionApp;
};

void AddQuiet(CLI::App& command, bool& quiet, const char* group) {
    command.add_flag("--quiet", quiet, "No notes on standard error; errors stay")->group(group);
}

void AddRawText(CLI::App& command, bool& raw, const char* group) {
    command
        .add_flag("--raw-text", raw,
                  "Names in CSV as they are, even where a spreadsheet would take\n"
                  "one for a formula")
        ->group(group);
}

void AddCommands(CLI::App& app, Commands& c) {
    c.FitApp = AddFit(app, c.FitOf);
    c.InfoApp = AddInfo(app, c.JobOf);
    c.ConvertApp = AddConvert(app, c.JobOf);
    c.RenderApp = AddRender(app, c.RenderOf);
    c.DistancesApp = AddDistances(app, c.DistancesOf);
    c.BundleApp = AddBundle(app, c.BundleOf);
    c.TransformApp = AddTransform(app, c.TransformOf);
    c.ExportApp = AddExport(app, c.ExportOf);
    AddQuiet(*c.FitApp, c.Quiet, "Units and output");
    AddRawText(*c.FitApp, c.RawText, "Units and output");
    for (CLI::App* command : {c.ConvertApp, c.DistancesApp}) AddRawText(*command, c.RawText, "Options");
    for (CLI::App* command :
         {c.InfoApp, c.ConvertApp, c.RenderApp, c.DistancesApp, c.BundleApp, c.TransformApp, c.ExportApp})
        AddQuiet(*command, c.Quiet, "Options");
    c.AutomateApp = AddAutomate(app, c.AutomateOf);
    c.CompletionApp =
        app.add_subcommand("completion", "Print what makes a shell complete commands and options");
    c.CompletionApp->add_option("SHELL", c.Shell, "The shell that the script is for")
        ->check(OneOf(CompletionShells()))
        ->type_name(Choices(CompletionShells()))
        ->required();
}

// Runs the command that was parsed.
int RunParsed(Commands& c, std::istream& in, std::ostream& out, std::ostream& err, bool terminal,
              bool progress) {
    const bool colour = terminal && ColourWanted();
    if (c.FitApp->parsed()) {
        if (!c.FitOf.Batch.List.empty()) return RunFitBatch(c.FitOf.Batch, *c.FitApp, err, progress);
        for (const CLI::Option* option : c.FitApp->get_options())
            if (option->count() > 0) c.FitOf.Options.Given.push_back(option->get_name());
        return Fit(c.FitOf, in, out, err, terminal, progress);
    }
    if (c.RenderApp->parsed()) return Render(c.RenderOf, in, out, err);
    if (c.DistancesApp->parsed()) return Distances(c.DistancesOf, in, out, err, terminal, progress);
    if (c.BundleApp->parsed()) {
        c.BundleOf.Options.Decimal = DecimalOf(c.BundleOf.Decimal);
        if (const int status = HoldInputs({c.BundleOf.Options.Path}, in, err); status != kDone) return status;
        return RunBundle(c.BundleOf.Options, out, err, colour, progress);
    }
    if (c.TransformApp->parsed()) {
        const std::string wrong = TakeTransformSwitches(c.TransformOf);
        if (!wrong.empty()) {
            err << wrong << "\n";
            return kWrongUsage;
        }
        const TransformOptions& o = c.TransformOf.Options;
        for (const std::string& path : o.In)
            if (path != "-" && o.Out != "-" &&
                !AreApart({{"JOB", o.Job}, {"--with", o.With}, {"IN", path}}, {{"--out", o.Out}}, err))
                return kWrongUsage;
        if (const int status = HoldInputs({o.Job}, in, err); status != kDone) return status;
        return RunTransform(o, in, out, err, progress);
    }
    if (c.ExportApp->parsed()) return Export(c.ExportOf, in, out, err);
    TakeJobSwitches(c.JobOf);
    if (const int status = HoldInputs({c.JobOf.Options.Path}, in, err); status != kDone) return status;
    if (c.InfoApp->parsed()) return RunInfo(c.JobOf.Options, out, err, colour);
    return RunConvert(c.JobOf.Options, out, err);
}

bool IsGiven(const CLI::App& command, const char* option) {
    const CLI::Option* const found = command.get_option_no_throw(option);
    return found != nullptr && found->count() > 0;
}

// The files and folders that the command line names.
std::vector<std::string> NamedBy(const CLI::App& command) {
    std::vector<std::string> named;
    for (const CLI::Option* option : OptionsOf(command)) {
        if (!TakesFile(*option)) continue;
        for (const std::string& text : option->results()) {
            if (text == "-") continue;
            named.push_back(text);
            if (const std::size_t equals = text.find('='); equals != std::string::npos)
                named.push_back(text.substr(equals + 1));
        }
    }
    return named;
}

// Which argument is empty that is no option's value, as an unset variable of a shell makes; empty where none
// is. The parser would pass over it, or look at it for ever.
std::string EmptyArgument(CLI::App& app, int argc, const char* const* argv) {
    const CLI::App* command = &app;
    for (const CLI::App* one : app.get_subcommands([](const CLI::App*) { return true; }))
        if (argc > 1 && one->get_name() == argv[1]) command = one;
    const auto takesValue = [command](const std::string& text) {
        if (!text.starts_with('-')) return false;
        const CLI::Option* const option = command->get_option_no_throw(text);
        return option != nullptr && option->get_items_expected_max() > 0;
    };
    for (int i = 1; i < argc; ++i)
        if (argv[i][0] == '\0' && !takesValue(argv[i - 1]))
            return "argument " + std::to_string(i) + " is empty" +
                   (i > 1 ? ", behind \"" + Printable(argv[i - 1]) + "\"" : "");
    return "";
}

// Runs it, with what it says kept for its end. An error that nothing has caught is one as well.
int RunForItsEnd(Commands& c, const CLI::App& command, std::istream& in, std::ostream& out, std::ostream& err,
                 bool terminal, bool progress) {
    const bool json = IsGiven(command, "--json"), quiet = c.Quiet;
    std::ostringstream said;
    WatchedOutput watched(out);
    std::ostream result(&watched);
    Telling = {true, quiet, &err};
    int status = kUnreadable;
    try {
        status = RunParsed(c, in, result, said, terminal, progress && !quiet);
    } catch (const PlatformError& error) {
        said << error.What << "\n";
    } catch (const std::bad_alloc&) {
        status = kRefused;
        said << "there is not enough memory for this\n";
    }
    TellAtEnd(status, json, quiet, said.str(), NamedBy(command), watched.Written(), out, err);
    Headless.NotesTold = Notes.List.size();
    Telling = {};
    return status;
}

}  // namespace

int RunCommandLine(int argc, const char* const* argv, std::istream& in, std::ostream& out, std::ostream& err,
                   bool terminal, bool progress) {
    CLI::App app("Corvinade finds the least-squares 3D transformation between two point sets.",
                 "corvinade-cli");
    app.set_version_flag("--version", "corvinade-cli " + ProgramVersion());
    app.require_subcommand(1);
    app.get_formatter()->column_width(34);
    Commands commands;
    AddCommands(app, commands);
    Telling = {};
    ForgetJobFile();
    HeldStreams = {};
    CsvCells = {};
    try {
        if (const std::string empty = EmptyArgument(app, argc, argv); !empty.empty())
            throw CLI::ValidationError(empty);
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const bool json =
            std::any_of(argv, argv + argc, [](const char* text) { return text == std::string("--json"); });
        if (error.get_exit_code() == 0 || !json) return app.exit(error, out, err) == 0 ? kDone : kWrongUsage;
        ForgetNotes();
        WriteErrorJson(kWrongUsage, error.what(), {}, out);
        return kWrongUsage;
    }
    CsvCells.Raw = commands.RawText;
    if (commands.CompletionApp->parsed())
        return (out << CompletionScript(app, commands.Shell)).flush() ? kDone : kRefused;
    if (commands.AutomateApp->parsed()) return Serve(commands.AutomateOf, in, out, err);
    // A command gives the same on every machine, and to a script what its other programs read. Only the one
    // above, which stands in for the desktop, has the locale as that has.
    Headless.Decimal = '.';
    const ToldNotes notes(err);
    const CLI::App& command = *app.get_subcommands().front();
    if (IsGiven(command, "--json") || commands.Quiet)
        return RunForItsEnd(commands, command, in, out, err, terminal, progress);
    return RunParsed(commands, in, out, err, terminal, progress);
}

}  // namespace corvinade::cli
