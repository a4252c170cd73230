// The export commands of the main window.
#include "analysis/form_main_exports.h"

#include <optional>

#include "analysis/exports.h"
#include "core/file_state.h"
#include "core/files.h"
#include "core/form_main.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/window.h"
#include "engine/result_state.h"

namespace corvinade::analysis {

namespace {

// A name from a dialog for saving; nothing where there is none.
std::optional<std::string> ExportName(const FileQuestion& question) {
    const auto answer = AskSaveFile(question);
    return !answer || answer->empty() || *answer == "*.*" ? std::nullopt : answer;
}

// One line of text, as it is wanted; nothing when cancelled.
std::optional<std::string> AskName(const char* text, const std::string& preset) {
    return AskInput(text, kProgramName, preset);
}

void StoreFolder(std::string& setting, const char* key, const std::string& path) {
    setting = Pfad(path);
    SettingsSchreiben({key});
}

// What the settings give for a key that is not there.
std::string Stored(const std::string& value) {
    return value == "1000" ? "" : value;
}

}  // namespace

void MenueFileExportRobCad_Click() {
    if (!ResultStands()) {
        ShowMessage("You must make a calculation to export a *.rf File");
        return;
    }
    UnconvergedConsent consent;
    if (!consent.Given()) return;
    ShowMessage(
        "Angle and Distance Output will always be made in Unit witch is set in Menu - Settings - Units");
    auto path = ExportName({"Export RobCad *.rf File", "*.rf", Stored(Settings.LastRobCadRoot), ""});
    if (!path) return;
    if (!UpperAscii(*path).ends_with(".RF")) *path += ".rf";
    StoreFolder(Settings.LastRobCadRoot, "LastRobCadRoot", *path);
    const auto place = AskName("Place of Measurement [exmpl. Wob]", Stored(Settings.Place));
    const auto tool = AskName("Name of Tool / Fixture [exmpl. afo910]", Stored(Settings.ToolName));
    const auto robot = AskName("Name of Roboter [exmpl. r2a]", "");
    Settings.Place = place.value_or("");
    Settings.ToolName = tool.value_or("");
    SettingsSchreiben({"Place", "ToolName"});
    // The dialogs have let events be handled.
    if (!ResultStands() || !consent.Given()) return;
    WriteFile(*path, RobCadText(place.value_or(""), tool.value_or(""), robot.value_or("")));
    StartFile("Open", *path);
}

void MenueFileExportROCAL_Click() {
    if (!ResultStands()) {
        ShowMessage("You must make a calculation to export a *.bas File");
        return;
    }
    UnconvergedConsent consent;
    if (!consent.Given()) return;
    const bool unnamed = Run.JobFilePath == kDefaultJobPath;
    const auto path = ExportName({"Export Rocal *.bas File", "*.bas", Stored(Settings.LastRocalRoot),
                                  unnamed ? "" : WithExtension(Run.JobFilePath, ".bas")});
    if (!path) return;
    StoreFolder(Settings.LastRocalRoot, "LastRocalRoot", *path);
    if (!ResultStands() || !consent.Given()) return;
    WriteFile(*path, RocalText());
}

void MenueOnlyMCStoTilde_Click() {
    const std::string path = WithExtension(Run.JobFilePath, ".txt");
    if (path == "..\\default.txt") {
        ShowMessage("Noch kein Dateiname vergeben; mache nix");
        return;
    }
    UnconvergedConsent consent;
    if (!consent.Given()) return;
    if (FileIsThere(path) && !AskYesNo("File " + path + " is existing.\rWill you replace it?")) return;
    if (!consent.Given()) return;
    const BusyPointer busy;
    WriteFile(path, OnlyMcsText());
}

}  // namespace corvinade::analysis
