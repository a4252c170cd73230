// The import of a job from two files, and the round trip through the clipboard.
#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <optional>

#include "core/controller.h"
#include "core/files.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/refresh.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/units.h"
#include "import/auto_find.h"
#include "import/form_input_files.h"
#include "import/long_import.h"
#include "import/matching.h"
#include "import/point_file.h"
#include "import/robot_files.h"
#include "import/row_notes.h"

namespace {

const std::string kNewLine = kLineEnd;

std::string Lines(std::initializer_list<const char*> lines) {
    std::string text;
    for (const char* line : lines) text += line + kNewLine;
    return text;
}

const std::string& AccuracyText() {
    static const std::string text = Lines(
        {"The accuracy of your Coordinates beetween Start- and Targetsystem is needed to sepperate the Data",
         "If you set it too small, maybe no identically point will be detected.",
         "If you set it too big, maybe points will be detected as identically but they are not.", ""});
    return text;
}

const std::string& DistanceText() {
    static const std::string text =
        Lines({"The process of AutoFinding the indentically points might take a while",
               "If you have more than 100 points it might take several minutes!", "",
               "It works by comparison of distances in both datasets MCS and OCS.",
               "It works well while you have measured data in MCS and OCS File", "",
               "It does not work in some other cases: ",
               "- Object Data is design data (lots of equal distances)",
               "- MCS Data and OCS Data have to big differences", "- To Much Points", "", ""}) +
        AccuracyText();
    return text;
}

const std::string& CoordinateText() {
    static const std::string text =
        Lines(
            {"Identify by coordinate comparison works by comparison",
             "of the coordinates in both datasets MCS and OCS WITHOUT",
             "any transformation. It works quick and easy.", "",
             "It does not work when MCS and OCS do have significant transformation parameters to each other.",
             "", ""}) +
        AccuracyText();
    return text;
}

// Asks for the tolerance of the matching until it is not 0. False when the user gives none.
bool AskEtta(const std::string& text) {
    Run.Etta = 0;
    while (Run.Etta == 0) {
        const auto answer = AskInput(text, "Etta Value", PlainText(0.8));
        if (!answer || answer->empty()) return false;
        Run.Etta = static_cast<float>(NumberFromText(*answer, "Etta Value"));
    }
    return true;
}

void AddPrefix(std::vector<std::string>& names, const char* prefix) {
    for (std::size_t i = 1; i < names.size(); ++i)
        if (!names[i].empty()) names[i].insert(0, prefix);  // an unused element stays without a name
}

MatchingOptions OptionsOfDialog() {
    const FormInputFiles& w = InputFiles;
    MatchingOptions options;
    options.CheckRenameMCS = w.CheckRenameMCS.Value == 1;
    options.CheckRenameOCS = w.CheckRenameOCS.Value == 1;
    options.CheckUseOnlyFirst = w.CheckUseOnlyFirst.Value == 1;
    if (options.CheckUseOnlyFirst && w.OptionByDis.Value == 1)
        options.TextMaxOCS = NumberFromText(w.TextMaxOCS.Text, "Number of OCS points");
    return options;
}

// Sorts and pairs by name. False when the import must stop.
bool MatchByName() {
    MCS_OCS_aufbereiten();
    if (IsTrue(Run.ImportFailed)) return false;
    GetInfoFromData();
    return true;
}

// Reads both files, the target by the reader of its kind. False when the import must stop.
bool ReadBothFiles(bool byID) {
    const InputKind& kind = ChosenKind();
    Einlesen_Neu();
    if (IsTrue(Run.ImportFailed)) return false;
    // The poses of a module bear numbers alone, in its order; so do then the points that pair with them.
    if (byID && IsTrue(Run.IsABBModx))
        for (std::size_t i = 1; i < Job.MCS_Name.size(); ++i) Job.MCS_Name[i] = std::to_string(i);
    if (kind.Read != nullptr) {
        kind.Read();
        Job.PathOCS = Run.PathReader;
    }
    return !IsTrue(Run.ImportFailed);
}

// Pairing by names refuses a double one, the other ways pair the points whatever they are called.
void NoteDoubleNamesOfFiles() {
    NoteDoubleNames(Job.PathMCS, Job.MCS_Name);
    if (!IsTrue(Job.IsParaboloid)) NoteDoubleNames(Job.PathOCS, Job.OCS_Name);
}

// Each way of identifying reads both files and pairs the points. False when the import must stop.
bool ImportByID() {
    return ReadBothFiles(true) && MatchByName();
}

bool ImportByDistance() {
    if (!ReadBothFiles(false)) return false;
    NoteDoubleNamesOfFiles();
    const MatchingOptions options = OptionsOfDialog();
    if (!AskEtta(DistanceText())) return false;
    AddPrefix(Job.MCS_Name, "MCS_");
    AddPrefix(Job.OCS_Name, "OCS_");
    AutoFindPts(options);
    return !IsTrue(Run.ImportFailed) && MatchByName();
}

bool ImportByCoordinate() {
    if (!ReadBothFiles(false)) return false;
    NoteDoubleNamesOfFiles();
    const MatchingOptions options = OptionsOfDialog();
    Job.ScaleX = Job.ScaleY = Job.ScaleZ = 1;
    if (!AskEtta(CoordinateText())) return false;
    if (!options.CheckRenameMCS && !options.CheckRenameOCS) {
        AddPrefix(Job.MCS_Name, "MCS_");
        AddPrefix(Job.OCS_Name, "OCS_");
    }
    PärchenSuchen(options);
    if (IsTrue(Run.ImportFailed) || IsTrue(Run.StopRequested)) return false;
    if (options.CheckRenameMCS) RewritePointFile(Job.PathMCS, Job.MCS_Name, Job.MCS_X, Job.MCS_Y, Job.MCS_Z);
    // A robot program has more in it than points, and no place for their names.
    if (options.CheckRenameOCS && ChosenKind().Read == nullptr)
        RewritePointFile(Job.PathOCS, Job.OCS_Name, Job.OCS_X, Job.OCS_Y, Job.OCS_Z);
    return MatchByName();
}

bool ImportPoints() {
    const FormInputFiles& w = InputFiles;
    if (w.OptionByID.Value == 1 || !w.OptionByID.Enabled) return ImportByID();
    if (w.OptionByDis.Value == 1 && w.OptionByDis.Enabled) return ImportByDistance();
    if (w.OptionByCoordinate.Value == 1 && w.OptionByCoordinate.Enabled) return ImportByCoordinate();
    return false;
}

// Both files must be there; the message names the one that is not.
bool FileIsThere(const std::string& path) {
    if (File_Exist(path)) return true;
    ShowMessage(kNewLine + kNewLine + path + kNewLine + kNewLine + " is not existing");
    return false;
}

// On the way out of an import, however it ends: counts and arrays fit each other, a job that an error has
// left half read is not valid, and the target path that a robot file's import has lent to the start file
// is put back.
struct ImportGuard {
    ImportGuard() = default;
    ImportGuard(const ImportGuard&) = delete;
    ImportGuard& operator=(const ImportGuard&) = delete;
    ~ImportGuard() {
        RepairJobCounts();
        Run.StopRequested = kFalse;  // a stop ends this import, not the calculation after it
        const bool isLent = lends_ && !Run.PathReader.empty() && Job.PathOCS == lent_;
        if (isLent) Job.PathOCS = Run.PathReader;
        if (Whole || std::uncaught_exceptions() == exceptions_) return;
        Run.JobDataValid = Run.TrafoValid = kFalse;
        ProgrammLogik();
    }
    bool Whole = false;  // all points are read and paired

private:
    bool lends_ = !IsTrue(Run.IsDefault);
    std::string lent_ = Job.PathOCS;  // another path is that of another job, opened during the search
    int exceptions_ = std::uncaught_exceptions();
};

// The entry that the dialog shows; without one the first.
const InputKind& KindOfDialog() {
    const int index = InputFiles.ComboOCS_Data.Index;
    return InputKinds()[static_cast<std::size_t>(std::max(index, 0))];
}

// As an import goes on the job becomes one of the kind that the dialog has chosen. Unless the import comes to
// its end the job is again of the kind that it was, with its orientations where its target points are still
// there: a Save must not lose what it had.
class KindOfImport {
public:
    KindOfImport(const InputKind& chosen, JobBeforeImport& before) : before_(before) {
        for (std::size_t i = 0; i < flags_.size(); ++i) {
            flags_[i] = *InputKinds()[i].IsKind;
            *InputKinds()[i].IsKind = kFalse;
        }
        *chosen.IsKind = kTrue;
        Settings.LastDropDownInfoInOCS = static_cast<std::int16_t>(&chosen - InputKinds().data());
    }
    ~KindOfImport() {
        const bool isOtherJob = before_.Overtaken || Run.JobFilePath != jobPath_;
        if (Kept || isOtherJob) return;
        for (std::size_t i = 0; i < flags_.size(); ++i) *InputKinds()[i].IsKind = flags_[i];
        Settings.LastDropDownInfoInOCS = last_;
        before_.RestorePoses();
    }
    KindOfImport(const KindOfImport&) = delete;
    KindOfImport& operator=(const KindOfImport&) = delete;
    bool Kept = false;

private:
    static constexpr std::size_t kKinds = 7;
    JobBeforeImport& before_;
    std::array<Flag, kKinds> flags_{};
    std::int16_t last_ = Settings.LastDropDownInfoInOCS;
    std::string jobPath_ = Run.JobFilePath;
};

// A program gives each of its poses an orientation, which a fit of the tool vector needs.
void NotePairsWithoutOrientation() {
    const int known = std::max(Job.RobotABC.Rows, 0);
    if (ChosenKind().Read == nullptr || known >= Job.nIdent) return;
    AddNote(NoteCode::NoOrientation,
            "Pairs have no orientation, the first is point \"" +
                Printable(Job.MCS_Name[static_cast<std::size_t>(known) + 1]) +
                "\": a tool vector cannot be fitted",
            Run.PathReader, 0, Job.nIdent - known);
}

// A cancelled import leaves the points of before, and all that shows them.
void EndCancelled(JobBeforeImport& before) {
    if (!IsTrue(Run.StopRequested) || LongImport.Overtaken) return;
    before.Restore();
    ProgrammLogik();
    if (IsTrue(Run.JobDataValid)) FuellenHaupttabelle();
}

}  // namespace

