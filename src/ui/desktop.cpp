// The frame and its windows.
#include "ui/desktop.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDialog>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QStatusBar>
#include <QToolBar>
#include <QUiLoader>
#include <QUrl>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <string_view>

#include "analysis/form_grafik.h"
#include "analysis/form_trompete.h"
#include "core/controller.h"
#include "core/files.h"
#include "core/form_main.h"
#include "core/form_progress_bar.h"
#include "core/platform.h"
#include "core/refresh.h"
#include "core/run.h"
#include "core/text.h"
#include "graphics/form_black_plane.h"
#include "graphics/form_color_bar.h"
#include "graphics/form_graphics_options.h"
#include "import/form_input_files.h"
#include "paraboloid/form_stop_para_trafo.h"
#include "ui/binder.h"
#include "ui/chart_view.h"
#include "ui/clipboard.h"
#include "ui/colour_sample.h"
#include "ui/places.h"
#include "ui/portal.h"
#include "ui/program_keys.h"
#include "ui/qt_text.h"
#include "ui/screen_windows.h"
#include "ui/theme.h"
#include "ui/trumpet_view.h"

namespace {

// The windows that stand above the frame; all others stand inside it.
constexpr std::array<std::string_view, 13> kDialogs = {
    "FormUnits",           "FormOptions",    "FormMenuHelpInfo",  "FormProgressBar", "FormInputFiles",
    "FormColorBar",        "FormSaveView",   "FormStopParaTrafo", "FormBatch",       "FormChangeDir",
    "FormGraphicsOptions", "FormBlackPlane", "FormEditFahne"};

// Work that writes a text at every step shows it no more often than this.
constexpr qint64 kBetweenPanels_ms = 100;

struct OpenWindow {
    QWidget* Form = nullptr;   // with the controls
    QWidget* Outer = nullptr;  // what has the title: a child window of the frame, a dialog, or the frame
    int Asked = 0;             // how often it has been brought to the front
};

struct DesktopRecord {
    QMainWindow* FrameWindow = nullptr;
    QMdiArea* Area = nullptr;
    std::map<const WindowEntry*, OpenWindow> Windows;
    bool Showing = false;    // the screen is being brought up to date
    bool BusyShown = false;  // the busy pointer is on
    bool PopUpOpen = false;  // the pop-up menu of a table is open
    int Events = 0;          // how deep the user's events stand in each other
    QElapsedTimer Panels;    // since the panels of the status bar were shown
};
DesktopRecord Desktop;

bool IsJob(const std::string& path) {
    return UpperAscii(path).ends_with(".CVN");
}

bool IsDialog(const WindowEntry& window) {
    return std::find(kDialogs.begin(), kDialogs.end(), window.Name) != kDialogs.end();
}

// The windows of long work.
bool IsOfLongWork(const WindowEntry& window) {
    return &window == &FormProgressBar_Entry || &window == &FormStopParaTrafo_Entry;
}

// These dialogs are at work beside the pictures that they change.
bool IsBeside(const WindowEntry& window) {
    return &window == &FormColorBar_Entry || &window == &FormGraphicsOptions_Entry ||
           &window == &FormBlackPlane_Entry;
}

QWidget* LoadForm(const WindowEntry& window) {
    QFile file(FormFile(window));
    if (!file.open(QIODevice::ReadOnly))
        throw PlatformError{std::string("The form of the window ") + window.Name + " is missing."};
    QUiLoader loader;
    QWidget* form = loader.load(&file);
    if (form == nullptr)
        throw PlatformError{std::string("The form of the window ") + window.Name + " cannot be read."};
    return form;
}

// --- What the user does to a window as a whole ------------------------------------------------------------

class WindowEvents : public QObject {
public:
    WindowEvents(const WindowEntry& window, QWidget& outer)
        : QObject(&outer), window_(window), outer_(outer) {}

