// The window in which a network is adjusted.
#include "bundle/form_buendel.h"

#include "bundle/bundle_file.h"
#include "bundle/bundle_run.h"
#include "bundle/open_points.h"
#include "core/controller.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/text.h"
#include "core/units.h"
#include "import/point_file.h"

namespace corvinade::bundle {

FormBündel BündelWindow;

namespace {

FormBündel& w = BündelWindow;

const ControlEntry kControls[] = {
    {"TextReduce", &w.TextReduce, TextBox("100")},
    {"BtnCalculate", &w.BtnCalculate, Button("&Calculate"), {.Click = FormBündel::BtnCalculate_Click}},
    {"Command1", &w.Command1, Button("Try on a co&py"), {.Click = FormBündel::Command1_Click}},
    {"CommandSTOP", &w.CommandSTOP, Button("ST&OP"), {.Click = FormBündel::CommandSTOP_Click}},
    {"TextWhatDO", &w.TextWhatDO, Locked(TextBox())},
    {"TextRUN", &w.TextRUN, Locked(TextBox())},
    {"TextResults", &w.TextResults, Locked(TextBox())},
};

// While a network is adjusted no other adjustment begins, and the one can be stopped.
class Adjusting {
public:
    Adjusting() {
        Set(true);
        Run.StopRequested = kFalse;  // one of before is none of this adjustment
    }
    ~Adjusting() {
        Set(false);
        Run.StopRequested = kFalse;
    }
    Adjusting(const Adjusting&) = delete;
    Adjusting& operator=(const Adjusting&) = delete;

private:
    static void Set(bool on) {
        w.BtnCalculate.Enabled = w.Command1.Enabled = w.TextReduce.Enabled = !on;
        w.CommandSTOP.Enabled = on;
    }
    BusyPointer busy_;
};

// The network, the job and the window of the beginning are those of the end.
std::function<bool()> SameAsNow() {
    return [network = Bundle.Generation, job = Run.JobGeneration] {
        return network == Bundle.Generation && job == Run.JobGeneration && IsLoaded(FormBündel_Entry.Name);
    };
}

// The percentage and the network, ready to be adjusted; nothing where a message has said why not.
std::optional<BundleWork> Prepare() {
    const std::optional<double> percent = PercentageFromText(w.TextReduce.Text);
    if (!percent) return std::nullopt;
    BundleWork work = PrepareBundle(Bundle, *percent);
    const std::string warnings = BundleWarnings(Bundle, work);
    if (!warnings.empty()) ShowMessage(warnings);
    return work;
}

void TellEnd(BundleEnd end, const BundleWork& work) {
    const std::string text = BundleEndText(end, work);
    if (!text.empty()) ShowMessage(text);
}

void BundleRun() {
    std::optional<BundleWork> work = Prepare();
    if (!work) return;
    std::string approximate = NetworkText(Bundle, *work);
    const double unit = Units.LengthFactor;
    const BundleRecord before = Bundle;
    std::string targetPath = WriteNetwork(SettingsFolder(), kBundleTargetFile, approximate);
    SetText(w.TextWhatDO, "");
    SetText(w.TextResults, "");
    const BundleTelling telling = {
        [](const char* step) { SetText(w.TextWhatDO, w.TextWhatDO.Text + step + kLineEnd); },
        [](const BundleWork& done) { SetText(w.TextRUN, w.TextRUN.Text + IterationLine(done)); },
        SameAsNow()};
    const BundleEnd end = AdjustBundle(Bundle, *work, kBundleLimit, telling);
    if (end == BundleEnd::Abandoned) return;
    TellEnd(end, *work);
    if (work->Iterations == 0 || end == BundleEnd::OnALine || end == BundleEnd::NotFinite) return;
    ToClipboard(VectorsText(*work));
    Run.StopRequested = kFalse;
    // In another unit than that of the beginning the two files would not be the same network.
    if (Units.LengthFactor != unit)
        targetPath = WriteNetwork(SettingsFolder(), kBundleTargetFile, NetworkText(before, *work));
    const std::string startPath =
        WriteNetwork(SettingsFolder(), kBundleStartFile, AdjustedText(Bundle, *work));
    SetText(w.TextResults, ResultText(Bundle, *work));
    const BundleRecord network = Bundle;
    TakeBundleAsJob(startPath, targetPath);
    NoteOpenPoints(network, *work);
    NoteBundleEnd(network, *work, end);
}

// What an open window shows belongs to the network of before.
void ForgetResults() {
    w.Own = {};
    for (Control* text : {&w.TextWhatDO, &w.TextRUN, &w.TextResults}) SetText(*text, "");
}

// No points of an earlier job show through behind a network when that job was closed.
void ForgetClosedJob() {
    Job.Start = Job.Target = Job.Transformed = PointSet();
    Job.SetPairs(0);
    ++Run.JobGeneration;
    Job.RobotABC = Matrix{};
    Job.ParaboloidShape = Matrix{};
}

}  // namespace

const WindowEntry FormBündel_Entry = {
    .Name = "FormBündel",
    .State = &BündelWindow.Window,
    .Controls = kControls,
    .Fresh = [] { BündelWindow = FormBündel{}; },
    .Load = FormBündel::Form_Load,
    .Escape = FormBündel::Form_Escape,
};

namespace {

constexpr ChangeRow kChanges[] = {
    {kStateOfJob, Turn::BundleCommands,
     [](What) { Main.MenuTransformationBundle.Enabled = !Bundle.IsEmpty(); }},
};

}  // namespace

std::span<const ChangeRow> BundleChanges() {
    return kChanges;
}

void ReadBundleFile(const std::string& path) {
    BundleRecord network = BündelInputFileEinlesen(path);
    network.Generation = Bundle.Generation + 1;
    Bundle = std::move(network);
    if (w.Window.Loaded) ForgetResults();
    if (!IsTrue(Run.JobDataValid)) ForgetClosedJob();
    Run.JobDataValid = kTrue;
    ProgrammLogik();
    ShowMessage("Found " + PlainText(Bundle.nStations) + " Stations and " + PlainText(Bundle.nObjectPoints) +
                " Object Points and " + PlainText(Bundle.nDistances) + " Distance Observations");
    ShowWindow(FormBündel_Entry.Name);
}

void FormBündel::Form_Load() {
    ++Bundle.Generation;
    w.CommandSTOP.Enabled = false;
}

void FormBündel::Form_Escape() {
    if (w.CommandSTOP.Enabled) return CommandSTOP_Click();
    UnloadWindow(FormBündel_Entry.Name);
}

void FormBündel::BtnCalculate_Click() {
    const Adjusting adjusting;
    BundleRun();
}

void FormBündel::Command1_Click() {
    const Adjusting adjusting;
    std::optional<BundleWork> work = Prepare();
    if (!work) return;
    BundleRecord own = Bundle;
    const BundleEnd end = AdjustBundle(own, *work, kWindowLimit, {{}, {}, SameAsNow()});
    if (end == BundleEnd::Abandoned) return;
    NoteOpenPoints(own, *work);
    NoteBundleEnd(own, *work, end);
    w.Own = std::move(own);
    TellEnd(end, *work);
    if (work->Iterations > 0)
        SetStatus(3, "Iterations " + std::to_string(work->Iterations) + " Biggest x " +
                         PlainText(work->BiggestX * Units.LengthFactor));
}

void FormBündel::CommandSTOP_Click() {
    Run.StopRequested = kTrue;
    YieldToEvents();
}

}  // namespace corvinade::bundle