void ShowNewPoints() {
    if (IsLoaded("FormInputStatistic")) FORMfüllen();
    if (Main.MenuTransformationCalculation.Checked) {
        UnloadWindow("FormTrafoBerechnung");
        ShowWindow("FormTrafoBerechnung");
        Main.MenuTransformationCalculation.Checked = true;
        Main.Toolbar1_TrafoBerechnung.Value = 1;
    }
    Run.JobDirty = kTrue;
}

void myBtn_OK() {
    FormInputFiles& w = InputFiles;
    if (!w.BundleFile.empty()) {
        const std::string path = w.BundleFile;
        w.BundleFile.clear();
        ReadBundleFile(path);
        return;
    }
    const BusyPointer busy;
    Run.ImportFailed = kFalse;
    const std::array<std::string, 4> before = {Job.PathMCS, Job.PathOCS, Job.NameMCS, Job.NameOCS};
    JobBeforeImport jobBefore;
    Job.PathMCS = w.TextNameMCS.Text;
    Job.PathOCS = w.TextNameOCS.Text;
    const auto leaveJob = [&before] {
        Job.PathMCS = before[0];
        Job.PathOCS = before[1];
        Job.NameMCS = before[2];
        Job.NameOCS = before[3];
    };
    if (!FileIsThere(Job.PathMCS) || !FileIsThere(Job.PathOCS)) return leaveJob();
    Run.PathReader = w.TextNameOCS.Text;
    const InputKind& chosen = KindOfDialog();
    if (&chosen != &InputKinds().front()) Job.PathOCS = Job.PathMCS;
    Job.NameMCS = w.TextRenameMCS.Text;
    Job.NameOCS = w.TextRenameOCS.Text;
    if (IsTrue(Run.JobDataValid) && !IsTrue(Run.OverwriteQuiet)) {
        if (!AskYesNo(
                "This will not add points, it will delete the old imported Points and import the new Points",
                "Overwrite old Points?"))
            return leaveJob();
        if (IsTrue(Run.ColorBarOpen)) UnloadWindow("FormColorBar");
        Initialisieren();
        CloseAllGraphicsWindows();
    }
    if (w.TextNameMCS.Text.empty()) {
        ShowMessage("There is no file for the MCS ");
        return;
    }
    if (w.TextNameOCS.Text.empty()) {
        ShowMessage("There is no file for the OCS ");
        return;
    }

    ForgetNotes();
    KindOfImport kind(chosen, jobBefore);
    ImportGuard guard;
    std::optional<ImportUnderWay> underWay(&jobBefore);
    ++Run.JobGeneration;
    if (!ImportPoints()) return EndCancelled(jobBefore);
    IdentischePkte_Neu();
    if (IsTrue(Run.ImportFailed)) return EndCancelled(jobBefore);
    underWay.reset();
    guard.Whole = kind.Kept = true;
    ForgetBlock();
    NotePairsWithoutOrientation();
    Run.JobDataValid = kTrue;  // the main sheet shows no others
    const std::uint64_t generation = Run.JobGeneration;
    FuellenHaupttabelle();
    // Another job that has been opened during the fill has closed the dialog, and is left as it is.
    if (Run.JobGeneration != generation && !IsLoaded("FormInputFiles")) return;
    ProgrammLogik();
    UpdateAllGraphicsWindows();  // the round trip has left them open
    ShowNewPoints();
    if (IsTrue(Job.IsParaboloid)) {
        EinlesenParaboloidData();
        Job.PathOCS = Run.PathReader;
        ParaboloidNearestTargets();
    }
    Settings.LastMCSRoot = Pfad(Job.PathMCS);
    Settings.LastOCSRoot = Pfad(Job.PathOCS);
    Settings.MCS_FileName = Job.PathMCS;
    Settings.OCS_FileName = Job.PathOCS;
    SettingsSchreiben({"NameMCS", "NameOCS", "LastMCSRoot", "LastOCSRoot", "MCS_FileName", "OCS_FileName",
                       "LastDropDownInfoInOCS"});
    DistanceScale_Refill();
}