    bool eventFilter(QObject* object, QEvent* event) override {
        switch (event->type()) {
            case QEvent::Close:
                if (object != &outer_ || !window_.State->Loaded) return false;
                event->ignore();  // the logic decides, and ShowState takes the window down
                UserDid([this] { UserClose(window_); });
                return true;
            case QEvent::Move:
            case QEvent::Resize:
                if (object == &outer_ && window_.State->Loaded && outer_.isVisible())
                    TakePlace(window_, outer_);
                return false;
            default:
                return false;
        }
    }

private:
    const WindowEntry& window_;
    QWidget& outer_;
};

// The dialog has to be told again which button Enter stands for: it was not there when the form was loaded,
// and would take the first one.
void ShowDefaultButton(const QWidget& form) {
    for (QPushButton* button : form.findChildren<QPushButton*>()) {
        if (!button->isDefault()) continue;
        button->setDefault(false);
        button->setDefault(true);
    }
}

void OpenOne(const WindowEntry& window) {
    OpenWindow open;
    open.Form = LoadForm(window);
    if (IsDialog(window)) {
        auto* dialog = new QDialog(Desktop.FrameWindow);
        dialog->setAcceptDrops(&window == &FormInputFiles_Entry);
        auto* layout = new QVBoxLayout(dialog);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(open.Form);
        ShowDefaultButton(*open.Form);
        // The window of long work leaves the frame in reach, whose STOP ends the work too; above a dialog
        // that blocks the frame it must stand in front itself.
        const bool overAll = !IsOfLongWork(window) || QApplication::activeModalWidget() != nullptr;
        dialog->setWindowModality(overAll && !IsBeside(window) ? Qt::WindowModal : Qt::NonModal);
        open.Outer = dialog;
    } else {
        open.Outer = Desktop.Area->addSubWindow(open.Form);
    }
    BindWindow(window, *open.Form);
    if (&window == &FormColorBar_Entry) AddColourSample(*open.Form);
    if (&window == &FormTrompete_Entry) AddTrumpet(*open.Form);
    if (&window == &FormGrafik_Entry) AddChart(*open.Form);
    Desktop.Windows[&window] = open;
    open.Outer->setAttribute(Qt::WA_DeleteOnClose, false);
    open.Outer->installEventFilter(new WindowEvents(window, *open.Outer));
    ShowControls(window);
    open.Outer->setWindowTitle(Q(window.State->Caption));
    if (IsDialog(window)) {
        PlaceDialog(window, *open.Form, *open.Outer, *Desktop.FrameWindow, IsBeside(window));
    } else {
        PlaceChild(window, *open.Form, *open.Outer, *Desktop.Area);
    }
    open.Outer->show();
}

void CloseOne(const WindowEntry& window) {
    const OpenWindow open = Desktop.Windows[&window];
    Desktop.Windows.erase(&window);
    UnbindWindow(window);
    open.Outer->hide();
    open.Outer->deleteLater();  // its own event may still be running
}

// A window that was chosen while it stood open behind others, or as a mere title, comes to the front.
void BringToFront(const WindowEntry& window, OpenWindow& open) {
    if (open.Asked == window.State->Asked) return;
    open.Asked = window.State->Asked;
    if (open.Outer->isMinimized()) open.Outer->showNormal();
    if (auto* child = qobject_cast<QMdiSubWindow*>(open.Outer)) {
        Desktop.Area->setActiveSubWindow(child);
    } else {
        open.Outer->raise();
        open.Outer->activateWindow();
    }
}

void ShowPointer() {
    const bool busy = Run.WaitPointers > 0;
    if (busy == Desktop.BusyShown) return;
    Desktop.BusyShown = busy;
    if (busy) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
    } else {
        QApplication::restoreOverrideCursor();
    }
}

// A menu is a pop-up menu while its value says so: that for editing is one of a table, that for flags one of
// a flag.
void ShowPopUp() {
    const bool flag = Main.MenuFahne.Value != 0;
    if ((Main.MenuEdit.Value == 0 && !flag) || Desktop.PopUpOpen) return;
    Main.MenuEdit.Value = Main.MenuFahne.Value = 0;
    auto* menu = Desktop.FrameWindow->findChild<QMenu*>(flag ? QStringLiteral("MenuFahne")
                                                             : QStringLiteral("MenuEdit"));
    if (menu == nullptr) return;
    Desktop.PopUpOpen = true;
    menu->popup(QCursor::pos());
    Desktop.PopUpOpen = false;
}

