// Makes the pictures of the manual: every window of the desktop with the job of an example in it.
#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMainWindow>
#include <QMdiSubWindow>
#include <QMessageBox>
#include <QPixmap>
#include <QSplashScreen>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <vector>

#include "analysis/form_main_sheet.h"
#include "bundle/bundle_file.h"
#include "core/controller.h"
#include "core/desktop_defaults.h"
#include "core/form_main.h"
#include "core/form_progress_bar.h"
#include "core/fresh_start.h"
#include "core/job.h"
#include "core/notes.h"
#include "core/run.h"
#include "graphics/drawing.h"
#include "graphics/flags.h"
#include "graphics/form_black_plane.h"
#include "graphics/picking.h"
#include "graphics/picture_flags.h"
#include "graphics/projection.h"
#include "graphics/scene.h"
#include "graphics/screen_events.h"
#include "graphics/screen_window.h"
#include "graphics/views.h"
#include "import/form_input_files.h"
#include "ui/desktop.h"
#include "ui/drops.h"
#include "ui/qt_text.h"
#include "ui/screen_view.h"
#include "ui/screen_windows.h"
#include "ui/start_screen.h"
#include "ui/theme.h"

namespace corvinade::ui {

namespace {

QString Folder = QStringLiteral("docs/manual/pictures");
constexpr auto kJob = "examples/robot_cell.cvn";
constexpr auto kStart = "examples/robot_cell_measured.txt";
constexpr auto kTarget = "examples/robot_cell_nominal.txt";
constexpr auto kTracker = "examples/robot_cell_tracker.csv";
constexpr auto kBentJob = "examples/roof.cvn";
constexpr auto kNetwork = "examples/hall_network.txt";
constexpr auto kBatchFolder = "examples/batch";

[[noreturn]] void Fail(const QString& text) {
    std::fprintf(stderr, "corvinade-pictures: %s\n", qPrintable(text));
    std::_Exit(1);
}

// Lets everything settle that waits for the event loop: layouts, column widths, the repaint.
void Settle() {
    for (int round = 0; round < 5; ++round) QApplication::processEvents();
}

void Trigger(const char* name) {
    auto* action = Frame()->findChild<QAction*>(QString::fromUtf8(name));
    if (action == nullptr || !action->isEnabled())
        Fail(QStringLiteral("%1 is missing or disabled").arg(QString::fromUtf8(name)));
    action->trigger();
    Settle();
}

void Press(const char* window, const char* name) {
    auto* button = WidgetOf(*FindWindow(window))->findChild<QAbstractButton*>(QString::fromUtf8(name));
    if (button == nullptr || !button->isEnabled())
        Fail(QStringLiteral("%1 is missing or disabled").arg(QString::fromUtf8(name)));
    button->click();
    Settle();
}

int Distance(QRgb one, QRgb other) {
    return std::abs(qRed(one) - qRed(other)) + std::abs(qGreen(one) - qGreen(other)) +
           std::abs(qBlue(one) - qBlue(other));
}

// A window has few colours, and most are edges of letters: 256 are enough, at a third of the size. Every part
// of the colour space is served first, for small things count too, then the most frequent ones.
QImage WithPalette(const QImage& image) {
    std::map<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) ++counts[image.pixel(x, y)];
    std::vector<QRgb> byCount;
    for (const auto& entry : counts) byCount.insert(byCount.end(), entry.first);
    std::stable_sort(byCount.begin(), byCount.end(),
                     [&](QRgb one, QRgb other) { return counts[one] > counts[other]; });
    QList<QRgb> colours;
    for (const int apart : {40, 1})
        for (const QRgb colour : byCount)
            if (colours.size() < 256 && std::none_of(colours.begin(), colours.end(), [&](QRgb taken) {
                    return Distance(taken, colour) < apart;
                }))
                colours.append(colour);
    return image.convertToFormat(QImage::Format_Indexed8, colours, Qt::ThresholdDither);
}

void Save(QWidget& widget, const QString& name) {
    const QString path = QDir(Folder).filePath(name + QStringLiteral(".png"));
    const QImage image = WithPalette(widget.grab().toImage().convertToFormat(QImage::Format_RGB32));
    if (!image.save(path, "PNG", 0)) Fail(QStringLiteral("%1 cannot be written").arg(path));
    std::printf("%s %dx%d\n", qPrintable(path), image.width(), image.height());
}

// The window without its title; what stands outside it, and so the size, is that of the window's frame.
void SaveWindow(const char* window, QSize size = {}) {
    QWidget* form = WidgetOf(*FindWindow(window));
    if (form == nullptr) Fail(QStringLiteral("%1 is not open").arg(QLatin1String(window)));
    QWidget* outer = form;
    while (outer->parentWidget() != nullptr && !outer->isWindow() &&
           qobject_cast<QMdiSubWindow*>(outer) == nullptr)
        outer = outer->parentWidget();
    if (size.isValid()) outer->resize(size);
    Settle();
    Save(*form, QLatin1String(window));
}

void Close(const char* window) {
    UserDid([window] { UserClose(*FindWindow(window)); });
    Settle();
}

void SaveAndClose(const char* window, QSize size = {}) {
    SaveWindow(window, size);
    Close(window);
}

// Nobody is there to answer a question, so one that comes up ends the program with its text.
void WatchForQuestions(QTimer& timer) {
    QObject::connect(&timer, &QTimer::timeout, [] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) Fail(box->text());
    });
    timer.start(50);
}

