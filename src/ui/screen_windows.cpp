// The graphics windows inside the frame.
#include "ui/screen_windows.h"

#include <QEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPointer>
#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "core/platform.h"
#include "core/settings.h"
#include "core/window.h"
#include "graphics/drawing.h"
#include "graphics/form_picture.h"
#include "graphics/form_report.h"
#include "graphics/screen_window.h"
#include "graphics/view_undo.h"
#include "graphics/views.h"
#include "paint/picture.h"
#include "paint/picture_file.h"
#include "paint/report_pdf.h"
#include "ui/chart_view.h"
#include "ui/desktop.h"
#include "ui/places.h"
#include "ui/qt_text.h"
#include "ui/report_print.h"
#include "ui/screen_view.h"

namespace corvinade::ui {

namespace {

// Under this name the place of the first window is kept.
constexpr const char* kPlaceName = "FormScreen";

struct View {
    QMdiSubWindow* Outer = nullptr;
    ScreenView* Inner = nullptr;
    QSize Told;  // the size that the logic was last seen with
};

struct ScreensShown {
    QMdiArea* Area = nullptr;
    std::map<std::uint64_t, View> Views;
    std::vector<QMdiSubWindow*> Leaving;  // closed, but their events may still be running
    std::uint64_t Active = 0;
    QSize SizedFor;  // of the area, when the logic was told how large a new window is
    bool Showing = false;
    bool RoundShown = false;
    void (*Refresh)(Surface&) = nullptr;  // of whoever draws
};
ScreensShown Shown;

void Refresh(Surface& screen) {
    if (Shown.Refresh != nullptr) Shown.Refresh(screen);
    for (const auto& window : Screens().Open) {
        if (&window->Screen != &screen) continue;
        if (ScreenView* view = ViewOf(*window)) view->PictureChanged();
        if (window->AnalyseMode && !window->AnalysePaused) Shown.RoundShown = true;
    }
}

void Fill(Surface& screen) {
    screen.Scale = Shown.Area->devicePixelRatioF();
    screen.StatusBarHeight = std::min(kScreenBarHeight, screen.Height);
    FillSurfaceWithPicture(screen);
    Shown.Refresh = screen.Refresh;
    screen.Refresh = Refresh;
}

class Inside : public QWidget {
public:
    QSize sizeHint() const override { return {400, 300}; }
};

// What a child window has around its inside.
QSize BordersOfAChild() {
    QWidget parent;
    QMdiSubWindow child(&parent);
    auto* inside = new Inside;
    child.setWidget(inside);
    return child.sizeHint() - inside->sizeHint();
}

WindowPlace StoredPlace() {
    WindowPlace place;
    try {
        ReadWindowPlace(place, kPlaceName);
    } catch (const PlatformError&) {  // settings that cannot be read: the start has told of them
        place = {};
    }
    return place;
}

QRect PlaceOfNext(const QWidget* outer, bool first) {
    return ScreenPlace(StoredPlace(), kPlaceName, first, outer, *Shown.Area);
}

void TellNewSize() {
    Shown.SizedFor = Shown.Area->size();
    static const QSize borders = BordersOfAChild();
    const QSize size = PlaceOfNext(nullptr, true).size() - borders;
    Screens().NewWidth = std::max(1, size.width());
    Screens().NewHeight = std::max(1, size.height());
}

class ScreenEvents : public QObject {
public:
    ScreenEvents(std::uint64_t id, QObject& outer) : QObject(&outer), id_(id) {}
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::Close || ScreenOf(id_) == nullptr) return false;
        event->ignore();  // the logic decides, and ShowScreens takes the window down
        UserDid([this] {
            Dispatch([this] {
                if (ScreenWindow* window = ScreenOf(id_)) CloseScreenWindow(*window);
            });
        });
        return true;
    }

private:
    std::uint64_t id_;
};

// The logic has drawn for the size that was foreseen. Where the window has come out otherwise (beside a
// maximised one, say) the cloud is fitted once more, and the first view is that one.
void FitToWhatCame(ScreenWindow& window, const ScreenView& view) {
    if (view.size() == QSize(window.Screen.Width, window.Screen.Height)) return;
    Dispatch([&] {
        ResizeScreenWindow(window, view.width(), view.height());
        Anpassen(window);
        Stelle_Grafik_dar(window);
        window.UndoIndex = window.UndoCount = window.UndoOffset = 0;
        StoreScreenPropertiesToRecord(window);
    });
}

void OpenOne(ScreenWindow& window) {
    View view;
    view.Inner = new ScreenView(window.Id);
    view.Outer = Shown.Area->addSubWindow(view.Inner);
    view.Outer->setAttribute(Qt::WA_DeleteOnClose, false);
    view.Outer->installEventFilter(new ScreenEvents(window.Id, *view.Outer));
    view.Outer->setWindowTitle(Q(window.Caption));
    view.Outer->setGeometry(PlaceOfNext(view.Outer, window.Number == 1));
    Shown.Views[window.Id] = view;
    view.Outer->show();
    view.Inner->setFocus();
    FitToWhatCame(window, *view.Inner);
    Shown.Views[window.Id].Told = {window.Screen.Width, window.Screen.Height};
}

