// Job files on the command line: `info`, `convert`, and the job of `fit`.
#include "cli/job_files.h"

#include <array>
#include <cmath>
#include <ostream>
#include <sstream>

#include "cli/headless.h"
#include "cli/messages.h"
#include "cli/result_file.h"
#include "cli/written_json.h"
#include "core/files.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/job_notes.h"
#include "core/job_on_disk.h"
#include "core/notes.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/units.h"
#include "core/window.h"
#include "engine/transform.h"
#include "fit/small_svd.h"

namespace corvinade::cli {

namespace {

enum class ConvertTo { Nothing, Job, Json, Csv };

ConvertTo KindOfOut(const std::string& path) {
    const std::string upper = UpperAscii(path);
    if (upper.ends_with(".CVN")) return ConvertTo::Job;
    if (upper.ends_with(".JSON")) return ConvertTo::Json;
    return upper.ends_with(".CSV") ? ConvertTo::Csv : ConvertTo::Nothing;
}

// The digits of scales are no matter of a job, and nobody's settings are read for them.
void TakeBuiltInSettings() {
    ReadSettingsText(DefaultSettingsText(), "the built-in settings");
}

void ReadJob(const std::string& path, std::optional<bool> questions, JobFileFacts& facts,
             std::vector<std::string>& said) {
    const DiskState state = DiskStateOf(path);
    const FileBytes bytes = ReadFile(path);
    RememberJobFile(path, state, bytes.View());
    if (!ReadJobHead(bytes.View(), path).Known && !questions.value_or(false))
        throw PlatformError{path + " does not begin like a job file" +
                            (questions ? "" : "; with --yes it is read as one of an early version")};
    JobFileContent content = ReadJobBytes(bytes.View(), path);
    if (!content.BlockFault.empty() && !questions.value_or(false))
        throw PlatformError{content.BlockFault +
                            (questions ? "" : "; with --yes the job is opened without the block")};
    Job = std::move(content.Job);
    NoteJobFile(content, path);
    facts = {path, JobVersionText(content.Version), bytes.Size, std::move(content.ViewNames)};
    said = std::move(content.Said);
    RhoFestlegung();
    NoteShortNames(path);
    NoteNotFinite(path);
    Run.JobDataValid = kTrue;
}

}  // namespace

int OpenJob(const std::string& path, std::optional<bool> questions, JobFileFacts& facts, std::ostream& err) {
    std::vector<std::string> said;
    const bool read = Dispatch([&] { ReadJob(path, questions, facts, said); });
    Headless.Dialogs.clear();
    for (const std::string& message : said) err << OneParagraph(message) << "\n";
    return read ? kDone : Refuse(err, kUnreadable, Run.LastPlatformError);
}

int OpenJobOrResult(const std::string& path, std::optional<bool> questions, bool& hasPoints,
                    std::ostream& err) {
    hasPoints = true;
    bool isResult = false;
    const bool read = Dispatch([&] {
        const FileBytes bytes = ReadFile(path);
        isResult = LooksLikeResult(bytes.View());
        if (!isResult) return;
        ReadResult(bytes.View(), path, hasPoints);
        Run.JobDataValid = kTrue;
    });
    Headless.Dialogs.clear();
    if (!read) return Refuse(err, kUnreadable, Run.LastPlatformError);
    JobFileFacts facts;
    return isResult ? kDone : OpenJob(path, questions, facts, err);
}

bool ResultIsFinite() {
    for (int parameter = kTraX; parameter < kParameterEnd; ++parameter)
        if (!std::isfinite(ParameterValue(Job, parameter))) return false;
    return true;
}

void NoteResultOfJob(const std::string& path) {
    NoteMarks(path);
    if (Job.ParamText[kTraX].empty()) return;  // nothing has been calculated
    Mat3 K;
    BuildShearMatrix(Job.AngleXY, Job.Azimuth, Job.AngleZtoXY, K);
    const double scales = Job.ScaleX * Job.ScaleY * Job.ScaleZ;
    constexpr double kPlane = 1e-9;  // nearer to 0 it is a plane, which has no other side
    const double handedness = scales < 0 ? -Determinant3(K) : Determinant3(K);
    if (scales != 0 && handedness < -kPlane)
        AddNote(
            NoteCode::Mirrored,
            "The result of the job is mirrored: it carries points onto their mirror image, as no movement "
            "can",
            path);
}

int RefuseUnconverged(std::ostream& err, bool allowed) {
    if (!IsTrue(Job.Unconverged) || allowed) return kDone;
    return Refuse(err, kNotConverged,
                  "the result of the job is of a calculation that did not converge; with --unconverged it is "
                  "taken all the same");
}

void WriteJobFile(const std::string& path, const JobFileFacts& facts, bool overChanged) {
    ReplaceJobFile(
        path,
        [overChanged](const std::string& changed) {
            if (!overChanged)
                throw PlatformError{"Cannot write \"" + changed +
                                    "\": another program has changed it since it was read; with --yes it is "
                                    "replaced"};
            return true;
        },
        [&facts] { JobSize(Job, facts.Views); },
        [&facts](const auto& take) { WriteJobBytes(Job, facts.Views, take); });
}

int RunInfo(const JobFileOptions& options, std::ostream& out, std::ostream& err, bool colour) {
    if (options.Decimal) Headless.Decimal = options.Decimal;
    TakeBuiltInSettings();
    JobFileFacts facts;
    const int status = OpenJob(options.Path, options.Questions, facts, err);
    if (status != kDone) return status;
    NoteResultOfJob(options.Path);
    if (EndsForWarnings(options.Strict, err)) return kUnreadable;
    if (options.Json) {
        WriteJobJson(facts, false, out);
    } else {
        WriteJobTable(facts, out, colour);
    }
    if (!out.flush()) return Refuse(err, kRefused, "the result could not be written to standard output");
    return kDone;
}

std::string CheckConvertOut(const std::string& path) {
    if (KindOfOut(path) != ConvertTo::Nothing) return "";
    return "\"" + Printable(path) + "\" ends neither in .cvn nor in .json nor in .csv";
}

int RunConvert(const JobFileOptions& options, std::ostream& out, std::ostream& err) {
    if (options.Decimal) Headless.Decimal = options.Decimal;
    TakeBuiltInSettings();
    JobFileFacts facts;
    const int status = OpenJob(options.Path, options.Questions, facts, err);
    if (status != kDone) return status;
    NoteResultOfJob(options.Path);
    if (EndsForWarnings(options.Strict, err)) return kUnreadable;
    const bool written = Dispatch([&] {
        if (KindOfOut(options.Out) == ConvertTo::Job)
            return WriteJobFile(options.Out, facts, options.Questions.value_or(false));
        std::ostringstream text;
        if (KindOfOut(options.Out) == ConvertTo::Json) {
            WriteJobJson(facts, true, text);
        } else {
            WriteJobCsv(text);
        }
        WriteFile(options.Out, text.str());
    });
    Headless.Dialogs.clear();
    if (!written) return Refuse(err, kRefused, Run.LastPlatformError);
    return options.Json ? TellWritten("convert", options.Path, {options.Out}, out, err) : kDone;
}

}  // namespace corvinade::cli