void StartPicture() {
    ShowStartScreenFor(kStartScreen_ms);
    Settle();
    for (QWidget* window : QApplication::topLevelWidgets())
        if (auto* screen = qobject_cast<QSplashScreen*>(window)) {
            Save(*screen, QStringLiteral("StartScreen"));
            screen->close();
            return;
        }
    Fail(QStringLiteral("there is no start screen"));
}

void InputPicture() {
    Trigger("MenuFileInputFiles");
    UserDid([] {
        SetText(*FindControl(*FindWindow("FormInputFiles"), "TextNameMCS"), kStart);
        SetText(*FindControl(*FindWindow("FormInputFiles"), "TextNameOCS"), kTarget);
    });
    SaveAndClose("FormInputFiles", {900, 540});
}

// Double clicks on the use cells of a point leave it out of the fit, or take it in again.
void SwitchUse(const char* point) {
    Control& table = *FindControl(*FindWindow("FormTrafoBerechnung"), "Tabelle");
    for (int row = table.Grid.FixedRows; row < table.Grid.Rows; ++row) {
        if (CellText(table.Grid, row, 1) != point) continue;
        for (int col = 5; col <= 7; ++col) UserDid([&table, row, col] { UserDblClickCell(table, row, col); });
        UserDid([&table, row] { UserClickCell(table, row, 1, false); });
        break;
    }
    Settle();
}

// The job is fitted with all points first and then without the one that has moved, so that the arrows of
// the result tell of the step.
void CalculationPictures() {
    if (!IsLoaded("FormTrafoBerechnung")) Trigger("MenuTransformationCalculation");
    auto* outer = WidgetOf(*FindWindow("FormTrafoBerechnung"))->parentWidget();
    outer->resize(1240, 660);
    outer->move(10, 8);
    Settle();
    Press("FormTrafoBerechnung", "BtnUseAllPts");
    Press("FormTrafoBerechnung", "BtnCalculate");
    Save(*WidgetOf(*FindWindow("FormTrafoBerechnung")), QStringLiteral("FormTrafoBerechnung-all"));
    SwitchUse("F09");
    Press("FormTrafoBerechnung", "BtnCalculate");
    SaveWindow("FormTrafoBerechnung");
    Save(*Frame(), QStringLiteral("FormMain"));
    Press("FormTrafoBerechnung", "BtnDetails");
    SaveAndClose("FormTrafoDetails", {1270, 680});
}