// --- The round trip ---------------------------------------------------------------------------------------

namespace {

// A table on the clipboard: four columns start point, four columns target point. False when no line
// holds a point.
bool SplitClipboardTable(std::string_view table, std::string& start, std::string& target) {
    std::string_view line;
    while (CutLine(table, line)) {
        std::array<std::string_view, 8> fields{};
        for (std::string_view& field : fields) {
            const std::size_t tab = line.find('\t');
            field = line.substr(0, tab);
            line = tab == std::string_view::npos ? std::string_view{} : line.substr(tab + 1);
        }
        const auto add = [&fields](std::size_t first, std::string& text) {
            bool holdsSomething = false;
            for (std::size_t i = first; i < first + 4; ++i) holdsSomething |= !fields[i].empty();
            if (!holdsSomething) return;
            for (std::size_t i = first; i < first + 4; ++i) {
                if (i > first) text += '\t';
                text += fields[i];
            }
            text += kLineEnd;
        };
        add(0, start);
        add(4, target);
    }
    return !start.empty() && !target.empty();
}

// Largest minus smallest deviation of the identical points, start after the transformation minus target.
template <class Start, class Target>
double Span(const Start& start, const Target& target) {
    double largest = -1e10;
    double smallest = 1e10;
    for (std::size_t i = 1; i <= static_cast<std::size_t>(Job.nIdent); ++i) {
        const double deviation = TaggedValue(start[i]).value_or(0) - TaggedValue(target[i]).value_or(0);
        largest = std::max(largest, deviation);
        smallest = std::min(smallest, deviation);
    }
    return Job.nIdent == 0 ? 0 : largest - smallest;
}

struct QuietOverwrite {
    QuietOverwrite() { Run.OverwriteQuiet = kTrue; }
    QuietOverwrite(const QuietOverwrite&) = delete;
    QuietOverwrite& operator=(const QuietOverwrite&) = delete;
    ~QuietOverwrite() { Run.OverwriteQuiet = kFalse; }
};

}  // namespace

