// The batch window and its run.
#include "analysis/form_batch.h"

#include <array>
#include <bit>
#include <cstdint>

#include "analysis/batch_file.h"
#include "analysis/exports.h"
#include "analysis/form_change_dir.h"
#include "core/file_state.h"
#include "core/files.h"
#include "core/folders.h"
#include "core/job.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/calculation_window.h"

namespace corvinade::analysis {

FormBatch Batch;

namespace {

FormBatch& w = Batch;

const ControlEntry kControls[] = {
    {"LabelMCS", &w.LabelMCS, Label("&MCS = Start Directory")},
    {"TextNameMCSDirectory",
     &w.TextNameMCSDirectory,
     TextBox(),
     {.Change = FormBatch::TextNameMCSDirectory_Change}},
    {"BtnBrowseMCS", &w.BtnBrowseMCS, Button("&Browse..."), {.Click = FormBatch::BtnBrowseMCS_Click}},
    {"BtnEXBrowseMCS", &w.BtnEXBrowseMCS, Button("&Explore"), {.Click = FormBatch::BtnEXBrowseMCS_Click}},
    {"LabelTCS", &w.LabelTCS, Label("&TCS = Target Directory")},
    {"TextNameTCSDirectory", &w.TextNameTCSDirectory, TextBox()},
    {"BtnBrowseTCS", &w.BtnBrowseTCS, Button("B&rowse..."), {.Click = FormBatch::BtnBrowseTCS_Click}},
    {"BtnExBrowseTCS", &w.BtnExBrowseTCS, Button("E&xplore"), {.Click = FormBatch::BtnExBrowseTCS_Click}},
    {"CheckSameAsMCS",
     &w.CheckSameAsMCS,
     CheckBox("&Same as MCS Directory"),
     {.Click = FormBatch::CheckSameAsMCS_Click}},
    {"OptionTransformWithActualCalc", &w.OptionTransformWithActualCalc,
     Option("Transform with the &actual Calculation", 1)},
    {"OptionTransformWithNewCalc", &w.OptionTransformWithNewCalc,
     Option("Transform with a &new Calculation", 1)},
    {"OptionOnlyOnlyMCS", &w.OptionOnlyOnlyMCS, Option("Write &only MCS Points without Partner", 2)},
    {"OptionWriteAll", &w.OptionWriteAll, Option("&Write all Points", 2)},
    {"LabelStatus", &w.LabelStatus, Label("")},
    {"BtnStartBatch", &w.BtnStartBatch, Button("Start Bat&ch"), {.Click = FormBatch::BtnStartBatch_Click}},
    {"BtnCancel", &w.BtnCancel, Button("Cance&l"), {.Click = FormBatch::BtnCancel_Click}},
};

// What the settings give for a key that is not there.
std::string StoredFolder(const std::string& value) {
    return value == "1000" ? "" : value;
}

std::string WithSeparator(const std::string& folder) {
    return folder.empty() ? "" : JoinPath(folder, "");
}

void Browse(Control& text, const char* title) {
    const auto folder = AskFolder(title, text.Text);
    if (folder && w.Window.Loaded) SetText(text, *folder);
}

void Explore(const Control& text) {
    if (!text.Text.empty()) StartFile("explore", text.Text);
}

void StoreChoices(const std::string& in, const std::string& out) {
    Settings.BatchMCSDir = in;
    Settings.BatchTCSDir = out;
    Settings.BatchType = w.OptionTransformWithNewCalc.Value == 1 ? 2 : 1;
    Settings.BatchWriteType = w.OptionWriteAll.Value == 1 ? 2 : 1;
    SettingsSchreiben({"BatchMCSDir", "BatchTCSDir", "BatchType", "BatchWriteType"});
}

// What all results of one run stand on. The numbers by their bits: one that is none still equals itself.
struct Basis {
    std::uint64_t JobGeneration = Run.JobGeneration;
    Flag CalcDone = Run.CalcDone;
    std::array<std::uint64_t, 13> Numbers = std::bit_cast<std::array<std::uint64_t, 13>>(
        std::array{Job.TraX, Job.TraY, Job.TraZ, Job.RotXCopy, Job.RotYCopy, Job.RotZCopy, Job.ScaleX,
                   Job.ScaleY, Job.ScaleZ, Job.AngleXY, Job.Azimuth, Job.AngleZtoXY, Units.LengthFactor});
    std::string FmtLength = Units.FmtLength;
    bool operator==(const Basis&) const = default;
};

// A run under way: events are handled inside it, which may close the window, change the job or its units, or
// calculate once more.
class BatchUnderWay {
public:
    BatchUnderWay() {
        w.Running = true;
        w.BtnStartBatch.Enabled = false;
        w.LabelStatus.Text.clear();  // that of the run before
    }
    ~BatchUnderWay() {
        w.Running = false;
        w.BtnStartBatch.Enabled = true;
    }
    BatchUnderWay(const BatchUnderWay&) = delete;
    BatchUnderWay& operator=(const BatchUnderWay&) = delete;