void OtherPictures() {
    Trigger("MenuVievMainSheet");
    SaveWindow("FormMainSheet", {1100, 470});
    constexpr int kDeviationX = 7;
    UserDid([] { UserSelectCells(MainSheetWindow.MSFlexGrid1, {1, kDeviationX, 1, kDeviationX}); });
    Trigger("MenuEditGraphData");
    SaveAndClose("FormGrafik", {760, 420});
    Trigger("MenüViewInputStatistic");
    SaveWindow("FormInputStatistic", {440, 430});
    Trigger("MenuTransformationReliability");
    SaveAndClose("FormReliability", {1240, 660});
    Trigger("MenuTransformationDistanceScale");
    SaveWindow("FormDistanceScale", {1100, 330});
    Press("FormDistanceScale", "BtnTrumpetGraph");
    SaveAndClose("FormTrompete", {860, 560});
    Close("FormDistanceScale");
    UserDid([] {
        ShowWindow("FormProgressBar");
        FindWindow("FormProgressBar")->State->Caption = "Monte Carlo";
        SetValue(Progress.ProgressBar1, 40);
    });
    SaveAndClose("FormProgressBar");
    const struct {
        const char* Action;
        const char* Window;
        QSize Size;
    } dialogs[] = {{"MenuSettingsUnits", "FormUnits", {}},
                   {"MenueExtrasOptions", "FormOptions", {}},
                   {"MenuHelpInfo", "FormMenuHelpInfo", {560, 240}},
                   {"MenuViewStart", "FormStart", {}}};
    for (const auto& [action, window, size] : dialogs) {
        Trigger(action);
        SaveWindow(window, size);
        Close(window);
    }
}

// The list as an import of a file with faults leaves it.
void NotesPicture() {
    const std::vector<Note> before = Notes.List;
    UserDid([] {
        Dispatch([] {
            ForgetNotes();
            AddNote(NoteCode::EmptyCoordinate, "The z of point \"F11\" is empty and counts as 0", kStart, 7);
            AddNote(NoteCode::FieldCut,
                    "What stands behind the first blank of \"782.7441 mm\" in z is not read", kStart, 11);
            AddNote(NoteCode::ColumnsIgnored, "Fields behind z are not read: \"ok\"", kTarget, 1, 15);
            ShowWindow("FormNotes");
        });
    });
    SaveWindow("FormNotes", {940, 200});
    Save(*Frame()->statusBar(), QStringLiteral("StatusBar-notes"));
    Close("FormNotes");
    UserDid([&before] { Dispatch([&before] { Notes.List = before; }); });
}

// A tracker's file in the window of tables, and the result of the job as a base.
void TableAndExportPictures() {
    Trigger("MenuFileInputFiles");
    UserDid([] { SetText(*FindControl(*FindWindow("FormInputFiles"), "TextNameMCS"), kTracker); });
    Press("FormInputFiles", "BtnTableMCS");
    SaveAndClose("FormTable", {860, 540});
    Close("FormInputFiles");
    Trigger("MenueFileExportResult");
    UserDid([] {
        Control& forms = *FindControl(*FindWindow("FormExport"), "ListForms");
        for (int i = 0; i < static_cast<int>(forms.Items.size()); ++i)
            if (forms.Items[static_cast<std::size_t>(i)].starts_with("kuka-base")) SetIndex(forms, i);
    });
    SaveAndClose("FormExport", {880, 380});
    Trigger("MenuFileReport");
    SaveAndClose("FormReport", {1000, 640});
}

// The batch with a folder of the examples, and the choice of a folder, with a few below it. The choice is
// waited for, so its picture is taken from inside the wait.
void BatchPictures() {
    Trigger("MenueTransformationBatch");
    UserDid([] { SetText(*FindControl(*FindWindow("FormBatch"), "TextNameMCSDirectory"), kBatchFolder); });
    UserDid([] { UserSetValue(*FindControl(*FindWindow("FormBatch"), "CheckSameAsMCS"), 1); });
    SaveWindow("FormBatch");
    QDir measured(QStringLiteral("/tmp/cell 4"));
    for (const char* name : {"doors", "floor", "roof"})
        if (!measured.mkpath(QLatin1String(name))) Fail(QStringLiteral("no folders to choose from"));
    UserDid([&measured] {
        SetText(*FindControl(*FindWindow("FormBatch"), "TextNameMCSDirectory"),
                measured.path().toStdString());
    });
    QTimer::singleShot(200, [] { SaveAndClose("FormChangeDir"); });
    Press("FormBatch", "BtnBrowseMCS");
    measured.removeRecursively();
    Close("FormBatch");
}

