// New, Open, Save, Save As and the recent files.
#include "core/job_commands.h"

#include <algorithm>
#include <string>
#include <vector>

#include "core/changes.h"
#include "core/controller.h"
#include "core/files.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/job_on_disk.h"
#include "core/platform.h"
#include "core/recovery.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/window.h"

namespace corvinade::core {

namespace {

constexpr const char* kJobFilter = "cvn Dateien (*.cvn)|*.cvn|Alle Dateien (*.*)|*.*|";
constexpr const char* kSaveFilter = "cvn Datei (*.cvn)|*.cvn";
constexpr const char* kExtension = ".cvn";
constexpr int kSavePause_ms = 1000;

bool IsDefaultJob() {
    return Run.JobFilePath == kDefaultJobPath;
}

FileQuestion JobQuestion(const char* title, const char* filter) {
    return {title, filter, Settings.LastDir, IsDefaultJob() ? "" : Run.JobFilePath};
}

// The folder in which the next dialog begins.
void KeepFolder(const std::string& path) {
    Settings.LastDir = Pfad(path);
    SettingsSchreiben({"LastDir"});
}

// A name as it was typed; one without extension becomes that of a job.
std::string WithExtension(const std::string& path) {
    const std::size_t name = Pfad(path).size();
    return path.find('.', std::min(name + 1, path.size())) == std::string::npos ? path + kExtension : path;
}

// False, with a message, when there is nothing that could be saved.
bool HasData() {
    if (IsTrue(Run.JobDataValid)) return true;
    ShowMessage("There is still no data within Corvinade, so you cant save this job!");
    return false;
}

// Saves under a new name, which is the job's from then on if it could be written there.
void SaveUnder(const std::string& path) {
    struct KeepName {
        std::string Before = Run.JobFilePath;
        ~KeepName() {
            if (!Saved) Run.JobFilePath = Before;
        }
        bool Saved = false;
    } name;
    Run.JobFilePath = path;
    SaveUnlessChanged(path);
    name.Saved = true;
}

// False when the user gave no name, or there is nothing to save.
bool SaveAs() {
    if (!HasData()) return false;
    const auto path = AskSaveFile(JobQuestion("File save as", kSaveFilter));
    if (!path || path->empty()) return false;
    const std::string named = WithExtension(*path);
    KeepFolder(named);
    SaveUnder(named);
    return true;
}

void WriteRecentFiles() {
    SettingsSchreiben({"LastFile1", "LastFile2", "LastFile3", "LastFile4"});
}

}  // namespace

// Whoever answers Yes wants the job kept, so nothing goes on before it has been saved.
bool JobChanged() {
    const std::string question =
        std::string("Changes have been made to the job.") + kLineEnd + kLineEnd + "Do you want to save it?";
    std::vector<std::string> buttons = {"Yes", "No"};
    if (Recovery.On) buttons.emplace_back("Cancel");
    const std::string answer = AskMessage(question, kProgramName, buttons);
    if (answer != "Yes") return answer == "No";
    if (!IsDefaultJob()) {
        SaveUnlessChanged(Run.JobFilePath);
        return true;
    }
    const bool data = IsTrue(Run.JobDataValid);
    if (!SaveAs() && data) throw PlatformError{"The job has not been saved."};
    return true;
}

bool MayGiveUpJob() {
    return !(Recovery.On ? JobHasChanged() : IsTrue(Run.JobDirty)) || JobChanged();
}

void LogikLastFileEXIT() {
    auto& recent = Run.LastFile;
    const auto first = recent.begin() + 1;
    const std::string& path = Run.JobFilePath;
    const bool known = EqualIgnoringCase(path, kDefaultJobPath) ||
                       std::any_of(first, recent.end(),
                                   [&path](const std::string& r) { return EqualIgnoringCase(r, path); });
    const auto place = known ? std::find(first, recent.end(), path) : recent.end() - 1;
    if (place == recent.end()) return;
    std::rotate(first, place, place + 1);
    *first = path;
    WriteRecentFiles();
    ProgrammLogik();
}

void OpenLastProjekt(const std::string& caption) {
    constexpr std::size_t kNumber = 3;  // "&1 "
    if (caption.size() <= kNumber) return;
    const std::string path = caption.substr(kNumber);  // what follows may change the caption
    if (!MayGiveUpJob()) return;
    CloseAllChildForms();
    Run.JobFilePath = path;
    OpenFile(path);
}

void MenuFileNew_Command() {
    if (!MayGiveUpJob()) return;
    const auto path = AskSaveFile(JobQuestion("New File ", kJobFilter));
    if (!path || path->empty()) return;
    Run.JobFilePath = WithExtension(*path);
    RememberNewJobFile(Run.JobFilePath);
    KeepFolder(Run.JobFilePath);
    CloseAllChildForms();
    ShowNow(What::NewJob);
    Run.JobDataValid = kFalse;
    Run.TrafoValid = Run.CalcDone = kFalse;
    ++Run.JobGeneration;
    Changed(What::State);
}

void MenuFileOpen_Command() {
    if (!MayGiveUpJob()) return;
    const BusyPointer busy;
    const auto path = AskOpenFile(JobQuestion("Open File ", kJobFilter));
    if (!path || path->empty()) return;
    KeepFolder(*path);
    Run.JobFilePath = *path;
    CloseAllChildForms();
    OpenFile(*path);
}

void MenuFileSave_Command() {
    if (!HasData()) return;
    if (IsDefaultJob()) {
        SaveAs();
        return;
    }
    const BusyPointer busy;
    Pause(kSavePause_ms);
    // Another job, or none, may have been opened meanwhile; and a main window that has been closed, and has
    // asked for a changed job then, has taken the names of the saved views with it.
    if (!IsTrue(Run.JobDataValid) || !IsLoaded("FormMain")) return;
    if (IsDefaultJob()) {
        SaveAs();
    } else {
        SaveUnlessChanged(Run.JobFilePath);
    }
}

void MenuFileSaveAs_Command() {
    SaveAs();
}

}  // namespace corvinade::core
