// The command line: its commands, options and exit statuses.
#include "cli/commands.h"

#include <CLI/CLI.hpp>
#include <ostream>

#include "cli/automate.h"
#include "cli/fit.h"
#include "cli/headless.h"
#include "core/controller.h"
#include "core/platform.h"
#include "core/units.h"

namespace {

// Names by which the units are known on a command line.
const std::map<std::string, std::string> kLengthNames = {{"millimeter", "millimeter"},
                                                         {"mm", "millimeter"},
                                                         {"meter", "meter"},
                                                         {"m", "meter"},
                                                         {"inch", "inch"},
                                                         {"in", "inch"},
                                                         {"feet", "feet"},
                                                         {"ft", "feet"}};
const std::map<std::string, std::string> kAngleNames = {
    {"degree", "degree"},       {"deg", "degree"},
    {"gon", "grad (gon)"},      {"rad", "rad"},
    {"mrad", "mrad"},           {"arcsecond", "arcsecond"},
    {"arcminute", "arcminute"}, {"dms", kDegreeMinuteSecond}};
const std::map<std::string, std::string> kDelimiterNames = {
    {"space", " "}, {"semicolon", ";"}, {"colon", ":"}, {"star", "*"},
    {"sharp", "#"}, {"tab", "\t"},      {"comma", ","}};

struct FitSwitches {
    FitOptions Options;
    std::string Decimal;
    bool Yes = false, No = false, Json = false, Csv = false;
};

void AddDecimal(CLI::App& command, std::string& decimal) {
    command.add_option("--decimal", decimal, "Decimal delimiter, '.' or ','; without it the locale's")
        ->check(CLI::IsMember({".", ","}))
        ->type_name("CHAR");
}

CLI::App* AddFit(CLI::App& app, FitSwitches& s) {
    CLI::App* fit = app.add_subcommand("fit", "Fit the transformation from one point file to another");
    FitOptions& o = s.Options;
    fit->add_option("START", o.Start, "Point file of the start system, lines of name x y z")->required();
    fit->add_option("TARGET", o.Target, "Point file of the target system")->required();

    const char* const points = "Points";
    fit->add_option("--match", o.Match, "How identical points are found")
        ->check(CLI::IsMember({"id", "coordinate", "distance"}))
        ->capture_default_str()
        ->group(points);
    fit->add_option("--tolerance", o.Tolerance_mm, "Tolerance of matching by coordinate or distance, mm")
        ->check(CLI::PositiveNumber)
        ->capture_default_str()
        ->group(points);
    fit->add_option("--only-first", o.OnlyFirst, "Match by the distances of the first N target points alone")
        ->check(CLI::Range(1, 1000000000))
        ->type_name("N")
        ->group(points);
    fit->add_option("--leave-out", o.LeaveOut,
                    "Point that takes no part, or coordinates of it: P7, P9:z, P4:xy")
        ->type_name("POINT")
        ->group(points);
    fit->add_option("--delimiter", o.Delimiter,
                    "Field delimiter of files that show none, as those with blanks alone")
        ->transform(CLI::CheckedTransformer(kDelimiterNames))
        ->type_name("NAME")
        ->group(points);
    AddDecimal(*fit, s.Decimal);
    auto* yes =
        fit->add_flag("--yes,-y", s.Yes, "Answer the questions of the import with Yes")->group(points);
    fit->add_flag("--no,-n", s.No, "Answer the questions of the import with No")
        ->group(points)
        ->excludes(yes);

    const char* const model = "Model";
    fit->add_option(
           "--parameters", o.Parameters,
           "What floats: level (3 shifts, rotation about z), 6 (rigid), 7 (one scale), 9 (three scales), "
           "12 (affine)")
        ->check(CLI::IsMember({"level", "6", "7", "9", "12"}))
        ->capture_default_str()
        ->group(model);
    fit->add_option("--hold", o.Hold,
                    "Hold a parameter at a value in the units in use: rotz=0, scalexyz=1.002, trax=12.5")
        ->type_name("NAME=VALUE")
        ->group(model);

    const char* const shown = "Units and output";
    fit->add_option("--length-unit", o.LengthUnit, "Unit of the files and of what is shown")
        ->transform(CLI::CheckedTransformer(kLengthNames))
        ->type_name("mm|m|in|ft")
        ->capture_default_str()
        ->group(shown);
    fit->add_option("--angle-unit", o.AngleUnit, "Unit of angles")
        ->transform(CLI::CheckedTransformer(kAngleNames))
        ->type_name("deg|gon|rad|mrad|arcsecond|arcminute|dms")
        ->capture_default_str()
        ->group(shown);
    fit->add_option("--digits", o.LengthDigits, "Digits of lengths behind the point")
        ->check(CLI::Range(0, 6))
        ->capture_default_str()
        ->group(shown);
    fit->add_option("--angle-digits", o.AngleDigits, "Digits of angles behind the point")
        ->check(CLI::Range(0, 6))
        ->capture_default_str()
        ->group(shown);
    fit->add_flag("--long-scales", o.ScaleDigits, "Scales with 12 digits behind the point instead of 6")
        ->group(shown);
    auto* json = fit->add_flag("--json", s.Json, "Everything as JSON, with full precision")->group(shown);
    fit->add_flag("--csv", s.Csv, "The points as CSV")->group(shown)->excludes(json);
    fit->footer(
        "Exit status: 0 done, 1 refused, 2 wrong usage, 3 an input cannot be read,\n"
        "4 calculated but not converged.");
    return fit;
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
        ->type_name("DIR");
    automate->add_option("--job", s.Options.Job, "Job file to open at the start")->type_name("FILE");
    automate->add_option("--screen", s.Screen, "Inner size of a new graphics window, pixels")
        ->check([](const std::string& text) {
            int width = 0;
            int height = 0;
            char behind = 0;
            const int read = std::sscanf(text.c_str(), "%5dx%5d%c", &width, &height, &behind);
            return std::string(read == 2 && width > 0 && height > 0 ? "" : "a size is written as 800x600");
        })
        ->type_name("WxH")
        ->capture_default_str();
    AddDecimal(*automate, s.Decimal);
    return automate;
}

std::optional<char> DecimalOf(const std::string& text) {
    return text.empty() ? std::nullopt : std::optional<char>(text.front());
}

int Fit(FitSwitches& s, std::ostream& out, std::ostream& err, bool terminal, bool progress) {
    s.Options.Decimal = DecimalOf(s.Decimal);
    if (s.Yes || s.No) s.Options.Questions = s.Yes;
    s.Options.Output = s.Json ? FitOutput::Json : s.Csv ? FitOutput::Csv : FitOutput::Table;
    const auto noColour = EnvironmentVariable("NO_COLOR");
    return RunFit(s.Options, out, err, terminal && (!noColour || noColour->empty()), progress);
}

int Serve(AutomateSwitches& s, std::istream& in, std::ostream& out) {
    if (!s.SettingsDir.empty()) Headless.SettingsDir = s.SettingsDir;
    if (!s.Decimal.empty()) Headless.Decimal = DecimalOf(s.Decimal);
    std::sscanf(s.Screen.c_str(), "%dx%d", &s.Options.ScreenWidth, &s.Options.ScreenHeight);
    Automate(s.Options, in, out);
    return kDone;
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
    const CLI::App* fit = AddFit(app, fitSwitches);
    AddAutomate(app, automateSwitches);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error, out, err) == 0 ? kDone : kWrongUsage;
    }
    return fit->parsed() ? Fit(fitSwitches, out, err, terminal, progress) : Serve(automateSwitches, in, out);
}