void BundlePicture() {
    Run.JobDirty = kFalse;
    // Without the message that counts what was found.
    UserDid([] {
        Bundle = BündelInputFileEinlesen(kNetwork);
        ShowWindow("FormBündel");
    });
    Press("FormBündel", "BtnCalculate");
    QWidget* form = WidgetOf(*FindWindow("FormBündel"));
    form->parentWidget()->resize(900, 560);
    Settle();
    Save(*form, QStringLiteral("FormBuendel"));
    Close("FormBündel");
}

// A bent part, seen from a corner of the cell, with its deviations and the dialogs beside it.
void ScreenPictures() {
    Run.JobDirty = kFalse;
    OpenDropped({kBentJob});
    Settle();
    Trigger("MenueGraphics");
    ScreenWindow& window = *Screens().Open.front();
    const auto save = [&window](const char* name) {
        Settle();
        Save(*ViewOf(window), QLatin1String(name));
    };
    UserDid([] { UserSetIndex(Main.ComboSaveView, 0); });
    if (!window.BindingsShown) Trigger("MenuHelpBindings");
    save("FormScreen-keys");
    Trigger("MenuHelpBindings");
    // The mouse is at the corner that has sagged.
    UserDid([&window] {
        const auto row = static_cast<std::size_t>(Job.Pairs());
        PixelsForWindow(window);
        ScreenPixel_MouseMove(window, {.X = Scene.PixelX[row], .Y = Scene.PixelY[row]});
    });
    save("FormScreen");
    UserDid([&window] {
        FlagWorstPairs(window, 6);
        Stelle_Grafik_dar(window);
    });
    save("FormScreen-flags");
    Trigger("MenuFahneEdit");
    SaveAndClose("FormEditFahne");
    UserDid([&window] { AlleLöschen(window); });
    Trigger("ToolbarGraphics.ColorBar");
    SaveAndClose("FormColorBar");
    Trigger("MenüGlobalGeneralGraphicsSettings");
    SaveAndClose("FormGraphicsOptions");
    Trigger("MenuEditPicture");
    SaveAndClose("FormPicture");
    // The dialog is waited for, so its picture is taken from inside the wait.
    QTimer::singleShot(200, [] { SaveAndClose("FormSaveView"); });
    Trigger("ToolbarSaveView.SaveView");
}

// A cylinder block as a scanner sees it: the outer skin, two lids and four bores, a little out of round.
std::string ScannedBlock(bool measured) {
    constexpr double kPi = 3.14159265358979;
    std::string text;
    int number = 0;
    const auto add = [&](double x, double y, double z) {
        const double bulge = measured ? 0.8 * std::sin(x / 90) * std::cos(z / 110) : 0;
        const double r = std::hypot(x, y) + 1e-9;
        char line[96];
        std::snprintf(line, sizeof line, "%d;%.3f;%.3f;%.3f\n", ++number, x * (1 + bulge / r),
                      y * (1 + bulge / r), z + bulge);
        text += line;
    };
    const auto tube = [&](double cx, double cy, double radius, double step) {
        const int around = static_cast<int>(2 * kPi * radius / step);
        for (double z = -200; z <= 200; z += step)
            for (int k = 0; k < around; ++k)
                add(cx + radius * std::cos(2 * kPi * k / around),
                    cy + radius * std::sin(2 * kPi * k / around), z);
    };
    constexpr double kOuter = 250, kBore = 70, kOff = 110;
    tube(0, 0, kOuter, 9);
    for (const double x : {-kOff, kOff})
        for (const double y : {-kOff, kOff}) tube(x, y, kBore, 9);
    for (double x = -kOuter; x <= kOuter; x += 9)
        for (double y = -kOuter; y <= kOuter; y += 9)
            if (std::hypot(x, y) < kOuter && std::hypot(std::abs(x) - kOff, std::abs(y) - kOff) > kBore)
                for (const double z : {-200.0, 200.0}) add(x, y, z);
    return text;
}

void WriteText(const QString& path, const std::string& text) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.c_str()) < 0)
        Fail(QStringLiteral("%1 cannot be written").arg(path));
}

