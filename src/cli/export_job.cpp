// `corvinade-cli export`.
#include "cli/export_job.h"

#include <ostream>

#include "analysis/exports.h"
#include "cli/arguments.h"
#include "cli/headless.h"
#include "cli/job_files.h"
#include "cli/messages.h"
#include "cli/written_json.h"
#include "core/files.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/window.h"

namespace corvinade::cli {

namespace {

std::string CheckName(const std::string& text) {
    const bool lineEnd = text.find_first_of("\r\n") != std::string::npos;
    return lineEnd ? "a name has no line end in it" : "";
}

}  // namespace

CLI::App* AddExport(CLI::App& app, ExportSwitches& s) {
    ExportOptions& o = s.Options;
    CLI::App* command = app.add_subcommand("export", "Write the result of a job for robot-cell tools");
    command->add_option("JOB", o.Job, "Job file of any version")->type_name("FILE.cvn")->required();
    CLI::Option_group* kind = command->add_option_group("File");
    CLI::Option* frame =
        kind->add_option("--robcad", o.RobCad, "The frame for a simulation system, in the job's units")
            ->type_name("OUT.rf");
    kind->add_option("--rocal", o.Rocal, "The matrix for an offline tool")->type_name("OUT.bas");
    kind->add_option("--points", o.Points, "The transformed start points without a partner")
        ->type_name("OUT.txt");
    kind->require_option(1);
    command->add_option("--place", o.Place, "Place of the measurement, for --robcad, as in Wob")
        ->check(CheckName)
        ->needs(frame)
        ->type_name("NAME");
    command->add_option("--tool", o.Tool, "Tool or fixture, for --robcad, as in afo910")
        ->check(CheckName)
        ->needs(frame)
        ->type_name("NAME");
    command->add_option("--robot", o.Robot, "Robot, for --robcad, as in r2a")
        ->check(CheckName)
        ->needs(frame)
        ->type_name("NAME");
    command->add_flag("--unconverged", o.Unconverged, "Take a result that did not converge too");
    command->add_flag("--json", o.Json, "Tell as JSON what was written and noticed");
    auto* yes = command->add_flag("--yes,-y", s.Yes,
                                  "A file without the head of a job file is one of an early version");
    command->add_flag("--no,-n", s.No, "It is none")->excludes(yes);
    AddStrict(*command, o.Strict, "Options");
    AddDecimal(*command, s.Decimal, "Options",
               "a point, whatever the\nlocale; frame and matrix have a point always");
    return command;
}

void TakeExportSwitches(ExportSwitches& s) {
    s.Options.Decimal = DecimalOf(s.Decimal);
    if (s.Yes || s.No) s.Options.Questions = s.Yes;
}

int RunExport(const ExportOptions& options, std::ostream& out, std::ostream& err) {
    // Frames and matrices go to programs, which take a decimal comma for the one between two numbers.
    if (options.Decimal && !options.Points.empty()) Headless.Decimal = options.Decimal;
    ReadSettingsText(DefaultSettingsText(), "the built-in settings");
    JobFileFacts facts;
    const int status = OpenJob(options.Job, options.Questions, facts, err);
    if (status != kDone) return status;
    const bool calculated = !Job.ParamText[1].empty();
    if (!calculated && !options.RobCad.empty())
        return Refuse(err, kRefused, "You must make a calculation to export a *.rf File");
    if (!calculated && !options.Rocal.empty())
        return Refuse(err, kRefused, "You must make a calculation to export a *.bas File");
    // Their transformed points are the measured ones as yet.
    if (!calculated && !options.Points.empty())
        return Refuse(err, kRefused, "You must make a calculation to export transformed points");
    if (!ResultIsFinite()) return Refuse(err, kRefused, kResultNotFinite);
    if (const int refused = RefuseUnconverged(err, options.Unconverged); refused != kDone) return refused;
    NoteResultOfJob(options.Job);
    const std::string path = options.RobCad + options.Rocal + options.Points;  // one of them
    std::string text;
    const bool made = Dispatch([&options, &text] {
        text = !options.RobCad.empty()  ? RobCadText(options.Place, options.Tool, options.Robot)
               : !options.Rocal.empty() ? RocalText()
                                        : OnlyMcsText();
    });
    Headless.Dialogs.clear();
    if (!made) return Refuse(err, kRefused, Run.LastPlatformError);
    if (EndsForWarnings(options.Strict, err)) return kUnreadable;
    const bool written = Dispatch([&path, &text] { WriteFile(path, text); });
    Headless.Dialogs.clear();
    if (!written) return Refuse(err, kRefused, Run.LastPlatformError);
    return options.Json ? TellWritten("export", options.Job, {path}, out, err) : kDone;
}

}  // namespace corvinade::cli