    // A window that was closed and opened again is another one.
    bool IsOpen() const { return w.Window.Loaded && w.Running; }
    bool HasItsBasis() const { return basis_ == Basis{}; }
    bool StillHolds() const { return IsOpen() && HasItsBasis(); }
    bool GoOn() const {
        YieldToEvents();
        return StillHolds();
    }

private:
    Basis basis_;
};

enum class Overwrite { Yes, All, Cancel };

Overwrite AskOverwrite(const std::string& name) {
    const std::string answer =
        AskMessage("File " + name + kLineEnd + " does allready exist, will you.." + kLineEnd,
                   "File does exist", {"overwrite", "overwrite all ", "Cancel Batch"});
    if (answer == "overwrite all ") return Overwrite::All;
    return answer == "overwrite" ? Overwrite::Yes : Overwrite::Cancel;
}

void RunBatch(const std::string& inFolder, const std::string& outFolder, const BatchUnderWay& batch,
              BatchNotes& notes) {
    std::string folder = inFolder;
    std::vector<std::string> names;
    DateiListe(folder, names);
    bool overwriteAll = false;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string path = JoinPath(folder, names[i]);
        const std::string outPath = JoinPath(outFolder, BatchOutName(names[i]));
        const auto status = [&] {
            w.LabelStatus.Text = "Calculating on File " + std::to_string(i + 1) + " of " +
                                 std::to_string(names.size()) + " Files";
        };
        try {
            const BatchInput input = ReadBatchFile(path);
            if (!batch.StillHolds()) return;
            status();
            if (!batch.GoOn()) return;
            if (!overwriteAll && FileIsThere(outPath)) {
                const Overwrite answer = AskOverwrite(names[i]);
                if (answer == Overwrite::Cancel || !batch.StillHolds()) return;
                overwriteAll = answer == Overwrite::All;
            }
            LineCounts counts;
            if (!WriteBatchFile(
                    input, outPath, [&batch](double) { return batch.GoOn(); }, counts))
                return;
            ++notes.Done;
            if (counts.WithoutNumbers > 0) notes.WithoutNumbers.push_back({path, counts});
        } catch (const PlatformError& error) {
            // One file that cannot be done does not keep the others from it.
            notes.FilesLeft.push_back({path, error.What});
            if (!batch.StillHolds()) return;
            status();
        }
    }
}

void TellNotes(const BatchNotes& notes, bool changed) {
    constexpr std::size_t kMostLines = 15;
    std::string text;
    if (changed)
        text = std::string("The run has ended: the transformation, the job or its units have changed") +
               kLineEnd;
    for (const std::string& line : NotesAsLines(notes, kMostLines)) text += line + kLineEnd;
    if (!text.empty()) ShowMessage(std::to_string(notes.Done) + " files were written" + kLineEnd + text);
}

}  // namespace

const WindowEntry FormBatch_Entry = {
    .Name = "FormBatch",
    .State = &w.Window,
    .Controls = kControls,
    .Fresh = [] { w = FormBatch{}; },
    .Load = FormBatch::Form_Load,
    .Escape = FormBatch::BtnCancel_Click,
    .Stand = WindowStand::Dialog,
};

void DateiListe(std::string& folder, std::vector<std::string>& list) {
    folder = WithSeparator(folder);
    list = FilesOfFolder(folder);
}

void FormBatch::Form_Load() {
    SetText(w.TextNameMCSDirectory, StoredFolder(Settings.BatchMCSDir));
    SetText(w.TextNameTCSDirectory, StoredFolder(Settings.BatchTCSDir));
    SetValue(Settings.BatchType == 2 ? w.OptionTransformWithNewCalc : w.OptionTransformWithActualCalc, 1);
    SetValue(Settings.BatchWriteType == 2 ? w.OptionWriteAll : w.OptionOnlyOnlyMCS, 1);
}

// The target follows while it is the same.
void FormBatch::TextNameMCSDirectory_Change() {
    if (w.CheckSameAsMCS.Value == 1) SetText(w.TextNameTCSDirectory, w.TextNameMCSDirectory.Text);
}

void FormBatch::BtnBrowseMCS_Click() {
    Browse(w.TextNameMCSDirectory, "Choose the MCS = Start Directory");
}
void FormBatch::BtnBrowseTCS_Click() {
    Browse(w.TextNameTCSDirectory, "Choose the TCS = Target Directory");
}
void FormBatch::BtnEXBrowseMCS_Click() {
    Explore(w.TextNameMCSDirectory);
}
void FormBatch::BtnExBrowseTCS_Click() {
    Explore(w.TextNameTCSDirectory);
}

void FormBatch::CheckSameAsMCS_Click() {
    const bool same = w.CheckSameAsMCS.Value == 1;
    if (same) SetText(w.TextNameTCSDirectory, w.TextNameMCSDirectory.Text);
    w.TextNameTCSDirectory.Enabled = w.BtnBrowseTCS.Enabled = !same;
}

void FormBatch::BtnStartBatch_Click() {
    // Within a calculation the parameters are those of a pass.
    if (!IsTrue(Run.CalcDone) || CalculationWindow.Running) {
        ShowMessage("No Transformation calculated");
        return;
    }
    UnconvergedConsent consent;
    if (!consent.Given()) return;
    BatchNotes notes;
    bool changed = false;
    {
        const BusyPointer busy;
        const BatchUnderWay batch;
        const std::string in = WithSeparator(w.TextNameMCSDirectory.Text);
        const std::string out = WithSeparator(w.TextNameTCSDirectory.Text);
        StoreChoices(in, out);
        if (in.empty()) {
            ShowMessage("No MCS Directory choosen");
            return;
        }
        if (out.empty()) {
            ShowMessage("No TCS Directory choosen");
            return;
        }
        RunBatch(in, out, batch, notes);
        changed = batch.IsOpen() && !batch.HasItsBasis();
    }
    TellNotes(notes, changed);
}

void FormBatch::BtnCancel_Click() {
    UnloadWindow("FormBatch");
}

}  // namespace corvinade::analysis