// --- The frame --------------------------------------------------------------------------------------------

class FrameEvents : public QObject {
public:
    explicit FrameEvents(QObject* parent) : QObject(parent) {}
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::Close && object == Desktop.FrameWindow && FormMain_Entry.State->Loaded) {
            event->ignore();
            UserDid([] { UserClose(FormMain_Entry); });
            return true;
        }
        return false;
    }
};

std::vector<std::string> LocalPaths(const QMimeData& data) {
    std::vector<std::string> paths;
    for (const QUrl& url : data.urls()) paths.push_back(url.isLocalFile() ? S(url.toLocalFile()) : "");
    return paths;
}

// Puts dropped point files into the input dialog: one file into the field that it was dropped onto, two into
// the first two fields.
void TakeIntoInputDialog(const QWidget& target, const std::vector<std::string>& paths) {
    Control* field = &InputFiles.TextNameMCS;
    for (Control* one : {&InputFiles.TextNameOCS, &InputFiles.TextNameMoreMCS})
        if (paths.size() == 1 && one->Entry != nullptr && target.isEnabled() &&
            target.objectName() == QString::fromUtf8(one->Entry->Name))
            field = one;
    UserDid([&] {
        Dispatch([&] {
            SetText(*field, paths.front());
            if (paths.size() > 1) SetText(InputFiles.TextNameOCS, paths[1]);
        });
    });
}

// Files over any part of the frame or the input dialog. Fields would take the text of their address.
class Drops : public QObject {
public:
    explicit Drops(QObject* parent) : QObject(parent) {}
    bool eventFilter(QObject* object, QEvent* event) override {
        const bool drop = event->type() == QEvent::Drop;
        if (!drop && event->type() != QEvent::DragEnter && event->type() != QEvent::DragMove) return false;
        if (!object->isWidgetType()) return false;
        auto* drag = static_cast<QDropEvent*>(event);
        if (!drag->mimeData()->hasUrls()) return false;
        const auto& target = *static_cast<QWidget*>(object);
        const std::vector<std::string> paths = LocalPaths(*drag->mimeData());
        const QWidget* modal = QApplication::activeModalWidget();
        const QWidget* input = WidgetOf(FormInputFiles_Entry);
        const bool ontoInput = input != nullptr && target.window() == input->window() &&
                               (modal == nullptr || modal == input->window());
        const bool ontoFrame = target.window() == Desktop.FrameWindow && modal == nullptr;
        const bool taken = CanBeDropped(paths) && (ontoFrame || (ontoInput && !IsJob(paths.front())));
        drag->setAccepted(taken);
        if (!taken) return true;
        drag->acceptProposedAction();
        if (drop && ontoInput) TakeIntoInputDialog(target, paths);
        if (drop && !ontoInput) OpenDropped(paths);
        return true;
    }
};

void AddPanels(QStatusBar& bar) {
    for (int panel = 1; panel <= kStatusPanels; ++panel) {
        auto* label = new QLabel(&bar);
        label->setObjectName(QStringLiteral("StatusBar.%1").arg(panel));
        bar.addWidget(label, panel == 3 ? 1 : 0);
    }
    // Notes stay in sight whatever the panels tell.
    auto* notes = new QPushButton(&bar);
    notes->setObjectName(QStringLiteral("StatusBar.Notes"));
    notes->setAccessibleName(QStringLiteral("Notes"));
    notes->setFlat(true);
    notes->setMaximumHeight(bar.fontMetrics().height());  // the bar keeps its height, with notes or without
    notes->setFocusPolicy(Qt::TabFocus);
    notes->setVisible(false);
    bar.addPermanentWidget(notes);
}

