// The frame and its windows.
#include "ui/desktop.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QElapsedTimer>
#include <QFile>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QUiLoader>
#include <QVBoxLayout>
#include <algorithm>
#include <map>
#include <utility>

#include "core/platform.h"
#include "core/recovery.h"
#include "core/run.h"
#include "fit/require.h"
#include "ui/binder.h"
#include "ui/clipboard.h"
#include "ui/column_fields.h"
#include "ui/drops.h"
#include "ui/frame.h"
#include "ui/help.h"
#include "ui/places.h"
#include "ui/plots.h"
#include "ui/program_keys.h"
#include "ui/qt_text.h"
#include "ui/recovery_watch.h"
#include "ui/screen_windows.h"
#include "ui/start_page.h"

namespace corvinade::ui {

namespace {

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

// The window that is the frame itself.
const WindowEntry& FrameEntry() {
    const auto all = AllWindows();
    const auto frame = std::find_if(all.begin(), all.end(), [](const WindowEntry* window) {
        return window->Stand == WindowStand::Frame;
    });
    Require(frame != all.end());
    return **frame;
}

bool IsDialog(const WindowEntry& window) {
    return window.Stand != WindowStand::Child && window.Stand != WindowStand::Frame;
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
        dialog->setAcceptDrops(true);
        auto* layout = new QVBoxLayout(dialog);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(open.Form);
        ShowDefaultButton(*open.Form);
        // The window of long work leaves the frame in reach, whose STOP ends the work too; above a dialog
        // that blocks the frame it must stand in front itself.
        const bool overAll =
            window.Stand == WindowStand::Dialog ||
            (window.Stand == WindowStand::LongWork && QApplication::activeModalWidget() != nullptr);
        dialog->setWindowModality(overAll ? Qt::WindowModal : Qt::NonModal);
        open.Outer = dialog;
    } else {
        open.Outer = Desktop.Area->addSubWindow(open.Form);
    }
    BindWindow(window, *open.Form);
    AddPlot(window, *open.Form);
    TellWhatFieldsAre(window, *open.Form);
    PutAboveColumns(*open.Form);
    Desktop.Windows[&window] = open;
    open.Outer->setAttribute(Qt::WA_DeleteOnClose, false);
    open.Outer->installEventFilter(new WindowEvents(window, *open.Outer));
    ShowControls(window);
    open.Outer->setWindowTitle(Q(window.State->Caption));
    if (IsDialog(window)) {
        PlaceDialog(window, *open.Form, *open.Outer, *Desktop.FrameWindow,
                    window.Stand == WindowStand::Beside);
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

class FrameEvents : public QObject {
public:
    explicit FrameEvents(QObject* parent) : QObject(parent) {}
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::Close && object == Desktop.FrameWindow && FrameEntry().State->Loaded) {
            event->ignore();
            UserDid([] { UserClose(FrameEntry()); });
            return true;
        }
        return false;
    }
};

}  // namespace

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
    auto* frame = qobject_cast<QMainWindow*>(LoadForm(FrameEntry()));
    Desktop.FrameWindow = frame;
    Desktop.Area = &AreaOf(*frame);
    BeginScreens(*Desktop.Area);
    FurnishFrame(*frame);
    frame->installEventFilter(new FrameEvents(frame));
    QApplication::instance()->installEventFilter(NewProgramKeys(*frame));
    QApplication::instance()->installEventFilter(NewDrops(*frame));
}

void CloseDesktop() {
    while (!Desktop.Windows.empty()) CloseOne(*Desktop.Windows.begin()->first);
    UnbindWindow(FrameEntry());
    EndScreens();
    if (Desktop.BusyShown) QApplication::restoreOverrideCursor();
    delete Desktop.FrameWindow;
    Desktop = DesktopRecord{};
}

void ShowState(bool insideWork) {
    if (Desktop.FrameWindow == nullptr || Desktop.Showing) return;
    const WindowEntry& frame = FrameEntry();
    Desktop.Showing = true;
    const bool panels =
        !insideWork || !Desktop.Panels.isValid() || Desktop.Panels.elapsed() >= kBetweenPanels_ms;
    if (panels) Desktop.Panels.start();
    PutClipboard(insideWork);
    if (frame.State->Loaded && WidgetOf(frame) == nullptr) {
        BindWindow(frame, *Desktop.FrameWindow);
        Desktop.Windows[&frame] = {Desktop.FrameWindow, Desktop.FrameWindow};
        ShowStoredTheme();
        PlaceFrame(*Desktop.FrameWindow);
        Desktop.FrameWindow->show();
    }
    for (const WindowEntry* window : AllWindows()) {
        if (window == &frame) continue;
        const bool open = Desktop.Windows.count(window) != 0;
        if (open && !window->State->Loaded) CloseOne(*window);
        if (!open && window->State->Loaded) OpenOne(*window);
    }
    for (auto& [window, open] : Desktop.Windows) {
        BringToFront(*window, open);
        ShowControls(*window, panels);
        ShowPlot(*window, *open.Form);
        QString title = Q(window->State->Caption);
        if (window == &frame && Recovery.Changed) title.prepend(QStringLiteral("* "));  // not saved
        if (open.Outer->windowTitle() != title) open.Outer->setWindowTitle(title);
        if (open.Form->isEnabled() != window->State->Enabled) open.Form->setEnabled(window->State->Enabled);
    }
    ShowScreens(insideWork);
    ShowPointer();
    if (!std::exchange(Desktop.PopUpOpen, true)) {
        ShowPopUpMenu(*Desktop.FrameWindow);
        Desktop.PopUpOpen = false;
    }
    Desktop.Showing = false;
    // Work that the frame was closed under ends first.
    if (!frame.State->Loaded && Desktop.Events > 0) Run.StopRequested = kTrue;
    if (!frame.State->Loaded && Desktop.Events == 0 && Desktop.Windows.count(&frame) != 0) {
        if (Desktop.FrameWindow->isVisible()) StoreFrame(*Desktop.FrameWindow);
        Desktop.FrameWindow->hide();
        QApplication::quit();
    }
}

bool IsInEvent() {
    return Desktop.Events > 0;
}

void UserDid(const std::function<void()>& action) {
    if (Desktop.Events == 0) TendBeforeEvent();
    ++Desktop.Events;
    action();
    --Desktop.Events;
    if (Desktop.Events == 0) TendAfterEvent();
    if (Desktop.Events == 0) TendJobPicture();
    ShowState(Desktop.Events > 0);
}

}  // namespace corvinade::ui