void ClipboardRoundTrip() {
    const QuietOverwrite quiet;
    std::string start;
    std::string target;
    if (!SplitClipboardTable(ClipboardText(), start, target)) {
        ShowMessage("Fehler beim Einlesen", "Corvinade");
        return;
    }
    if (!Directory_Exist(SettingsFolder())) CreateFolder(SettingsFolder());
    const std::string startPath = JoinPath(SettingsFolder(), "mcs.txt");
    const std::string targetPath = JoinPath(SettingsFolder(), "ocs.txt");
    WriteFile(startPath, EncodeText(start));
    WriteFile(targetPath, EncodeText(target));
    Job.PathMCS = startPath;
    Job.PathOCS = targetPath;

    // The dialog is where an import takes its choices from; here they are those of a new dialog, for
    // two plain point files.
    UnloadWindow("FormInputFiles");
    ShowWindow("FormInputFiles");
    SetIndex(InputFiles.ComboOCS_Data, 0);
    myBtn_OK();
    UnloadWindow("FormInputFiles");
    if (IsTrue(Run.ImportFailed) || !IsTrue(Run.JobDataValid)) return;

    for (std::size_t i = 1; i < Job.UseFlags.size(); ++i) Job.UseFlags[i] = 1;
    myButtonCalculate();

    std::string text = ClipboardText();
    const auto add = [&text](const char* label, double value_mm) {
        text +=
            std::string("\t") + label + "\t" + FormatNumber(value_mm * Units.LengthFactor, Units.FmtLength);
    };
    add("s0 ", CalculationSigmaXYZ());
    add("Spanne x ", Span(Job.TMCS_X, Job.OCS_X));
    add("Spanne y ", Span(Job.TMCS_Y, Job.OCS_Y));
    add("Spanne z ", Span(Job.TMCS_Z, Job.OCS_Z));
    ToClipboard(text);
}