void AddIcons(const QMainWindow& frame) {
    for (QAction* action : frame.findChildren<QAction*>()) {
        const QString name = action->objectName();
        const qsizetype dot = name.indexOf('.');
        if (dot > 0) action->setIcon(IconOf(name.mid(dot + 1)));
    }
}

constexpr std::array<std::pair<const char*, Theme>, 3> kThemes = {
    {{"_ThemeDesktop", Theme::Desktop}, {"_ThemeLight", Theme::Light}, {"_ThemeDark", Theme::Dark}}};

// Everything that is on the screen, in the palette of a theme.
void ShowTheme(Theme theme) {
    ApplyTheme(theme);
    for (const auto& [name, one] : kThemes)
        if (auto* action = Desktop.FrameWindow->findChild<QAction*>(QLatin1String(name)))
            action->setChecked(one == theme);
    AddIcons(*Desktop.FrameWindow);
    Desktop.Area->setBackground(Desktop.FrameWindow->palette().mid());
    ForgetShown();
}

void ConnectThemes() {
    for (const auto& [name, theme] : kThemes)
        if (auto* action = Desktop.FrameWindow->findChild<QAction*>(QLatin1String(name)))
            QObject::connect(action, &QAction::triggered, action, [chosen = theme] {
                UserDid([chosen] {
                    Dispatch([chosen] { StoreTheme(chosen); });
                    ShowTheme(chosen);
                });
            });
}

}  // namespace

void ShowStoredTheme() {
    Theme theme = Theme::Desktop;
    try {
        theme = StoredTheme();
    } catch (const PlatformError&) {  // settings that cannot be read: the start has told of them
    }
    ShowTheme(theme);
}

QString FormFile(const WindowEntry& window) {
    QString name = Q(std::string_view(window.Name));
    for (const auto& [letter, letters] : {std::pair{u'ä', "ae"}, {u'ö', "oe"}, {u'ü', "ue"}})
        name.replace(QChar(letter), QLatin1String(letters));
    return QStringLiteral(":/forms/%1.ui").arg(name);
}

QMainWindow* Frame() {
    return Desktop.FrameWindow;
}

QWidget* WidgetOf(const WindowEntry& window) {
    const auto found = Desktop.Windows.find(&window);
    return found == Desktop.Windows.end() ? nullptr : found->second.Form;
}

QWidget* DialogParent() {
    // A window that was closed by this very event may still be the active one; it takes its children with it.
    for (QWidget* candidate : {QApplication::activeModalWidget(), QApplication::activeWindow()})
        if (candidate != nullptr && candidate->isVisible()) return candidate;
    return Desktop.FrameWindow;
}

void OpenDesktop() {
    auto* frame = qobject_cast<QMainWindow*>(LoadForm(FormMain_Entry));
    Desktop.FrameWindow = frame;
    Desktop.Area = frame->findChild<QMdiArea*>();
    Desktop.Area->setViewMode(QMdiArea::SubWindowView);
    Desktop.Area->setBackground(frame->palette().mid());
    // A smaller frame leaves its windows where they are, and in reach.
    Desktop.Area->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    Desktop.Area->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    BeginScreens(*Desktop.Area);
    if (auto* bar = frame->findChild<QToolBar*>(QStringLiteral("ToolbarSaveView"))) {
        auto* combo = new QComboBox(bar);
        combo->setObjectName(QStringLiteral("ComboSaveView"));
        combo->setMinimumWidth(140);
        combo->setPlaceholderText(QStringLiteral("Saved views"));
        bar->addWidget(combo);
        // The view that the list shows can be chosen again, after the picture has been turned away from it.
        // This stands in front of the binder's connection, which is the one that changes the choice.
        QObject::connect(combo, &QComboBox::activated, combo, [](int index) {
            if (index == Main.ComboSaveView.Index) UserDid([] { UserClick(Main.ComboSaveView); });
        });
    }
    AddPanels(*frame->statusBar());
    AddIcons(*frame);
    ConnectThemes();
    WatchDesktop(frame, [] {
        if (StoredTheme() == Theme::Desktop) UserDid([] { ShowStoredTheme(); });
    });
    frame->setWindowIcon(IconOf(QStringLiteral("corvinade")));
    frame->setAcceptDrops(true);
    frame->installEventFilter(new FrameEvents(frame));
    QApplication::instance()->installEventFilter(NewProgramKeys(*frame));
    QApplication::instance()->installEventFilter(new Drops(frame));
}

