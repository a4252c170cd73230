// Job files on the command line: `info`, `convert`, and the job of `fit`.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>

#include "cli/fit_options.h"
#include "cli/job_info.h"
#include "core/rooms.h"

namespace corvinade::cli {

struct JobFileOptions {
    std::string Path;
    std::string Out;  // of convert
    bool Json = false;
    std::optional<bool> Questions;  // --yes or --no
    bool Strict = false;            // no warning may pass
    std::optional<char> Decimal;
};

// Opens a job: Job and the units are its own then. `questions` answers whether a file without the head of a
// job shall be read as one. kDone, or kUnreadable with the reason on `err`.
int OpenJob(const std::string& path, std::optional<bool> questions, JobFileFacts& facts, std::ostream& err);

// The same, or of a result as `fit --json` prints it: the job then holds this alone, see cli/result_file.h.
//   hasPoints  false where it tells nothing of points
int OpenJobOrResult(const std::string& path, std::optional<bool> questions, bool& hasPoints,
                    std::ostream& err);

// Are all parameters of the open job numbers? One that ran away, or was held at 1e999, may have been saved.
bool ResultIsFinite();
inline constexpr const char* kResultNotFinite =
    "the result of the job is not finite; calculate it anew with other parameters or points";

// Before a command goes on with the result of the open job: the notes of its marks, and that it is mirrored,
// which is where the determinant of R K S is below 0.
void NoteResultOfJob(const std::string& path);

// What leaves the program as a result of the open job has to be one: kDone where it converged, or where the
// user has `allowed` another one with --unconverged; else kNotConverged, with the reason on `err`.
int RefuseUnconverged(std::ostream& err, bool allowed);

// Writes the open job with its saved views. Throws PlatformError when that is refused, and where another
// program has changed the file since it was read, unless it may be replaced then.
void WriteJobFile(const std::string& path, const JobFileFacts& facts, bool overChanged);

int RunInfo(const JobFileOptions& options, std::ostream& out, std::ostream& err, bool colour);

// Writes the job as OUT says by its extension: .cvn the present version's file, .json all records, .csv the
// points. Gives the exit status; OUT is written whole or not at all.
int RunConvert(const JobFileOptions& options, std::ostream& out, std::ostream& err);

// "" or why a file cannot be converted to this name.
std::string CheckConvertOut(const std::string& path);

}  // namespace corvinade::cli
