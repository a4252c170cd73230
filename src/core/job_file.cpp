// Opening and saving of the job.
#include "core/job_file.h"

#include <cstdint>
#include <functional>
#include <utility>

#include "core/changes.h"
#include "core/controller.h"
#include "core/desktop_defaults.h"
#include "core/file_state.h"
#include "core/files.h"
#include "core/form_main.h"
#include "core/job_block.h"
#include "core/job_commands.h"
#include "core/job_notes.h"
#include "core/job_on_disk.h"
#include "core/notes.h"
#include "core/platform.h"
#include "core/pose_spans.h"
#include "core/recovery.h"
#include "core/run.h"
#include "core/units.h"

namespace corvinade::core {

namespace {

// The list takes no view while it is filled, so no handler runs.
void FillViewList(std::vector<std::string> names) {
    Main.ComboSaveView.Items = std::move(names);
    Main.ComboSaveView.Index = -1;
    Main.ComboSaveView.Text.clear();
}

// A longer old file keeps its end behind the new job. A block says something of the job that it was written
// with: that of an old file must not stand behind another job, and nothing stands behind one.
//   size   bytes of the new job; what stands behind so many in the old file is returned
std::string OldEnd(std::size_t size, const std::string& path) {
    if (!JobBlock(Job).empty() || DiskStateOf(path).Stamp.Size <= size) return {};
    const FileBytes old = ReadFile(path);
    if (old.Size <= size || old.View().find(kJobBlockHead) != std::string_view::npos) return {};
    return std::string(old.View().substr(size));
}

constexpr const char* kWithoutBlock =
    "What stands behind the fields of this job is damaged:\r\n\r\n%\r\n\r\n"
    "Do you want to open the job without it?";

bool WantedWithoutBlock(const std::string& fault) {
    std::string question = kWithoutBlock;
    question.replace(question.find('%'), 1, fault);
    return AskYesNo(question);
}

constexpr const char* kChangedOnDisk =
    "The file of this job has been changed by another program since it was read:\r\n\r\n%\r\n\r\n"
    "Do you want to replace it?";

bool MayReplaceChanged(const std::string& path) {
    std::string question = kChangedOnDisk;
    question.replace(question.find('%'), 1, path);
    return AskYesNo(question);
}

// Reads a file; false when the user does not want it read.
bool ReadWithQuestions(const std::string& path, JobFileContent& content) {
    const DiskState state = DiskStateOf(path);
    const FileBytes file = ReadFile(path);
    RememberJobFile(path, state, file.View());
    const JobFileHead head = ReadJobHead(file.View(), path);
    if (!head.Known && !AskYesNo(kNoJobFileQuestion)) return false;
    // The message of the version is shown before the fields are read, so that it stands before what is found
    // wrong with them.
    const std::string message = JobVersionMessage(head.Version);
    if (!message.empty()) ShowMessage(message);
    content = ReadJobBytes(file.View(), path, Job);
    for (std::size_t i = message.empty() ? 0 : 1; i < content.Said.size(); ++i) ShowMessage(content.Said[i]);
    return content.BlockFault.empty() || WantedWithoutBlock(content.BlockFault);
}

// The program is without a job again.
void ForgetPath() {
    Run.JobFilePath.clear();
    Initialisieren();
}

}  // namespace

void TellWhetherOpenElsewhere(const std::string& path) {
    if (!IsOpenElsewhere(path)) return;
    ShowMessage("Another Corvinade has this job open:\r\n\r\n" + path +
                "\r\n\r\nWhoever saves later is asked before the other's changes are replaced.");
}

void NoteJobFile(const JobFileContent& content, const std::string& path) {
    for (const Note& note : content.Noticed) AddNote(note.Code, note.Text, path, note.Line, note.Count);
    if (!content.BlockFault.empty())
        AddNote(NoteCode::BlockLeftOut,
                "What stands behind the fields of the job is damaged and was left out; whether its result "
                "converged, and whether its points determine it, is not known",
                path);
}

namespace {

void Save(const std::string& path, const std::function<bool(const std::string&)>& mayReplace) {
    const BusyPointer busy;
    // What cannot be saved is refused before the file is looked at. A question lets other work in, and what
    // is written then is the job of that time.
    std::size_t size = JobSize(Job, Main.ComboSaveView.Items);
    std::string end;
    bool asked = false;
    const auto ask = [&](const std::string& changed) {
        asked = true;
        return mayReplace(changed);
    };
    ReplaceJobFile(
        path, ask,
        [&] {
            if (asked) size = JobSize(Job, Main.ComboSaveView.Items);
            end = OldEnd(size, path);
        },
        [&](const auto& take) {
            WriteJobBytes(Job, Main.ComboSaveView.Items, take);
            if (!end.empty()) take(end);
        });
    NoteOrientationsLost(path);
    ProgrammLogik();
    LogikLastFileEXIT();
    Run.JobDirty = kFalse;
    JobStandsOnDisk();
    TellWhetherOpenElsewhere(path);
}

}  // namespace

void SaveFileAs(const std::string& path) {
    Save(path, [](const std::string&) { return true; });
}

void SaveUnlessChanged(const std::string& path) {
    Save(path, MayReplaceChanged);
}

void OpenFile(const std::string& path) {
    CloseAllChildForms();
    Initialisieren();
    if (!FileIsThere(path)) {
        ShowMessage("File does not exist; maybe check the drive!?");
        return;
    }
    FillViewList({});
    Job.nSavedViews = 0;  // the views are found by the list alone
    JobFileContent content;
    // A message lets other work in, and the job that it has opened is left as it is.
    const std::uint64_t generation = Run.JobGeneration;
    const auto overtaken = [&generation] { return Run.JobGeneration != generation; };
    try {
        const bool wanted = ReadWithQuestions(path, content);
        if (overtaken()) return;
        if (!wanted) return ForgetPath();
    } catch (const PlatformError&) {
        // A job that is saved later must not replace the file that could not be read.
        if (!overtaken()) ForgetPath();
        throw;
    }
    Job = std::move(content.Job);
    NoteJobFile(content, path);
    NoteMarks(path);
    ++Run.JobGeneration;
    FillViewList(std::move(content.ViewNames));
    // The kinds of target file that a job does not store are not those of the job before.
    Run.IsDefault = Run.IsABBModx = Run.IsFanuc = Run.IsXYZABC = kFalse;
    FindPoseSpans();
    NoteShortNames(path);
    NoteNotFinite(path);
    RhoFestlegung();
    Run.JobDataValid = kTrue;  // the main sheet shows no others
    Changed(What::OpenedJob);
    if (DesktopDefaults.RecentJobs) LogikLastFileEXIT();
    JobStandsOnDisk();
    TellWhetherOpenElsewhere(path);
}

}  // namespace corvinade::core