void CloseOne(std::uint64_t id) {
    const View view = Shown.Views[id];
    Shown.Views.erase(id);
    const bool whole = view.Outer->isMinimized() || view.Outer->isMaximized();
    if (view.Outer->windowTitle() == QLatin1String("Screen - DEFAULT") && !whole)
        Dispatch([&view] {
            const QRect place = view.Outer->geometry();
            SaveWindowPlace({place.left() * kTwips, place.top() * kTwips, place.width() * kTwips,
                             place.height() * kTwips},
                            kPlaceName);
        });
    view.Outer->hide();
    Shown.Area->removeSubWindow(view.Outer);
    Shown.Leaving.push_back(view.Outer);
}

// The logic has sized a window, as a saved view does: the window on the screen follows, and where it cannot,
// the logic does.
void FollowSize(ScreenWindow& window, View& view) {
    const QSize size(window.Screen.Width, window.Screen.Height);
    if (size == view.Told) return;
    view.Told = size;
    if (size == view.Inner->size()) return;
    if (view.Outer->isMaximized() || view.Outer->isMinimized()) view.Outer->showNormal();
    view.Outer->resize(size + (view.Outer->size() - view.Inner->size()));
    if (view.Inner->size() != size)
        Dispatch([&] { ResizeScreenWindow(window, view.Inner->width(), view.Inner->height()); });
    view.Told = {window.Screen.Width, window.Screen.Height};
}

void Activated(QMdiSubWindow* outer) {
    if (Shown.Showing || outer == nullptr) return;
    for (const auto& [id, view] : Shown.Views) {
        if (view.Outer != outer || id == Shown.Active) continue;
        UserDid([id = id] {
            Dispatch([id] {
                if (ScreenWindow* window = ScreenOf(id)) ActivateScreenWindow(*window);
            });
        });
        return;
    }
}

void ShowActive() {
    const ScreenWindow* active = Screens().Active;
    const std::uint64_t id = active == nullptr ? 0 : active->Id;
    if (id == Shown.Active) return;
    Shown.Active = id;
    const auto view = Shown.Views.find(id);
    if (view != Shown.Views.end() && Shown.Area->activeSubWindow() != view->second.Outer)
        Shown.Area->setActiveSubWindow(view->second.Outer);
}

}  // namespace

void BeginScreens(QMdiArea& area) {
    Shown = ScreensShown{};
    Shown.Area = &area;
    FillSurface = Fill;
    ReportBy = {PictureBytes, ReportPdf, PrintReport};
    PictureBy = {PictureFileOf, ChartFile, CopyPicture};
    QObject::connect(&area, &QMdiArea::subWindowActivated, &area, Activated);
}

void EndScreens() {
    FillSurface = nullptr;
    ReportBy = {};
    PictureBy = {};
    // A window that goes makes the next one active; nobody is to follow that any more.
    const ScreensShown ended = std::exchange(Shown, ScreensShown{});
    for (const auto& [id, view] : ended.Views) delete view.Outer;
    for (QMdiSubWindow* outer : ended.Leaving) delete outer;
}

void ShowScreens(bool insideWork) {
    if (Shown.Area == nullptr || Shown.Showing) return;
    Shown.Showing = true;
    std::vector<std::uint64_t> gone;
    for (const auto& [id, view] : Shown.Views)
        if (ScreenOf(id) == nullptr) gone.push_back(id);
    for (const std::uint64_t id : gone) CloseOne(id);
    for (std::size_t i = 0; i < Screens().Open.size(); ++i) {
        ScreenWindow& window = *Screens().Open[i];
        if (Shown.Views.count(window.Id) == 0) OpenOne(window);
        View& view = Shown.Views[window.Id];
        FollowSize(window, view);
        view.Inner->ShowWindow(window);
        const QString title = Q(window.Caption);
        if (view.Outer->windowTitle() != title) view.Outer->setWindowTitle(title);
    }
    ShowActive();
    if (!gone.empty() || Shown.SizedFor != Shown.Area->size()) TellNewSize();
    if (!insideWork) {
        for (QMdiSubWindow* outer : Shown.Leaving) outer->deleteLater();
        Shown.Leaving.clear();
    }
    Shown.Showing = false;
}

ScreenWindow* ScreenOf(std::uint64_t id) {
    for (const auto& window : Screens().Open)
        if (window->Id == id) return window.get();
    return nullptr;
}

ScreenView* ViewOf(const ScreenWindow& window) {
    const auto found = Shown.Views.find(window.Id);
    return found == Shown.Views.end() ? nullptr : found->second.Inner;
}

bool IsReduced(const QWidget& view) {
    const QWidget* outer = view.parentWidget();
    return outer != nullptr && (outer->isMinimized() || !view.isVisible());
}

bool TakeRoundShown() {
    return std::exchange(Shown.RoundShown, false);
}

}  // namespace corvinade::ui
