// `corvinade-cli export`.
#include "cli/export_job.h"

#include <ostream>
#include <utility>

#include "analysis/export_forms.h"
#include "cli/arguments.h"
#include "cli/headless.h"
#include "cli/job_files.h"
#include "cli/messages.h"
#include "cli/written_json.h"
#include "core/files.h"
#include "core/job.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/window.h"

namespace corvinade::cli {

namespace {

std::string CheckName(const std::string& text) {
    const bool lineEnd = text.find_first_of("\r\n") != std::string::npos;
    return lineEnd ? "a name has no line end in it" : "";
}

// All forms, as many in a line of the help as it has room for.
std::string FormsInLines() {
    constexpr std::size_t kLongestLine = 68;
    std::string text = "\n", line;
    for (const std::string& name : analysis::ExportFormNames()) {
        if (line.size() + name.size() + 2 > kLongestLine) {
            text += line + "\n";
            line.clear();
        }
        line += name + ", ";
    }
    return text + line.substr(0, line.size() - 2);
}

}  // namespace

CLI::App* AddExport(CLI::App& app, ExportSwitches& s) {
    ExportOptions& o = s.Options;
    CLI::App* command =
        app.add_subcommand("export", "Write a result for robots, simulations and other programs");
    command->add_option("JOB", o.Job, "Job file of any version, or what fit has printed with --json")
        ->type_name("FILE.cvn|RESULT.json")
        ->required();
    CLI::Option_group* kind = command->add_option_group("File");
    CLI::Option* as = kind->add_option("--as", o.As,
                                       "The form of what is written, in mm and degrees unless it has units\n"
                                       "of its own: " +
                                           FormsInLines())
                          ->check(OneOf(analysis::ExportFormNames()))
                          ->type_name("FORM");
    kind->add_option("--robcad", o.RobCad, "The frame for a simulation system, in the job's units")
        ->type_name("OUT.rf");
    kind->add_option("--rocal", o.Rocal, "The matrix for an offline tool")->type_name("OUT.bas");
    kind->add_option("--points", o.Points, "The transformed start points without a partner")
        ->type_name("OUT.txt");
    kind->require_option(1);
    command->add_option("--out", o.Out, "File to write with --as; - is standard output, which is the default")
        ->check([](const std::string& path) {
            return std::string(path.empty() ? "a file name is expected" : "");
        })
        ->needs(as)
        ->type_name("FILE|-");
    command->add_option("--place", o.Place, "Place of the measurement, for a frame, as in Wob")
        ->check(CheckName)
        ->type_name("NAME");
    command->add_option("--tool", o.Tool, "Tool or fixture, for a frame, as in afo910")
        ->check(CheckName)
        ->type_name("NAME");
    command->add_option("--robot", o.Robot, "Robot, for a frame, as in r2a")
        ->check(CheckName)
        ->type_name("NAME");
    command->add_flag("--unconverged", o.Unconverged, "Take a result that did not converge too");
    command->add_flag("--json", o.Json, "Tell as JSON what was written and noticed");
    auto* yes = command->add_flag("--yes,-y", s.Yes,
                                  "A file without the head of a job file is one of an early version");
    command->add_flag("--no,-n", s.No, "It is none")->excludes(yes);
    AddStrict(*command, o.Strict, "Options");
    AddDecimal(*command, s.Decimal, "Options",
               "a point, whatever the\nlocale; all but the points have a point always");
    return command;
}

std::string TakeExportSwitches(ExportSwitches& s) {
    ExportOptions& o = s.Options;
    o.Decimal = DecimalOf(s.Decimal);
    if (s.Yes || s.No) o.Questions = s.Yes;
    // The options that name a file are short for a form and its file.
    const std::pair<const std::string*, const char*> shorts[] = {
        {&o.RobCad, "robcad"}, {&o.Rocal, "rocal"}, {&o.Points, "points"}};
    for (const auto& [path, form] : shorts) {
        if (path->empty()) continue;
        o.As = form;
        o.Out = *path;
    }
    if (o.As != "robcad" && !(o.Place + o.Tool + o.Robot).empty())
        return "--place, --tool and --robot are names in a frame file: they go with --robcad, or --as robcad";
    if (o.Json && o.Out == "-") return "--json tells of a file that was written: name it with --out";
    return "";
}

int RunExport(const ExportOptions& options, std::ostream& out, std::ostream& err) {
    const analysis::ExportForm& form = *analysis::FindExportForm(options.As);
    const std::string wanted = form.Form.Name;
    // The others go to programs, which take a decimal comma for the one between two numbers.
    if (options.Decimal && wanted == "points") Headless.Decimal = options.Decimal;
    ReadSettingsText(DefaultSettingsText(), "the built-in settings");
    bool hasPoints = true;
    const int status = OpenJobOrResult(options.Job, options.Questions, hasPoints, err);
    if (status != kDone) return status;
    if (Job.ParamText[1].empty())
        // Their transformed points are the measured ones as yet.
        return Refuse(
            err, kRefused,
            "You must make a calculation to export " + std::string(wanted == "robcad"   ? "a *.rf File"
                                                                   : wanted == "rocal"  ? "a *.bas File"
                                                                   : wanted == "points" ? "transformed points"
                                                                                        : "its result"));
    if (!ResultIsFinite()) return Refuse(err, kRefused, kResultNotFinite);
    if (const int refused = RefuseUnconverged(err, options.Unconverged); refused != kDone) return refused;
    if (wanted == "points" && !hasPoints)
        return Refuse(err, kRefused, "the result was printed without points (--no-points)");
    const analysis::Placement placement = analysis::PlacementOfJob(options.Job);
    if (const std::string why = WhyNotInForm(form, placement); !why.empty())
        return Refuse(err, kRefused, why);
    NoteResultOfJob(options.Job);
    std::string text;
    const bool made = Dispatch([&] {
        text = ExportText(form, placement, {options.Place, options.Tool, options.Robot});
    });
    Headless.Dialogs.clear();
    if (!made) return Refuse(err, kRefused, Run.LastPlatformError);
    if (EndsForWarnings(options.Strict, err)) return kUnreadable;
    if (options.Out == "-") {
        if (!(out << text).flush())
            return Refuse(err, kRefused, "the result could not be written to standard output");
        return kDone;
    }
    const bool written = Dispatch([&] { WriteFile(options.Out, text); });
    Headless.Dialogs.clear();
    if (!written) return Refuse(err, kRefused, Run.LastPlatformError);
    return options.Json ? TellWritten("export", options.Job, {options.Out}, out, err) : kDone;
}

}  // namespace corvinade::cli
