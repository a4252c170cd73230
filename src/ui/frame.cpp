// The frame's bars, its theme, and its menus that pop up.
#include "ui/frame.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QCursor>
#include <QLabel>
#include <QMainWindow>
#include <QMdiArea>
#include <QMenu>
#include <QPushButton>
#include <QStatusBar>
#include <QToolBar>
#include <array>
#include <utility>

#include "core/controller.h"
#include "core/form_main.h"
#include "core/platform.h"
#include "ui/binder.h"
#include "ui/desktop.h"
#include "ui/help.h"
#include "ui/portal.h"
#include "ui/qt_text.h"
#include "ui/theme.h"
#include "ui/window_menu.h"

namespace corvinade::ui {

namespace {

void AddPanels(QStatusBar& bar) {
    for (int panel = 1; panel <= kStatusPanels; ++panel) {
        auto* label = new QLabel(&bar);
        label->setObjectName(QStringLiteral("StatusBar.%1").arg(panel));
        label->setTextFormat(Qt::PlainText);
        label->setMinimumWidth(1);  // a long text is cut, and does not hold the frame wide
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
    const QMainWindow* frame = Frame();
    ApplyTheme(theme);
    for (const auto& [name, one] : kThemes)
        if (auto* action = frame->findChild<QAction*>(QLatin1String(name))) action->setChecked(one == theme);
    AddIcons(*frame);
    AreaOf(*frame).setBackground(frame->palette().mid());
    ForgetShown();
}

void ConnectThemes(const QMainWindow& frame) {
    for (const auto& [name, theme] : kThemes)
        if (auto* action = frame.findChild<QAction*>(QLatin1String(name)))
            QObject::connect(action, &QAction::triggered, action, [chosen = theme] {
                UserDid([chosen] {
                    Dispatch([chosen] { StoreTheme(chosen); });
                    ShowTheme(chosen);
                });
            });
}

// Chooses among the views of the job.
void AddSavedViews(QToolBar& bar) {
    auto* combo = new QComboBox(&bar);
    combo->setObjectName(QStringLiteral("ComboSaveView"));
    combo->setMinimumWidth(140);
    combo->setPlaceholderText(QStringLiteral("Saved views"));
    bar.addWidget(combo);
    // The view that the list shows can be chosen again, after the picture has been turned away from it.
    // This stands in front of the binder's connection, which is the one that changes the choice.
    QObject::connect(combo, &QComboBox::activated, combo, [](int index) {
        if (index == Main.ComboSaveView.Index) UserDid([] { UserClick(Main.ComboSaveView); });
    });
}

}  // namespace

QMdiArea& AreaOf(const QMainWindow& frame) {
    return *frame.findChild<QMdiArea*>();
}

void FurnishFrame(QMainWindow& frame) {
    QMdiArea& area = AreaOf(frame);
    area.setViewMode(QMdiArea::SubWindowView);
    // Behind a window that closes comes the one that was used last.
    area.setActivationOrder(QMdiArea::ActivationHistoryOrder);
    area.setBackground(frame.palette().mid());
    // A smaller frame leaves its windows where they are, and in reach.
    area.setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    area.setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    if (auto* bar = frame.findChild<QToolBar*>(QStringLiteral("ToolbarSaveView"))) AddSavedViews(*bar);
    AddPanels(*frame.statusBar());
    AddIcons(frame);
    ConnectThemes(frame);
    WatchDesktop(&frame, [] {
        if (StoredTheme() == Theme::Desktop) UserDid([] { ShowStoredTheme(); });
    });
    FurnishWindowMenu(frame);
    FurnishHelp(frame);
    frame.setWindowIcon(IconOf(QStringLiteral("corvinade")));
    frame.setAcceptDrops(true);
}

// A menu is a pop-up menu while its value says so: that for editing is one of a table, that for flags one of
// a flag, that for pictures one of the picture that was clicked.
void ShowPopUpMenu(const QMainWindow& frame) {
    const char* const name = Main.MenuFahne.Value != 0     ? "MenuFahne"
                             : Main.MenuPicture.Value != 0 ? "MenuPicture"
                             : Main.MenuEdit.Value != 0    ? "MenuEdit"
                                                           : nullptr;
    if (name == nullptr) return;
    Main.MenuEdit.Value = Main.MenuFahne.Value = Main.MenuPicture.Value = 0;
    auto* menu = frame.findChild<QMenu*>(QLatin1String(name));
    if (menu == nullptr) return;
    menu->popup(QCursor::pos());
}

void ShowStoredTheme() {
    Theme theme = Theme::Desktop;
    try {
        theme = StoredTheme();
    } catch (const PlatformError&) {  // settings that cannot be read: the start has told of them
    }
    ShowTheme(theme);
}

}  // namespace corvinade::ui