void CloseDesktop() {
    while (!Desktop.Windows.empty()) CloseOne(*Desktop.Windows.begin()->first);
    UnbindWindow(FormMain_Entry);
    EndScreens();
    if (Desktop.BusyShown) QApplication::restoreOverrideCursor();
    delete Desktop.FrameWindow;
    Desktop = DesktopRecord{};
}

void ShowState(bool insideWork) {
    if (Desktop.FrameWindow == nullptr || Desktop.Showing) return;
    Desktop.Showing = true;
    const bool panels =
        !insideWork || !Desktop.Panels.isValid() || Desktop.Panels.elapsed() >= kBetweenPanels_ms;
    if (panels) Desktop.Panels.start();
    PutClipboard(insideWork);
    if (FormMain_Entry.State->Loaded && WidgetOf(FormMain_Entry) == nullptr) {
        BindWindow(FormMain_Entry, *Desktop.FrameWindow);
        Desktop.Windows[&FormMain_Entry] = {Desktop.FrameWindow, Desktop.FrameWindow};
        ShowStoredTheme();
        PlaceFrame(*Desktop.FrameWindow);
        Desktop.FrameWindow->show();
    }
    for (const WindowEntry* window : AllWindows()) {
        if (window == &FormMain_Entry) continue;
        const bool open = Desktop.Windows.count(window) != 0;
        if (open && !window->State->Loaded) CloseOne(*window);
        if (!open && window->State->Loaded) OpenOne(*window);
    }
    for (auto& [window, open] : Desktop.Windows) {
        BringToFront(*window, open);
        ShowControls(*window, panels);
        if (window == &FormColorBar_Entry) ShowColourSample(*open.Form);
        if (window == &FormTrompete_Entry) ShowTrumpet(*open.Form);
        if (window == &FormGrafik_Entry) ShowChart(*open.Form);
        const QString title = Q(window->State->Caption);
        if (open.Outer->windowTitle() != title) open.Outer->setWindowTitle(title);
        if (open.Form->isEnabled() != window->State->Enabled) open.Form->setEnabled(window->State->Enabled);
    }
    ShowScreens(insideWork);
    ShowPointer();
    ShowPopUp();
    Desktop.Showing = false;
    // Work that the frame was closed under ends first.
    if (!FormMain_Entry.State->Loaded && Desktop.Events > 0) Run.StopRequested = kTrue;
    if (!FormMain_Entry.State->Loaded && Desktop.Events == 0 && Desktop.Windows.count(&FormMain_Entry) != 0) {
        if (Desktop.FrameWindow->isVisible()) StoreFrame(*Desktop.FrameWindow);
        Desktop.FrameWindow->hide();
        QApplication::quit();
    }
}

void UserDid(const std::function<void()>& action) {
    ++Desktop.Events;
    action();
    --Desktop.Events;
    ShowState(Desktop.Events > 0);
}

bool CanBeDropped(const std::vector<std::string>& paths) {
    if (paths.empty() || !std::all_of(paths.begin(), paths.end(), File_Exist)) return false;
    return paths.size() == 1 || (paths.size() == 2 && std::none_of(paths.begin(), paths.end(), IsJob));
}

void OpenDropped(const std::vector<std::string>& paths) {
    if (!CanBeDropped(paths)) return;
    UserDid([&] {
        Dispatch([&] {
            if (IsJob(paths.front())) return OpenLastProjekt("&1 " + paths.front());
            ShowWindow("FormInputFiles");
            SetText(InputFiles.TextNameMCS, paths.front());
            if (paths.size() > 1) SetText(InputFiles.TextNameOCS, paths[1]);
        });
    });
}
