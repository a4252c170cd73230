// The command line: its commands, options and exit statuses.
#include "cli/commands.h"

#include <ostream>

#include "cli/arguments.h"
#include "cli/automate.h"
#include "cli/automate_screens.h"
#include "cli/fit.h"
#include "cli/fit_arguments.h"
#include "cli/headless.h"
#include "cli/job_files.h"
#include "core/controller.h"
#include "core/platform.h"

namespace {

struct JobSwitches {
    JobFileOptions Options;
    std::string Decimal;
    bool Yes = false, No = false;
};

void AddJobQuestions(CLI::App& command, JobSwitches& s) {
    auto* yes = command.add_flag("--yes,-y", s.Yes,
                                 "A file without the head of a job file is one of an early version");
    command.add_flag("--no,-n", s.No, "It is none")->excludes(yes);
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
    AddJobQuestions(*convert, s);
    return convert;
}

// "800x600"; false when the text is none.
bool SizeFromText(const std::string& text, int& width, int& height) {
    char behind = 0;
    return std::sscanf(text.c_str(), "%9dx%9d%c", &width, &height, &behind) == 2 && width > 0 && height > 0;
}

std::string CheckSizeText(const std::string& text) {
    int width = 0;
    int height = 0;
    if (!SizeFromText(text, width, height)) return "a size is written as 800x600";
    return CheckScreenSize(width, height);
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
        ->check(CheckSizeText)
        ->type_name("WxH")
        ->capture_default_str();
    AddDecimal(*automate, s.Decimal, "Options");
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
    return RunFit(s.Options, out, err, terminal && ColourWanted(), progress);
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
    const CLI::App* convert = AddConvert(app, jobSwitches);
    AddAutomate(app, automateSwitches);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error, out, err) == 0 ? kDone : kWrongUsage;
    }
    if (fit->parsed()) {
        for (const CLI::Option* option : fit->get_options())
            if (option->count() > 0) fitSwitches.Options.Given.push_back(option->get_name());
        return Fit(fitSwitches, out, err, terminal, progress);
    }
    TakeJobSwitches(jobSwitches);
    if (info->parsed()) return RunInfo(jobSwitches.Options, out, err, terminal && ColourWanted());
    if (convert->parsed()) return RunConvert(jobSwitches.Options, err);
    return Serve(automateSwitches, in, out);
}