// A slab through a dense cloud, and the dialog that switches it.
void SlabPictures() {
    const QTemporaryDir scan;
    const QString start = scan.filePath(QStringLiteral("scan.txt"));
    const QString target = scan.filePath(QStringLiteral("nominal.txt"));
    WriteText(start, ScannedBlock(true));
    WriteText(target, ScannedBlock(false));
    Run.JobDirty = kFalse;
    UserDid([&] {
        CloseAllChildForms();
        Initialisieren();  // a job without points asks nothing
        ShowWindow("FormInputFiles");
        SetText(InputFiles.TextNameMCS, S(start));
        SetText(InputFiles.TextNameOCS, S(target));
    });
    Settle();
    Press("FormInputFiles", "BtnOK");
    Trigger("MenueGraphics");
    ScreenWindow& window = *Screens().Active;
    Trigger("MenüAnsichtTopview");
    Trigger("MenüGrafikBlackPlane");
    auto* dialog = WidgetOf(FormBlackPlane_Entry);
    for (const char* check : {"CheckActivate", "CheckShowBlackPlanes"})
        dialog->findChild<QAbstractButton*>(QLatin1String(check))->click();
    Press("FormBlackPlane", "BtnApply");
    SaveAndClose("FormBlackPlane");
    UserDid([&window] {
        ScreenRecord& state = window.State;
        state.TopDepth = static_cast<float>(-60 * state.BildFaktor);
        state.SlabThickness = 90 * static_cast<double>(state.BildFaktor);
        state.BigNess = 3;
        SetViewAngles(window, -2.3, 0.25, 0.45);
        Job.NameMCS = "Scan";
        Job.NameOCS = "Block";
        ZoomOut(window);  // the box is as wide as the picture was
    });
    Settle();
    Save(*ViewOf(window), QStringLiteral("FormScreen-slab"));
}

// The main window keeps to its screen, and without a description of one the toolkit's own is too small for
// it.
void BeginOnLargeScreen(const QTemporaryDir& folder) {
    QFile screen(folder.filePath(QStringLiteral("screen.json")));
    const int scale = std::max(1, qEnvironmentVariableIntValue("QT_SCALE_FACTOR"));
    const QString text = QStringLiteral(R"({"screens": [{"name": "large", "x": 0, "y": 0, "width": %1,
        "height": %2, "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})");
    const bool written = screen.open(QIODevice::WriteOnly) &&
                         screen.write(text.arg(1600 * scale).arg(1000 * scale).toUtf8()) > 0;
    if (!written) Fail(QStringLiteral("no place for the description of a screen"));
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screen.fileName().toUtf8());
}

}  // namespace

}  // namespace corvinade::ui

using namespace corvinade;

// corvinade-pictures [FOLDER [dark]]: run in the folder of the project.
int main(int argc, char** argv) {
    const bool dark = argc > 2 && std::string_view(argv[2]) == "dark";
    if (argc > 1) Folder = QString::fromLocal8Bit(argv[1]);
    const QTemporaryDir settings;
    BeginOnLargeScreen(settings);
    qputenv("CORVINADE_THEME", dark ? "dark" : "light");
    qputenv("XDG_CONFIG_HOME", settings.path().toUtf8());
    qunsetenv("appdata");
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    ApplyTheme(dark ? Theme::Dark : Theme::Light);
    if (!QDir().mkpath(Folder)) Fail(QStringLiteral("no folder for pictures"));
    QTimer questions;
    WatchForQuestions(questions);

    FreshStart();
    WantDesktopDefaults();
    StartPicture();
    SkipStartScreen();
    OpenDesktop();
    // A path without a folder of this machine in it, for the title and the list of recent files.
    UserDid([] { StartUp(std::string("\"") + kJob + "\""); });
    Frame()->resize(1280, 800);
    Frame()->show();
    Settle();
    if (Frame()->size() != QSize(1280, 800)) Fail(QStringLiteral("the main window has not its size"));
    CalculationPictures();
    OtherPictures();
    NotesPicture();
    TableAndExportPictures();
    BatchPictures();
    InputPicture();
    ScreenPictures();
    SlabPictures();
    BundlePicture();
    CloseDesktop();
    return 0;
}
